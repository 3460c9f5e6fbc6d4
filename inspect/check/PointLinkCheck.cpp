// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "inspect/check/PointLinkCheck.h"

#include "inspect/image/UnusedSlot.h"

namespace qel::inspect {

namespace {

FieldValue expectedTarget(PointLink const& link, std::optional<std::uint32_t> target) {
    if (target) {
        return FieldValue::position(*target);
    }
    return FieldValue::words(link.isHead() ? "the first point of the list, or none"
                                           : "the next sibling, or none");
}

} // namespace

PointLinkCheck::PointLinkCheck(Image const& image, PointTree const& tree, FindingList& findings)
    : image_(image),
      findings_(findings),
      judge_(image),
      claims_(image) {
    for (auto const& cut : tree.cuts()) {
        if (cut.fromKind != SlotKind::Value && cut.field != LinkField::Values) {
            linkedTwice_.set(cut.toPos);
        }
    }
    points_.reserve(tree.nodes().size());
    walk();
    noteUnlistedChildren();
}

void PointLinkCheck::walk() {
    auto const& root = image_.root();
    pending_ = {{{field::groups, 0, root.groups}, {shm::NO_POSITION, SensorType::SocketGroup}},
                {{field::devices, 0, root.devices}, {shm::NO_POSITION, SensorType::Electrical}}};
    while (!pending_.empty()) {
        auto const way = pending_.back();
        pending_.pop_back();
        auto const pos = resolve(way.link, way.list);
        if (pos != shm::NO_POSITION) {
            place(pos, way);
        }
    }
}

void PointLinkCheck::place(std::uint32_t pos, Pending const& way) {
    auto const& point = image_.region().points[pos];
    reached_.set(pos);
    points_.push_back({pos, way.link.previous(), way.list});
    pending_.push_back({{field::next, pos, point.next}, way.list});
    pending_.push_back({{field::children, pos, point.children}, {pos, {}}});
}

std::uint32_t PointLinkCheck::resolve(PointLink const& link, SiblingList const& list) {
    if (link.target == shm::NO_POSITION) {
        return mendEnd(link, list);
    }
    auto const* const target = image_.point(link.target);
    if (target == nullptr) {
        return reportLink(FindingCode::LinkOutOfRange, link, list);
    }
    if (isUnused(*target)) {
        return reportLink(FindingCode::LinkToUnusedSlot, link, list);
    }
    return checkTarget(link, list);
}

std::uint32_t PointLinkCheck::checkTarget(PointLink const& link, SiblingList const& list) {
    auto const verdict = judge_.judge(link, list);
    if (verdict == LinkVerdict::LinkWrong) {
        return reportLink(codeOfWrong(link), link, list);
    }
    if (reached_[link.target]) {
        return reportLink(FindingCode::PointLinkedTwice, link, list);
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

/// Adds a finding about the link itself and gives the slot that should stand there.
std::uint32_t PointLinkCheck::reportLink(FindingCode code, PointLink const& link, SiblingList const& list) {
    auto const* const target = image_.point(link.target);
    bool const leadsIntoList = link.isHead() && target != nullptr && judge_.belongsTo(link.target, list);
    auto const first = leadsIntoList ? firstBefore(link.target, list) : shm::NO_POSITION;
    auto const expected = first != shm::NO_POSITION ? first : claims_.claimant(link, list, reached_);
    findings_.add(code, link.field, link.pos, link.point(), FieldValue::position(link.target),
                  expectedTarget(link, expected));
    if (link.field == field::children) {
        withBrokenHead_.set(link.pos);
    }
    return expected.value_or(shm::NO_POSITION);
}

/// At the end of a list: a point that says it follows is one that was lost. Not so where the list has not begun
/// below a point: the writer leaves children that nobody lists, see noteUnlistedChildren().
std::uint32_t PointLinkCheck::mendEnd(PointLink const& link, SiblingList const& list) {
    if (link.field == field::children) {
        return shm::NO_POSITION;
    }
    auto const lost = claims_.claimant(link, list, reached_).value_or(shm::NO_POSITION);
    return lost == shm::NO_POSITION ? lost : reportLink(codeOfWrong(link), link, list);
}

FindingCode PointLinkCheck::codeOfWrong(PointLink const& link) const {
    if (link.target != shm::NO_POSITION && linkedTwice_[link.target]) {
        return FindingCode::PointLinkedTwice;
    }
    return link.isHead() ? FindingCode::HeadNotFirst : FindingCode::NextNotMirrored;
}

/// The first point of the list that a point stands in, NO_POSITION when the way there is broken or was gone before.
std::uint32_t PointLinkCheck::firstBefore(std::uint32_t pos, SiblingList const& list) const {
    auto first = pos;
    for (std::uint32_t steps = 0; steps < shm::MP_COUNT && !reached_[first]; ++steps) {
        auto const prev = image_.region().points[first].prev;
        if (prev == shm::NO_POSITION) {
            return first;
        }
        auto const* const previous = image_.point(prev);
        if (previous == nullptr || previous->next != first || !judge_.belongsTo(prev, list)) {
            break;
        }
        first = prev;
    }
    return shm::NO_POSITION;
}

void PointLinkCheck::noteUnlistedChildren() {
    for (auto const& parent : points_) {
        if (withBrokenHead_[parent.pos]) {
            continue;
        }
        for (auto pos = claims_.firstChildClaim(parent.pos); pos != shm::NO_POSITION;
             pos = claims_.nextClaim(pos)) {
            if (!reached_[pos]) {
                findings_.addToPoint(FindingCode::ChildNotListed, field::parent, pos,
                                     FieldValue::position(parent.pos),
                                     FieldValue::words("a point that lists it as a child"));
            }
        }
    }
}

} // namespace qel::inspect
