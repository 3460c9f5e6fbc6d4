// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "inspect/image/PointTree.h"

#include <algorithm>

namespace qel::inspect {

namespace {

constexpr std::uint32_t topLevel = 1;

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
    nodeOfSlot_.fill(NO_NODE);

    auto const& root = image.root();
    // What comes next is on top.
    std::vector<Pending> pending{{{SlotKind::Root, 0, LinkField::Groups, root.groups}, NO_NODE, topLevel},
                                 {{SlotKind::Root, 0, LinkField::Devices, root.devices}, NO_NODE, topLevel}};
    while (!pending.empty()) {
        auto const current = pending.back();
        pending.pop_back();
        auto const pos = current.link.toPos;
        auto const* const slot = image.point(pos);
        if (slot == nullptr) {
            continue;
        }
        if (nodeOfSlot_.at(pos) != NO_NODE) {
            cuts_.push_back(current.link);
            continue;
        }
        auto const index = static_cast<std::uint32_t>(nodes_.size());
        nodeOfSlot_.at(pos) = index;
        nodes_.push_back({pos, current.parent, current.depth, index + 1, 0, 0});
        addValues(image, nodes_.back());
        pending.push_back(
            {{SlotKind::Point, pos, LinkField::Next, slot->next}, current.parent, current.depth});
        pending.push_back(
            {{SlotKind::Point, pos, LinkField::Children, slot->children}, index, current.depth + 1});
    }

    // Children stand behind their parents, so each range is complete when it is handed up.
    for (auto node = nodes_.rbegin(); node != nodes_.rend(); ++node) {
        if (node->parent != NO_NODE) {
            auto& parent = nodes_[node->parent];
            parent.end = std::max(parent.end, node->end);
        }
    }
}

void PointTree::addValues(Image const& image, PointNode& node) {
    node.firstValue = static_cast<std::uint32_t>(values_.size());
    Cut link{SlotKind::Point, node.pos, LinkField::Values, image.point(node.pos)->mvs};
    while (auto const* const value = image.value(link.toPos)) {
        if (reachedValues_[link.toPos]) {
            cuts_.push_back(link);
            break;
        }
        reachedValues_[link.toPos] = true;
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

std::uint32_t PointTree::nodeAt(std::uint32_t pos) const {
    return pos < shm::MP_COUNT ? nodeOfSlot_.at(pos) : NO_NODE;
}

} // namespace qel::inspect
