// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "inspect/check/LinkCheck.h"

#include "inspect/image/RecordBytes.h"

#include "domain/SensorIdentifier.h"

namespace qel::inspect {

LinkEvidence::LinkEvidence(Image const& image) : image_(image) {
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

LinkVerdict LinkEvidence::judge(PointLink const& link, SiblingList const& list) const {
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

bool LinkEvidence::belongsTo(std::uint32_t pos, SiblingList const& list) const {
    auto const& point = image_.region().points[pos];
    return point.parent == list.parent &&
           (!list.kind || SensorIdentifier::extractSensorType(point.guid) == *list.kind);
}

bool LinkEvidence::hasFollower(std::uint32_t pos) const {
    auto const& point = image_.region().points[pos];
    auto const* const next = image_.point(point.next);
    return next != nullptr && next->prev == pos && next->parent == point.parent;
}

/// Whether a link, other than this one, leads to the target from the place that the target names.
bool LinkEvidence::hasOtherLink(PointLink const& link) const {
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

std::optional<std::uint32_t> LinkEvidence::claimant(PointLink const& link, SiblingList const& list,
                                                    PointSet const& reached) const {
    bool const isTopLevel = list.parent == shm::NO_POSITION;
    std::uint32_t found = shm::NO_POSITION;
    bool isUncertain = isTopLevel && link.isHead();
    for (auto pos = firstClaim(link, list); pos != shm::NO_POSITION; pos = following_.at(pos)) {
        if (reached[pos] || !belongsTo(pos, list)) {
            continue;
        }
        if (isTopLevel && !hasFollower(pos)) {
            isUncertain = true;
        } else if (found == shm::NO_POSITION) {
            found = pos;
        } else {
            return std::nullopt;
        }
    }
    return found == shm::NO_POSITION && isUncertain ? std::nullopt : std::optional(found);
}

std::uint32_t LinkEvidence::firstClaim(PointLink const& link, SiblingList const& list) const {
    if (!link.isHead()) {
        return firstByPrev_.at(link.pos);
    }
    return list.parent == shm::NO_POSITION ? firstTopLevel_ : firstByParent_.at(list.parent);
}

std::vector<std::uint32_t> LinkEvidence::firstChildren(std::uint32_t parent) const {
    std::vector<std::uint32_t> children;
    for (auto pos = firstByParent_.at(parent); pos != shm::NO_POSITION; pos = following_.at(pos)) {
        children.push_back(pos);
    }
    return children;
}

LinkCheck::LinkCheck(Image const& image, PointTree const& tree, FindingList& findings)
    : image_(image),
      findings_(findings),
      evidence_(image) {
    for (auto const& link : tree.skippedLinks()) {
        if (link.fromKind != SlotKind::Value && link.field != LinkField::Values) {
            linkedTwice_.set(link.toPos);
        }
    }
    points_.reserve(tree.nodes().size());
    walk();
    addUnlistedChildren();
}

void LinkCheck::walk() {
    auto const& root = image_.root();
    pending_ = {{{field::groups, 0, root.groups}, {shm::NO_POSITION, SensorType::SocketGroup}},
                {{field::devices, 0, root.devices}, {shm::NO_POSITION, SensorType::Electrical}}};
    while (!pending_.empty()) {
        auto const way = pending_.back();
        pending_.pop_back();
        auto const pos = follow(way.link, way.list);
        if (pos != shm::NO_POSITION) {
            place(pos, way);
        }
    }
}

void LinkCheck::place(std::uint32_t pos, Pending const& way) {
    auto const& point = image_.region().points[pos];
    reached_.set(pos);
    points_.push_back({pos, way.link.previous(), way.list});
    pending_.push_back({{field::next, pos, point.next}, way.list});
    pending_.push_back({{field::children, pos, point.children}, {pos, {}}});
}

std::uint32_t LinkCheck::follow(PointLink const& link, SiblingList const& list) {
    if (link.target == shm::NO_POSITION) {
        return followAtEnd(link, list);
    }
    auto const* const target = image_.point(link.target);
    if (target == nullptr) {
        return addBroken(FindingCode::LinkOutOfRange, link, list);
    }
    if (isUnused(*target)) {
        return addBroken(FindingCode::LinkToUnusedSlot, link, list);
    }
    return followToPoint(link, list);
}

std::uint32_t LinkCheck::followToPoint(PointLink const& link, SiblingList const& list) {
    auto const verdict = evidence_.judge(link, list);
    if (verdict == LinkVerdict::LinkWrong) {
        return addBroken(codeOf(link), link, list);
    }
    if (reached_[link.target]) {
        return addBroken(FindingCode::PointLinkedTwice, link, list);
    }
    auto const& target = image_.region().points[link.target];
    if (verdict == LinkVerdict::PrevWrong) {
        findings_.addToPoint(FindingCode::PrevNotMirrored, field::prev, link.target,
                             FieldValue::position(target.prev), FieldValue::position(link.previous()));
    } else if (verdict == LinkVerdict::ParentWrong) {
        findings_.addToPoint(FindingCode::ParentMismatch, field::parent, link.target,
                             FieldValue::position(target.parent), FieldValue::position(list.parent));
    }
    return link.target;
}

/// A point that claims to follow the end of a list was lost from it. A point without children is left out: the writer
/// itself leaves children that no list leads to, see addUnlistedChildren().
std::uint32_t LinkCheck::followAtEnd(PointLink const& link, SiblingList const& list) {
    if (link.field == field::children) {
        return shm::NO_POSITION;
    }
    auto const lost = evidence_.claimant(link, list, reached_).value_or(shm::NO_POSITION);
    return lost == shm::NO_POSITION ? lost : addBroken(codeOf(link), link, list);
}

std::uint32_t LinkCheck::addBroken(FindingCode code, PointLink const& link, SiblingList const& list) {
    auto const* const target = image_.point(link.target);
    bool const leadsIntoList = link.isHead() && target != nullptr && evidence_.belongsTo(link.target, list);
    auto const first = leadsIntoList ? firstSibling(link.target, list) : shm::NO_POSITION;
    auto const expected = first != shm::NO_POSITION ? first : evidence_.claimant(link, list, reached_);
    auto const* const words =
        link.isHead() ? "the first point of the list, or none" : "the next sibling, or none";
    findings_.addToSlot(code, link.field, link.pos, link.point(), FieldValue::position(link.target),
                        expected ? FieldValue::position(*expected) : FieldValue::words(words));
    if (link.field == field::children) {
        withBrokenHead_.set(link.pos);
    }
    return expected.value_or(shm::NO_POSITION);
}

FindingCode LinkCheck::codeOf(PointLink const& broken) const {
    if (broken.target != shm::NO_POSITION && linkedTwice_[broken.target]) {
        return FindingCode::PointLinkedTwice;
    }
    return broken.isHead() ? FindingCode::HeadNotFirst : FindingCode::NextNotMirrored;
}

/// Goes back to the first sibling of a point; NO_POSITION if the way is broken or was walked before.
std::uint32_t LinkCheck::firstSibling(std::uint32_t pos, SiblingList const& list) const {
    auto first = pos;
    for (std::uint32_t steps = 0; steps < shm::MP_COUNT && !reached_[first]; ++steps) {
        auto const prev = image_.region().points[first].prev;
        if (prev == shm::NO_POSITION) {
            return first;
        }
        auto const* const previous = image_.point(prev);
        if (previous == nullptr || previous->next != first || !evidence_.belongsTo(prev, list)) {
            break;
        }
        first = prev;
    }
    return shm::NO_POSITION;
}

void LinkCheck::addUnlistedChildren() {
    for (auto const& parent : points_) {
        if (withBrokenHead_[parent.pos]) {
            continue;
        }
        for (auto const pos : evidence_.firstChildren(parent.pos)) {
            if (!reached_[pos]) {
                findings_.addToPoint(FindingCode::ChildNotListed, field::parent, pos,
                                     FieldValue::position(parent.pos),
                                     FieldValue::words("a point that lists it as a child"));
            }
        }
    }
}

} // namespace qel::inspect
