// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tools/qelshm/watch/UnitStructure.h"

#include "format/Names.h"
#include "inspect/naming/PointPath.h"
#include "inspect/naming/ValuePath.h"
#include "region/QelShmMPnt.h"

#include <utility>

namespace qel::watch {

namespace {

/// What a path adds to its parent's; all of it if it does not continue that one.
std::string nameWithin(std::string const& parent, std::string const& path) {
    auto const prefix = parent + '/';
    return path.compare(0, prefix.size(), prefix) == 0 ? path.substr(prefix.size()) : path;
}

} // namespace

bool UnitStructure::update(inspect::Image const& image) {
    auto const source = image.isWhole() && image.isActive() ? image : inspect::Image();
    inspect::PointTree const tree(source);
    inspect::StructureFingerprint fingerprint(source, tree);
    if (fingerprint == fingerprint_) {
        return false;
    }
    fingerprint_ = std::move(fingerprint);
    rebuild(source, tree);
    return true;
}

void UnitStructure::rebuild(inspect::Image const& image, inspect::PointTree const& tree) {
    points_.clear();
    values_.clear();
    for (auto const& node : tree.nodes()) {
        addPoint(image, tree, node);
    }
    for (auto point = points_.rbegin(); point != points_.rend(); ++point) {
        if (point->isWatched && point->parent != inspect::NO_NODE) {
            points_[point->parent].isWatched = true;
        }
    }
}

void UnitStructure::addPoint(inspect::Image const& image, inspect::PointTree const& tree,
                             inspect::PointNode const& node) {
    auto const& slot = image.region().points[node.pos];
    auto const index = static_cast<std::uint32_t>(points_.size());
    auto const firstValue = static_cast<std::uint32_t>(values_.size());
    for (auto const pos : tree.valuesOf(node)) {
        auto const key = image.region().values[pos].key;
        if (names_.hasValue(slot.guid, key)) {
            values_.push_back(
                {slot.guid | key, pos, index, key, shm::keyName(key), inspect::valuePath(slot.guid, key)});
        }
    }
    auto const valueCount = static_cast<std::uint32_t>(values_.size()) - firstValue;
    auto path = inspect::pointPath(slot.guid);
    auto name = node.parent == inspect::NO_NODE ? path : nameWithin(points_[node.parent].path, path);
    points_.push_back({slot.guid, node.pos, node.parent, node.depth, node.end, firstValue, valueCount,
                       valueCount != 0 || names_.hasPoint(slot.guid), std::move(path), std::move(name),
                       shm::QelShmMPnt(&slot).tstr()});
}

} // namespace qel::watch
