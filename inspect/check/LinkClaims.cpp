// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "inspect/check/LinkClaims.h"

namespace qel::inspect {

LinkClaims::LinkClaims(Image const& image) : judge_(image) {
    firstByPrev_.fill(shm::NO_POSITION);
    firstByParent_.fill(shm::NO_POSITION);
    following_.fill(shm::NO_POSITION);
    for (auto pos = shm::MP_COUNT; pos-- > 0;) {
        auto const& point = image.region().points[pos];
        if (point.pos != pos) {
            continue;
        }
        auto* chain = &firstTopLevel_;
        if (point.prev < shm::MP_COUNT) {
            chain = &firstByPrev_.at(point.prev);
        } else if (point.parent < shm::MP_COUNT) {
            chain = &firstByParent_.at(point.parent);
        }
        following_.at(pos) = *chain;
        *chain = pos;
    }
}

std::optional<std::uint32_t> LinkClaims::claimant(PointLink const& link, SiblingList const& list,
                                                  PointSet const& reached) const {
    bool const isTopLevel = list.parent == shm::NO_POSITION;
    std::optional<std::uint32_t> only = shm::NO_POSITION;
    bool isUncertain = isTopLevel && link.isHead();
    for (auto pos = chainFor(link, list); pos != shm::NO_POSITION; pos = following_.at(pos)) {
        if (reached[pos] || !judge_.belongsTo(pos, list)) {
            continue;
        }
        if (isTopLevel && !judge_.hasFollower(pos)) {
            isUncertain = true;
        } else {
            only = *only == shm::NO_POSITION ? pos : shm::MP_COUNT; // the latter: more than one
        }
    }
    if (*only == shm::MP_COUNT || (*only == shm::NO_POSITION && isUncertain)) {
        return std::nullopt;
    }
    return only;
}

std::uint32_t LinkClaims::chainFor(PointLink const& link, SiblingList const& list) const {
    if (!link.isHead()) {
        return firstByPrev_.at(link.pos);
    }
    return list.parent == shm::NO_POSITION ? firstTopLevel_ : firstByParent_.at(list.parent);
}

} // namespace qel::inspect
