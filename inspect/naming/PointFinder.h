// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// Points and values by what people call them.
#pragma once

#include "inspect/image/Image.h"
#include "inspect/image/PointTree.h"

#include <cstdint>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>

namespace qel::inspect {

/// A point or value that is not there; one line for the user that says what is there instead: the nearest
/// path, or the names of the point's values.
class NotFoundError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// Looks up what can be reached in an image. Two points of one id: the first in the tree's order.
/// Keeps references: image and tree must outlive it. Threads: any thread.
class PointFinder {
public:
    /// @param tree of this image
    PointFinder(Image const& image, PointTree const& tree) : image_(image), tree_(tree) {}

    /// The node of a point by its path (see PointPath.h) or by its id, in hexadecimal (0x) or decimal; the id of a
    /// value finds its point. Throws NotFoundError.
    std::uint32_t point(std::string_view text) const;

    /// The node with this id, none when there is none; the key in it is not looked at.
    std::optional<std::uint32_t> node(long long svid) const;

    /// The position of a node's value by its key: decimal, hexadecimal (0x), or its name in upper or lower case
    /// ("active power"). Throws NotFoundError.
    std::uint32_t value(std::uint32_t node, std::string_view key) const;

    /// The position of a node's first value with this key, none when it has none.
    std::optional<std::uint32_t> value(std::uint32_t node, unsigned short key) const;

private:
    std::string nearestPath(std::string_view path) const;
    std::string keysOf(PointNode const& node) const;
    long long svidOf(PointNode const& node) const { return image_.region().points[node.pos].guid; }

    Image const& image_;
    PointTree const& tree_;
};

/// The key that the text of an id carries ("0x0100010203050013": 0x13); none for a path and for the id of a point.
/// Any thread.
std::optional<unsigned short> keyInText(std::string_view text);

} // namespace qel::inspect
