// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// Which end of a link between points is wrong when they disagree.
#pragma once

#include "inspect/check/PointLink.h"
#include "inspect/image/Image.h"

#include <cstdint>

namespace qel::inspect {

enum class LinkVerdict : std::uint8_t {
    Sound,
    LinkWrong,   ///< the target belongs elsewhere
    PrevWrong,   ///< of the target
    ParentWrong, ///< of the target
};

/// Weighs what the target of a link says of its own place, by its prev and parent, against the link. A target that
/// says otherwise is believed when another link leads to it from the place that it names, or when both of its fields
/// say so; else it is itself wrong. Looks at slots only, reached or not.
///
/// Keeps a reference to the image. Threads: const operations from any thread.
class LinkJudge {
public:
    explicit LinkJudge(Image const& image) : image_(image) {}

    /// @param link its target is a slot
    LinkVerdict judge(PointLink const& link, SiblingList const& list) const;

    /// Whether a point can stand in a list by its parent and, at top level, by its kind.
    bool belongsTo(std::uint32_t pos, SiblingList const& list) const;

    /// Whether the following sibling exists and names the point as its prev. No freed slot has one.
    bool hasFollower(std::uint32_t pos) const;

private:
    bool hasOtherLink(PointLink const& link) const;

    Image const& image_;
};

} // namespace qel::inspect
