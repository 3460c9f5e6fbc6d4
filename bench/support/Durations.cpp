// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "bench/support/Durations.h"

#include <algorithm>
#include <cmath>

namespace bench {

namespace {

constexpr unsigned int decades = 10;
constexpr unsigned int binsPerDecade = 232; // 1.01 to this power is 10
constexpr double least = 1;
constexpr double most = 1e10;

} // namespace

Durations::Durations() : counts_(std::make_tuple(Axis(decades * binsPerDecade, least, most)), {}) {}

void Durations::record(std::int64_t nanoseconds) {
    counts_(static_cast<double>(std::max<std::int64_t>(nanoseconds, 1)));
    longest_ = std::max(longest_, nanoseconds);
    ++count_;
}

double Durations::quantile(double share) const {
    auto const wanted = static_cast<std::uint64_t>(std::ceil(share * static_cast<double>(count_)));
    auto const& axis = counts_.axis();
    std::uint64_t seen = 0;
    for (int bin = 0; bin < axis.size(); ++bin) {
        seen += counts_.at(bin);
        if (seen >= wanted && seen > 0) {
            return std::min(axis.value(bin + 1), static_cast<double>(longest_));
        }
    }
    return static_cast<double>(longest_);
}

} // namespace bench
