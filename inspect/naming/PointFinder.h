// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// Looks up points and values by the names that people type.
#pragma once

#include "inspect/image/Image.h"
#include "inspect/image/PointTree.h"
#include "inspect/naming/ValuePattern.h"

#include <cstdint>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>

namespace qel::inspect {

/// A point or value does not exist. The text is one line for the user and names alternatives: the path nearest to one that
/// was typed, or the keys of the point's values.
class NotFoundError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// Looks up the points and values of a tree. If two points have one id, it finds the first in the tree's order.
/// Keeps references: image and tree must outlive it.
///
/// Threads: thread-safe.
class PointFinder {
public:
    /// @param tree of this image
    PointFinder(Image const& image, PointTree const& tree) : image_(image), tree_(tree) {}

    /// Finds the node of a point.
    /// @param text path (see PointPath.h) or id of the point, or id of one of its values; ids in hexadecimal (0x) or
    ///             decimal
    /// @throws NotFoundError
    std::uint32_t point(std::string_view text) const;

    /// Finds the node with an id. The key in the id is ignored.
    /// @return none if there is no such node
    std::optional<std::uint32_t> node(long long svid) const;

    /// Finds the position of a node's value.
    /// @param key number in decimal or hexadecimal (0x), or name in upper or lower case ("active power", "active-power")
    /// @throws NotFoundError
    std::uint32_t value(std::uint32_t node, std::string_view key) const;

    /// Finds the position of a node's first value with a key.
    /// @return none if there is no such value
    std::optional<std::uint32_t> value(std::uint32_t node, unsigned short key) const;

    /// Whether a pattern selects anything: a value, or a point if the pattern does not speak of values.
    bool hasMatch(ValuePattern const& pattern) const;

private:
    std::string noPointText(std::string_view text) const;
    std::string keysOf(PointNode const& node) const;
    long long svidOf(PointNode const& node) const { return image_.region().points[node.pos].guid; }

    Image const& image_;
    PointTree const& tree_;
};

/// The key in the text of a value's id: 0x13 for "0x0100010203050013". Reentrant.
/// @return none for a path and for the id of a point
std::optional<unsigned short> keyInText(std::string_view text);

} // namespace qel::inspect
