// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tools/qelshm/watch/History.h"

#include <algorithm>
#include <cmath>

namespace qel::watch {

void History::add(std::uint64_t bucket, double number) {
    if (!(std::abs(number) <= std::numeric_limits<float>::max())) {
        return; // not finite, or too large
    }
    auto const skipped = std::min<std::uint64_t>(bucket - newest_, length);
    for (std::uint64_t step = 0; step < skipped; ++step) {
        ring_.at((bucket - step) % length) = Bucket();
    }
    newest_ = bucket;
    auto const sample = static_cast<float>(number);
    auto& current = ring_.at(bucket % length);
    // fmin and fmax prefer a number to NaN.
    current = {std::fmin(current.min, sample), std::fmax(current.max, sample), sample};
}

Bucket History::at(std::uint64_t bucket) const {
    return bucket <= newest_ && newest_ - bucket < length ? ring_.at(bucket % length) : Bucket();
}

} // namespace qel::watch
