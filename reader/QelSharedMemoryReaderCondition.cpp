// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

// Whether a reader's region is current.

#include "reader/QelSharedMemoryReader.h"

#include "reader/BusConnection.h"
#include "reader/HeldRegion.h"
#include "reader/NamedRegion.h"
#include "reader/newestDelivery.h"
#include "region/RegionFields.h"

namespace shm {

namespace {

std::uint64_t millisecondsNow() {
    auto const passed = std::chrono::system_clock::now().time_since_epoch();
    return static_cast<std::uint64_t>(std::chrono::duration_cast<std::chrono::milliseconds>(passed).count());
}

} // namespace

QelShmCondition QelSharedMemoryReader::condition(std::chrono::milliseconds maxAge) const {
    // Name and lock before the version: a new writer of the object wipes the region before it takes the lock.
    return conditionAt(NamedRegion(), maxAge);
}

QelShmCondition QelSharedMemoryReader::conditionAt(NamedRegion const& named,
                                                   std::chrono::milliseconds maxAge) const {
    auto facts = held_->compare(named);
    auto const* const mapped = region();
    facts.isHeld = facts.isHeld && mapped != nullptr;
    facts.isActive = facts.isHeld && loadVersion(mapped->root) == ACTIVE_VERSION;
    auto const ageless = conditionOf(facts, ANY_AGE);
    if (ageless != QelShmCondition::Active || maxAge == ANY_AGE) {
        return ageless;
    }
    facts.newest = newestDelivery(*mapped);
    facts.now = millisecondsNow();
    return conditionOf(facts, maxAge);
}

std::uint64_t QelSharedMemoryReader::lastDelivery() const {
    auto const* const mapped = region();
    return mapped == nullptr ? 0 : newestDelivery(*mapped);
}

bool QelSharedMemoryReader::hasLostItsBus() const {
    return bus_->isClosed();
}

bool QelSharedMemoryReader::willMapNothing() const {
    bool const isWaitOver =
        initialized_ || pollsLeft_ == 0; // read first, so that a region mapped before is seen
    return isWaitOver && region() == nullptr;
}

} // namespace shm
