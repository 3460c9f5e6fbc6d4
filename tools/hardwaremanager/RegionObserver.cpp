// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tools/hardwaremanager/RegionObserver.h"

#include "inspect/image/Image.h"
#include "inspect/image/PointTree.h"

#include <utility>

namespace qel::tools {

bool RegionObserver::isActive() {
    return activeImage().has_value();
}

RegionObserver::Change RegionObserver::observe() {
    auto const image = activeImage();
    if (!image) {
        bool const wasActive = structure_.has_value();
        structure_.reset();
        return wasActive ? Change::Deactivated : Change::None;
    }
    inspect::PointTree const tree(*image);
    pointCount_ = tree.nodes().size();
    valueCount_ = tree.values().size();
    inspect::StructureFingerprint structure(*image, tree);
    if (structure_ && *structure_ == structure) {
        return Change::None;
    }
    bool const wasActive = structure_.has_value();
    structure_ = std::move(structure);
    return wasActive ? Change::StructureChanged : Change::Activated;
}

std::optional<inspect::Image> RegionObserver::activeImage() {
    if (!region_.isOpen() || region_.isReplaced()) {
        region_ = inspect::LiveRegion();
        wasLocked_ = false;
    }
    // The lock before the content: a new writer of the object wipes the content before it takes the lock.
    bool const isLocked = region_.isLocked();
    bool const isAbandoned = wasLocked_ && !isLocked;
    wasLocked_ = wasLocked_ || isLocked;
    if (isAbandoned) {
        return std::nullopt;
    }
    auto const image = region_.copy();
    return image.isWhole() && image.isActive() ? std::optional(image) : std::nullopt;
}

} // namespace qel::tools
