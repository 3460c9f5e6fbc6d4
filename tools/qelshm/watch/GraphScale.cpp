// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tools/qelshm/watch/GraphScale.h"

#include "tools/qelshm/plot/Axis.h"

#include <algorithm>
#include <cmath>

namespace qel::watch {

double GraphScale::partOf(double number) const {
    return std::clamp((number - low) / (high - low), 0.0, 1.0);
}

GraphScale scaleAround(double least, double greatest) {
    constexpr double leastPart = 0.1; // of the largest number
    constexpr double steps = 4.0;
    constexpr double slack = 1e-6;
    auto const largest = std::max(std::abs(least), std::abs(greatest));
    if (largest == 0.0) {
        return {};
    }
    auto low = least;
    auto high = greatest;
    if (high - low < leastPart * largest) {
        auto const middle = low / 2.0 + high / 2.0;
        low = middle - leastPart * largest / 2.0;
        high = middle + leastPart * largest / 2.0;
    }
    auto const width = high - low;
    if (low > 0.0 && low <= width) {
        low = 0.0;
    } else if (high < 0.0 && -high <= width) {
        high = 0.0;
    }
    auto const step = plot::roundStep((high - low) / steps);
    // A limit that is round already stays, in spite of what the division rounds.
    return {std::floor(low / step + slack) * step, std::ceil(high / step - slack) * step};
}

} // namespace qel::watch
