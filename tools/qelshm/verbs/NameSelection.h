// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// Points and values that a user has named.
#pragma once

#include "inspect/image/Image.h"
#include "inspect/image/PointTree.h"
#include "inspect/naming/ValuePattern.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace qel::tools {

/// A name in two parts: "unit1/inlet1" and "active-power" of "unit1/inlet1:active-power". Reentrant.
struct NameParts {
    std::string point;
    std::optional<std::string> key; ///< none without a colon
};

NameParts partsOf(std::string_view name);

/// Whether a name may select more than one point or value. Reentrant.
bool hasWildcards(std::string_view name);

/// The points and values that any of some names selects; see inspect::ValuePattern for the names. No names select
/// everything.
///
/// Threads: thread-safe.
class NameSelection {
public:
    /// Takes names that exist in a tree.
    /// @param tree of this image
    /// @throws inspect::NotFoundError if one of the names selects nothing; the text has the nearest name
    /// @throws inspect::PatternError if a name with wildcards is none
    NameSelection(std::vector<std::string> const& names, inspect::Image const& image,
                  inspect::PointTree const& tree);

    /// Whether a point is selected as a whole.
    bool hasPoint(long long point) const;

    /// Whether a value is selected, by itself or with its point.
    bool hasValue(long long point, unsigned short key) const;

private:
    inspect::ValuePatterns patterns_;
};

} // namespace qel::tools
