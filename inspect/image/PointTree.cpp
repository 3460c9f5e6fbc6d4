// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "inspect/image/PointTree.h"

#include <algorithm>

namespace qel::inspect {

namespace {

constexpr std::uint32_t topLevel = 1;

/// A link to a point that is still to be followed.
struct PendingLink {
    SkippedLink link;
    std::uint32_t parent;
    std::uint32_t depth;
};

} // namespace

char const* fieldName(LinkField field) {
    switch (field) {
    case LinkField::Devices:
        return "devices";
    case LinkField::Groups:
        return "groups";
    case LinkField::Children:
        return "children";
    case LinkField::Next:
        return "next";
    case LinkField::Values:
        return "mvs";
    }
    return "";
}

PointTree::PointTree(Image const& image) {
    nodes_.reserve(shm::MP_COUNT);
    values_.reserve(shm::MV_COUNT);
    std::bitset<shm::MP_COUNT> reached;
    ReachedValues reachedValues;

    auto const& root = image.root();
    // The next link to follow is last.
    std::vector<PendingLink> pending{
        {{SlotKind::Root, 0, LinkField::Groups, root.groups}, NO_NODE, topLevel},
        {{SlotKind::Root, 0, LinkField::Devices, root.devices}, NO_NODE, topLevel}};
    while (!pending.empty()) {
        auto const current = pending.back();
        pending.pop_back();
        auto const pos = current.link.toPos;
        auto const* const slot = image.point(pos);
        if (slot == nullptr) {
            continue;
        }
        if (reached[pos]) {
            skippedLinks_.push_back(current.link);
            continue;
        }
        reached.set(pos);
        auto const index = static_cast<std::uint32_t>(nodes_.size());
        nodes_.push_back({pos, current.parent, current.depth, index + 1, 0, 0});
        addValues(image, nodes_.back(), reachedValues);
        pending.push_back(
            {{SlotKind::Point, pos, LinkField::Next, slot->next}, current.parent, current.depth});
        pending.push_back(
            {{SlotKind::Point, pos, LinkField::Children, slot->children}, index, current.depth + 1});
    }

    // Children stand behind their parents, so backwards each range is complete before its parent takes it over.
    for (auto node = nodes_.rbegin(); node != nodes_.rend(); ++node) {
        if (node->parent != NO_NODE) {
            auto& parent = nodes_[node->parent];
            parent.end = std::max(parent.end, node->end);
        }
    }
}

void PointTree::addValues(Image const& image, PointNode& node, ReachedValues& reached) {
    node.firstValue = static_cast<std::uint32_t>(values_.size());
    SkippedLink link{SlotKind::Point, node.pos, LinkField::Values, image.point(node.pos)->mvs};
    while (auto const* const value = image.value(link.toPos)) {
        if (reached[link.toPos]) {
            skippedLinks_.push_back(link);
            break;
        }
        reached.set(link.toPos);
        values_.push_back(link.toPos);
        link = {SlotKind::Value, link.toPos, LinkField::Next, value->next};
    }
    node.valueCount = static_cast<std::uint32_t>(values_.size()) - node.firstValue;
}

ValuePositions PointTree::valuesOf(PointNode const& node) const {
    return {values_.data() + node.firstValue, node.valueCount};
}

std::vector<std::uint32_t> PointTree::childrenOf(std::uint32_t node) const {
    std::vector<std::uint32_t> children;
    auto const end = node == NO_NODE ? static_cast<std::uint32_t>(nodes_.size()) : nodes_.at(node).end;
    for (auto child = node == NO_NODE ? 0 : node + 1; child < end; child = nodes_[child].end) {
        children.push_back(child);
    }
    return children;
}

} // namespace qel::inspect
