// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// The region walked as its documents describe it, without the library.
#pragma once

#include "tests/cuts/Picture.h"
#include "tests/support/RawRegion.h"

#include <cstdint>

namespace qel::test {

/// Follows the lists from the root, children and values included.
class PlainWalk {
public:
    /// @param region its bytes; read only during walk()
    explicit PlainWalk(std::uint8_t const* region) : region_(region) {}

    /// @return false when the walk has no end
    bool walk(Picture& met) const;

    /// Notes one point with its values, wherever it is.
    /// @return false when its values have no end
    bool look(std::uint32_t slot, Picture& met) const { return note(slot, rawNone, 1, met); }

    /// Whether following these links alone comes to an end: siblings from a position on, values of a chain.
    bool siblingsEnd(std::uint32_t first) const;
    bool valuesEnd(std::uint32_t first) const;

private:
    bool list(std::uint32_t first, std::uint32_t depth, Picture& met) const;
    bool note(std::uint32_t slot, std::uint32_t before, std::uint32_t depth, Picture& met) const;

    std::uint8_t const* region_;
};

} // namespace qel::test
