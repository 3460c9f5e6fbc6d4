// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// The tree that the links of an image form.
#pragma once

#include "inspect/image/Image.h"

#include <bitset>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace qel::inspect {

/// In place of the index of a node: there is none.
constexpr std::uint32_t NO_NODE = 0xFFFFFFFF;

/// A point that can be reached from the root.
struct PointNode {
    std::uint32_t pos;        ///< the slot
    std::uint32_t parent;     ///< index of the parent's node, NO_NODE for a top-level point
    std::uint32_t depth;      ///< 1 for a top-level point
    std::uint32_t end;        ///< index behind its last descendant; its first child, if any, is the next node
    std::uint32_t firstValue; ///< index into PointTree::values()
    std::uint32_t valueCount; ///< how many values it has
};

/// What a slot holds.
enum class SlotKind : std::uint8_t { Root, Point, Value };

/// The fields that the walk follows.
enum class LinkField : std::uint8_t { Devices, Groups, Children, Next, Values };

/// "devices", "groups", "children", "next", "mvs". Reentrant.
char const* fieldName(LinkField field);

/// A link that was not followed because its target was reached before. The target is a value if the link is the field
/// Values or starts at a value, else a point.
struct SkippedLink {
    SlotKind fromKind;
    std::uint32_t fromPos; ///< 0 for the root
    LinkField field;
    std::uint32_t toPos;
};

/// The positions of a point's values, in chain order. Valid while the tree lives. Threads: thread-safe.
class ValuePositions {
public:
    ValuePositions(std::uint32_t const* begin, std::size_t count) : begin_(begin), count_(count) {}
    std::uint32_t const* begin() const { return begin_; }
    std::uint32_t const* end() const { return begin_ + count_; }
    std::size_t size() const { return count_; }
    bool empty() const { return count_ == 0; }

private:
    std::uint32_t const* begin_;
    std::size_t count_;
};

/// The points and values that links from the root reach, in this order: devices, then groups; each point, then its
/// values, then its children, then its next sibling. Like a reader, the walk follows next, children and mvs only; a
/// position out of range ends a list. It visits each slot once at most, so it ends whatever the links are.
///
/// The tree holds positions only and does not need the image any more.
///
/// Threads: thread-safe.
class PointTree {
public:
    explicit PointTree(Image const& image);

    /// Parents before their children, in the order of the lists.
    std::vector<PointNode> const& nodes() const { return nodes_; }

    /// The positions of the values of all nodes, node by node; see PointNode::firstValue.
    std::vector<std::uint32_t> const& values() const { return values_; }

    /// The links that were not followed, in the order in which the walk met them.
    std::vector<SkippedLink> const& skippedLinks() const { return skippedLinks_; }

    /// The positions of a node's values.
    /// @param node of this tree
    ValuePositions valuesOf(PointNode const& node) const;

    /// The indexes of a node's children.
    /// @param node index of a node, NO_NODE for the top-level points
    std::vector<std::uint32_t> childrenOf(std::uint32_t node) const;

private:
    using ReachedValues = std::bitset<shm::MV_COUNT>;

    void addValues(Image const& image, PointNode& node, ReachedValues& reached);

    std::vector<PointNode> nodes_;
    std::vector<std::uint32_t> values_;
    std::vector<SkippedLink> skippedLinks_;
};

} // namespace qel::inspect
