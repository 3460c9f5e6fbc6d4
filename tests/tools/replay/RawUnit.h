// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// Points and values in the raw region, found by walking it from the root.
#pragma once

#include "tests/support/RawRegion.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <set>

namespace qel::test {

/// A value slot as it stands in the region.
struct RawReading {
    double number;
    std::uint64_t time;
    std::int32_t state;
};

/// Threads: reentrant.
class RawUnit {
public:
    /// Ids of all points that can be reached.
    std::set<long long> points() const;

    /// Ids of all values that can be reached.
    std::set<long long> values() const;

    /// Nothing when the point or its value cannot be reached.
    std::optional<RawReading> value(long long svid) const;

    /// State, time and type of a point that can be reached.
    std::int32_t stateOf(long long point) const;
    std::uint64_t timeOf(long long point) const;
    unsigned typeOf(long long point) const;

    std::int32_t globalState() const;
    unsigned version() const;

private:
    template <typename Visit>
    void walk(std::uint32_t position, Visit const& visit) const;
    template <typename Visit>
    void walkAll(Visit const& visit) const;
    std::size_t offsetOf(long long point) const;

    RawRegion region_;
};

} // namespace qel::test
