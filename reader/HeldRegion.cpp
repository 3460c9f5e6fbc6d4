// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "reader/HeldRegion.h"

namespace shm {

void HeldRegion::take(std::optional<ObjectId> const& before, NamedRegion const& after) {
    std::lock_guard<std::mutex> const lock(mutex_);
    isTaken_ = true;
    if (before && before == after.id()) {
        id_ = after.id();
        wasLocked_ = after.isLocked();
    }
}

QelShmRegionFacts HeldRegion::compare(NamedRegion const& named) {
    std::lock_guard<std::mutex> const lock(mutex_);
    QelShmRegionFacts facts;
    facts.isHeld = isTaken_;
    facts.isNamed = named.exists();
    facts.isSame = id_ && id_ == named.id();
    if (facts.isSame) {
        wasLocked_ = wasLocked_ || named.isLocked();
        facts.isAbandoned = wasLocked_ && named.isUnlocked();
    }
    return facts;
}

} // namespace shm
