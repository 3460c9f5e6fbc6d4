// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// Checks the links between points.
#pragma once

#include "inspect/check/Finding.h"
#include "inspect/image/Image.h"
#include "inspect/image/PointTree.h"

#include "domain/SensorType.h"

#include <array>
#include <bitset>
#include <cstdint>
#include <optional>
#include <vector>

namespace qel::inspect {

/// A set of point slots.
using PointSet = std::bitset<shm::MP_COUNT>;

/// A list of siblings: one of the root's two lists, or a point's children.
struct SiblingList {
    std::uint32_t parent = shm::NO_POSITION;    ///< NO_POSITION for a list of the root
    std::optional<SensorType::SensorType> kind; ///< of all points in a list of the root
};

/// A field that leads to a point of a list: the head of the list or a point's next.
struct PointLink {
    RegionField field;
    std::uint32_t pos = 0; ///< the slot with the field, 0 for the root
    std::uint32_t target = shm::NO_POSITION;

    bool isHead() const { return !(field == field::next); }

    /// The sibling before the target, NO_POSITION if the target is the first point.
    std::uint32_t previous() const { return isHead() ? shm::NO_POSITION : pos; }

    /// The point with the field, NO_POSITION for the root.
    std::uint32_t point() const { return field.place == Place::Root ? shm::NO_POSITION : pos; }
};

/// Which end of a link is wrong.
enum class LinkVerdict : std::uint8_t {
    Sound,
    LinkWrong,   ///< the link: its target belongs elsewhere
    PrevWrong,   ///< the target's prev
    ParentWrong, ///< the target's parent
};

/// Compares links with the prev and parent of the slots, which name the place where a point belongs. It looks at slots
/// only, whether they are reached or not. Keeps a reference to the image.
///
/// A freed slot keeps its prev, but loses its parent and next. So it can be confused only with a top-level point that
/// has no next sibling.
///
/// Threads: thread-safe.
class LinkEvidence {
public:
    explicit LinkEvidence(Image const& image);

    /// Decides which end is wrong if link and target disagree. The link is, if neither prev nor parent of the target
    /// agree with it, or if another link leads to the target from the place that they name. Else the field that
    /// disagrees is.
    /// @param link its target is a slot
    LinkVerdict judge(PointLink const& link, SiblingList const& list) const;

    /// Whether a point's parent and, in a list of the root, its sensor type are those of a list.
    bool belongsTo(std::uint32_t pos, SiblingList const& list) const;

    /// Whether a point has a next sibling whose prev is the point. No freed slot has one.
    bool hasFollower(std::uint32_t pos) const;

    /// Finds the slot that names the link's place as its own. A slot whose pos is wrong and, in a list of the root, one
    /// that may be freed do not count.
    /// @param reached these slots do not count, as they stand elsewhere
    /// @return NO_POSITION if there is none, nothing if that is uncertain or there are several
    std::optional<std::uint32_t> claimant(PointLink const& link, SiblingList const& list,
                                          PointSet const& reached) const;

    /// The slots without a prev that name a parent, lowest first.
    std::vector<std::uint32_t> firstChildren(std::uint32_t parent) const;

private:
    using Positions = std::array<std::uint32_t, shm::MP_COUNT>;

    bool hasOtherLink(PointLink const& link) const;
    std::uint32_t firstClaim(PointLink const& link, SiblingList const& list) const;

    Image const& image_;
    // Chains of slots that name the same place, lowest first; NO_POSITION ends them.
    Positions firstByPrev_{};
    Positions firstByParent_{}; ///< of those without a prev
    std::uint32_t firstTopLevel_ = shm::NO_POSITION;
    Positions following_{};
};

/// A point and its place, which link and point agree on as far as they can.
struct PlacedPoint {
    std::uint32_t pos = shm::NO_POSITION;
    std::uint32_t previous = shm::NO_POSITION; ///< sibling before it, NO_POSITION for the first one
    SiblingList list;
};

/// Walks devices, groups and children and adds one finding for each broken link. Behind a broken link the walk goes on
/// with the point that belongs there, if it can be determined; otherwise the list ends. Keeps references.
///
/// Threads: reentrant.
class LinkCheck {
public:
    /// Walks and adds the findings.
    /// @param tree of this image; knows which points are reached twice
    LinkCheck(Image const& image, PointTree const& tree, FindingList& findings);

    /// The points reached: parents before their children, siblings in their order.
    std::vector<PlacedPoint> const& points() const { return points_; }

private:
    struct Pending {
        PointLink link;
        SiblingList list;
    };

    void walk();
    void place(std::uint32_t pos, Pending const& way);

    // Each of these adds the finding of a broken link and returns the point to go on with, NO_POSITION for none.
    std::uint32_t follow(PointLink const& link, SiblingList const& list);
    std::uint32_t followToPoint(PointLink const& link, SiblingList const& list);
    std::uint32_t followAtEnd(PointLink const& link, SiblingList const& list);
    std::uint32_t addBroken(FindingCode code, PointLink const& link, SiblingList const& list);

    FindingCode codeOf(PointLink const& broken) const;
    std::uint32_t firstSibling(std::uint32_t pos, SiblingList const& list) const;
    void addUnlistedChildren();

    Image const& image_;
    FindingList& findings_;
    LinkEvidence evidence_;
    PointSet linkedTwice_;
    PointSet reached_;
    PointSet withBrokenHead_; ///< points whose list of children has a broken head
    std::vector<PlacedPoint> points_;
    std::vector<Pending> pending_; ///< the next one is last
};

} // namespace qel::inspect
