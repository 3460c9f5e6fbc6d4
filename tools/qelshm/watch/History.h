// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// What a value was in the last minutes.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <limits>

namespace qel::watch {

/// What was seen of a value within a stretch of time.
struct Bucket {
    float min = std::numeric_limits<float>::quiet_NaN();
    float max = std::numeric_limits<float>::quiet_NaN();
    float last = std::numeric_limits<float>::quiet_NaN();

    /// Nothing was seen.
    bool isEmpty() const { return last != last; }
};

/// The last buckets of one value, the older ones forgotten: 1088 bytes, however much is added. Buckets are numbered
/// by time, rising; how long one lasts is the caller's affair. Threads: not shared.
class History {
public:
    static constexpr std::size_t length = 90;

    /// Adds a number to a bucket, none earlier than the newest. Numbers that no float can hold are left out.
    void add(std::uint64_t bucket, double number);

    /// A bucket by its number; an empty one when it is forgotten or yet to come.
    Bucket at(std::uint64_t bucket) const;

private:
    std::array<Bucket, length> ring_;
    std::uint64_t newest_ = 0;
};

} // namespace qel::watch
