// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "inspect/check/LinkJudge.h"

#include "domain/SensorIdentifier.h"

namespace qel::inspect {

LinkVerdict LinkJudge::judge(PointLink const& link, SiblingList const& list) const {
    auto const& target = image_.region().points[link.target];
    bool const parentAgrees = target.parent == list.parent;
    bool const prevAgrees = target.prev == link.previous();
    if (parentAgrees && prevAgrees && (!link.isHead() || belongsTo(link.target, list))) {
        return LinkVerdict::Sound;
    }
    if ((!parentAgrees && !prevAgrees) || hasOtherLink(link)) {
        return LinkVerdict::LinkWrong;
    }
    if (!parentAgrees) {
        return LinkVerdict::ParentWrong;
    }
    return prevAgrees ? LinkVerdict::Sound : LinkVerdict::PrevWrong;
}

bool LinkJudge::belongsTo(std::uint32_t pos, SiblingList const& list) const {
    auto const& point = image_.region().points[pos];
    return point.parent == list.parent &&
           (!list.kind || SensorIdentifier::extractSensorType(point.guid) == *list.kind);
}

bool LinkJudge::hasFollower(std::uint32_t pos) const {
    auto const& point = image_.region().points[pos];
    auto const* const next = image_.point(point.next);
    return next != nullptr && next->prev == pos && next->parent == point.parent;
}

/// Whether a link leads to the target from where it says that it stands, and is not the one in question.
bool LinkJudge::hasOtherLink(PointLink const& link) const {
    auto const& region = image_.region();
    auto const& target = region.points[link.target];
    if (auto const* const previous = image_.point(target.prev)) {
        return target.prev != link.previous() && previous->next == link.target &&
               previous->parent == target.parent;
    }
    if (auto const* const parent = image_.point(target.parent)) {
        bool const isThisLink = link.field == field::children && link.pos == target.parent;
        return parent->children == link.target && !isThisLink;
    }
    bool const inDevices = region.root.devices == link.target && !(link.field == field::devices) &&
                           belongsTo(link.target, {shm::NO_POSITION, SensorType::Electrical});
    bool const inGroups = region.root.groups == link.target && !(link.field == field::groups) &&
                          belongsTo(link.target, {shm::NO_POSITION, SensorType::SocketGroup});
    return inDevices || inGroups;
}

} // namespace qel::inspect
