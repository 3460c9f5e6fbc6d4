// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// The tree that the links of an image form.
#pragma once

#include "inspect/image/Image.h"

#include <array>
#include <bitset>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace qel::inspect {

/// "No node" where the index of one is expected.
constexpr std::uint32_t NO_NODE = 0xFFFFFFFF;

/// A point that can be reached from the root.
struct PointNode {
    std::uint32_t pos;        ///< the slot
    std::uint32_t parent;     ///< index of the node that it was reached from, NO_NODE for a top-level point
    std::uint32_t depth;      ///< 1 for a top-level point
    std::uint32_t end;        ///< index behind its last descendant; the first one is the next node
    std::uint32_t firstValue; ///< index into PointTree::values()
    std::uint32_t valueCount;
};

enum class SlotKind : std::uint8_t { Root, Point, Value };

/// The fields that hold positions and are followed by the walk.
enum class LinkField : std::uint8_t { Devices, Groups, Children, Next, Values };

/// "devices", "groups", "children", "next", "mvs". Any thread.
char const* fieldName(LinkField field);

/// A link that was not followed because the walk had been at its target before. It leads to a value if it is field
/// Values or comes from a value, else to a point.
struct Cut {
    SlotKind fromKind;
    std::uint32_t fromPos; ///< 0 for the root
    LinkField field;
    std::uint32_t toPos;
};

/// The positions of a point's values, in chain order; valid while the tree lives.
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

/// What a walk along the links finds: devices, then groups; each point, then its values, then its children, then its
/// next sibling. Only next, children and mvs are followed, as readers do. Positions out of range end a list. Each
/// slot is visited once at most, so the walk ends whatever the links say.
///
/// Holds positions only; independent of the image afterwards. Threads: const operations from any thread.
class PointTree {
public:
    explicit PointTree(Image const& image);

    /// Parents before their children, in the order of the lists.
    std::vector<PointNode> const& nodes() const { return nodes_; }

    /// The values of all nodes, one after the other; see PointNode::firstValue.
    std::vector<std::uint32_t> const& values() const { return values_; }

    /// The links that were not followed, in the order in which the walk met them.
    std::vector<Cut> const& cuts() const { return cuts_; }

    /// A node of this tree; its value positions.
    ValuePositions valuesOf(PointNode const& node) const;

    /// Indexes of the children of a node, of the top-level points for NO_NODE.
    std::vector<std::uint32_t> childrenOf(std::uint32_t node) const;

    /// Index of the node of a slot, NO_NODE when the slot was not reached or does not exist.
    std::uint32_t nodeAt(std::uint32_t pos) const;

    /// Whether a value slot was reached; false when it does not exist.
    bool hasValue(std::uint32_t pos) const { return pos < shm::MV_COUNT && reachedValues_[pos]; }

private:
    /// A link to a point that is still to be followed.
    struct Pending {
        Cut link;
        std::uint32_t parent;
        std::uint32_t depth;
    };

    void addValues(Image const& image, PointNode& node);

    std::vector<PointNode> nodes_;
    std::vector<std::uint32_t> values_;
    std::vector<Cut> cuts_;
    std::array<std::uint32_t, shm::MP_COUNT> nodeOfSlot_{};
    std::bitset<shm::MV_COUNT> reachedValues_;
};

} // namespace qel::inspect
