// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tools/qelshm/watch/ValueStatistics.h"

#include <algorithm>
#include <cmath>

namespace qel::watch {

void ValueStatistics::addNumber(double number) {
    if (!std::isfinite(number)) {
        return;
    }
    minimum_ = isEmpty() ? number : std::min(minimum_, number);
    maximum_ = isEmpty() ? number : std::max(maximum_, number);
    ++numbers_;
    // Without a sum, which could overflow.
    auto const count = static_cast<double>(numbers_);
    mean_ += number / count - mean_ / count;
}

double ValueStatistics::rate(std::uint64_t ticks) const {
    constexpr double msPerSecond = 1000.0;
    return ticks <= began_
               ? 0.0
               : static_cast<double>(deliveries_) * msPerSecond / static_cast<double>(ticks - began_);
}

} // namespace qel::watch
