// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// The numbers of a value in the last minutes.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <limits>

namespace qel::watch {

/// The numbers of a value within a stretch of time. Reentrant.
struct Bucket {
    float min = std::numeric_limits<float>::quiet_NaN();
    float max = std::numeric_limits<float>::quiet_NaN();
    float last = std::numeric_limits<float>::quiet_NaN();

    /// @return whether there was no number
    bool isEmpty() const { return last != last; }
};

/// The newest buckets of one value: 1088 bytes, however much is added. Buckets are numbered by time, rising; the caller
/// decides how long one lasts.
///
/// Threads: reentrant.
class History {
public:
    static constexpr std::size_t length = 90;

    /// Adds a number to the newest bucket or a later one. Ignores numbers that no float can hold.
    void add(std::uint64_t bucket, double number);

    /// @return the bucket with this number; an empty one if it is too old or in the future
    Bucket at(std::uint64_t bucket) const;

private:
    std::array<Bucket, length> ring_;
    std::uint64_t newest_ = 0;
};

} // namespace qel::watch
