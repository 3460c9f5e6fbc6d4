// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// The numbers of a value over minutes and over hours.
#pragma once

#include "tools/qelshm/watch/History.h"

#include <array>
#include <cstddef>
#include <cstdint>

namespace qel::watch {

/// How many times as long as the finest one a bucket of each history lasts. With buckets of 2 s the histories span
/// 3 minutes, 30 minutes and 3 hours.
inline constexpr std::array<std::uint64_t, 3> historyFactors{1, 10, 60};

/// Histories of one value whose buckets last longer and longer: 3264 bytes.
///
/// Threads: reentrant.
class Histories {
public:
    /// Adds a number to all histories.
    /// @param bucket number of the finest bucket
    void add(std::uint64_t bucket, double number) {
        for (std::size_t span = 0; span < histories_.size(); ++span) {
            histories_.at(span).add(bucket / historyFactors.at(span), number);
        }
    }

    /// @param span index into historyFactors
    History const& at(std::size_t span) const { return histories_.at(span); }

private:
    std::array<History, historyFactors.size()> histories_;
};

} // namespace qel::watch
