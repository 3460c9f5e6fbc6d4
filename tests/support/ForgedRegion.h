// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// A region made up by a test.
#pragma once

#include "tests/support/RawRegion.h"

#include <cstdint>
#include <vector>

namespace qel::test {

/// Creates the shared-memory object, wiped, and writes trees into it without the library's records.
///
/// Threads: reentrant.
class ForgedRegion {
public:
    ForgedRegion() : raw_(true) { raw_.fill(0xFF); }

    /// A point without any links.
    void point(std::uint32_t pos, long long svid) const;

    /// Links points by their next and prev fields.
    /// @return the first one's position
    std::uint32_t siblings(std::vector<std::uint32_t> const& positions) const;

    /// Links a chain of siblings below a point, or into one of the root's lists.
    void children(std::uint32_t parent, std::vector<std::uint32_t> const& positions) const;
    void devices(std::vector<std::uint32_t> const& positions) const;
    void groups(std::vector<std::uint32_t> const& positions) const;

    /// Gives a point a chain of values, in the slots from first on, one per key.
    void values(std::uint32_t pos, std::uint32_t first, std::vector<std::uint16_t> const& keys) const;

    void activate() const;

    RawRegion const& raw() const { return raw_; }

private:
    RawRegion raw_;
};

} // namespace qel::test
