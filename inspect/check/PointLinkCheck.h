// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// Holds the links between points against each other.
#pragma once

#include "inspect/check/FindingList.h"
#include "inspect/check/LinkClaims.h"
#include "inspect/check/LinkJudge.h"
#include "inspect/check/PointLink.h"
#include "inspect/image/Image.h"
#include "inspect/image/PointTree.h"

#include <cstdint>
#include <vector>

namespace qel::inspect {

/// A point with the place that links and check agree on.
struct PlacedPoint {
    std::uint32_t pos = shm::NO_POSITION;
    std::uint32_t previous = shm::NO_POSITION; ///< sibling before it, NO_POSITION for the first one
    SiblingList list;
};

/// Walks devices, groups and children, and adds one finding per broken link. Where a link is broken the walk goes on
/// with the point that should stand there, if that can be told, else the list ends.
///
/// Keeps references. Threads: not shared.
class PointLinkCheck {
public:
    /// @param tree of this image: tells which points are reached in two ways
    PointLinkCheck(Image const& image, PointTree const& tree, FindingList& findings);

    /// The points reached, parents before their children, siblings in their order.
    std::vector<PlacedPoint> const& points() const { return points_; }

private:
    struct Pending {
        PointLink link;
        SiblingList list;
    };

    void walk();
    void place(std::uint32_t pos, Pending const& way);

    /// The point that a link leads to or should lead to, NO_POSITION when there is none; adds what is wrong.
    std::uint32_t resolve(PointLink const& link, SiblingList const& list);
    std::uint32_t checkTarget(PointLink const& link, SiblingList const& list);
    std::uint32_t reportLink(FindingCode code, PointLink const& link, SiblingList const& list);
    std::uint32_t mendEnd(PointLink const& link, SiblingList const& list);

    FindingCode codeOfWrong(PointLink const& link) const;
    std::uint32_t firstBefore(std::uint32_t pos, SiblingList const& list) const;
    void noteUnlistedChildren();

    Image const& image_;
    FindingList& findings_;
    LinkJudge judge_;
    LinkClaims claims_;
    PointSet linkedTwice_;
    PointSet reached_;
    PointSet withBrokenHead_; ///< points whose list of children has a finding of its own
    std::vector<PlacedPoint> points_;
    std::vector<Pending> pending_; ///< what comes next is on top
};

} // namespace qel::inspect
