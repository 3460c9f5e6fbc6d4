// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// Which point should stand where a link is broken.
#pragma once

#include "inspect/check/LinkJudge.h"
#include "inspect/check/PointLink.h"
#include "inspect/image/Image.h"

#include <array>
#include <bitset>
#include <cstdint>
#include <optional>

namespace qel::inspect {

using PointSet = std::bitset<shm::MP_COUNT>;

/// An index from places in lists to the slots that say of themselves, by prev and parent, that they stand there.
/// Slots whose pos is not their own are left out.
///
/// A freed slot keeps its prev, but has no parent and no next; so it can be mistaken only for a top-level point
/// without a following sibling, and of such no claim counts.
///
/// Keeps a reference to the image. Threads: const operations from any thread.
class LinkClaims {
public:
    explicit LinkClaims(Image const& image);

    /// The only slot that says it stands where the link leads to; NO_POSITION if there is none; nothing if that
    /// cannot be told.
    /// @param reached slots that do not count, as they stand somewhere else
    std::optional<std::uint32_t> claimant(PointLink const& link, SiblingList const& list,
                                          PointSet const& reached) const;

    /// The slots without a prev that name a parent, one after the other, lowest first; NO_POSITION ends them.
    std::uint32_t firstChildClaim(std::uint32_t parent) const { return firstByParent_.at(parent); }
    std::uint32_t nextClaim(std::uint32_t pos) const { return following_.at(pos); }

private:
    using Chain = std::array<std::uint32_t, shm::MP_COUNT>;

    std::uint32_t chainFor(PointLink const& link, SiblingList const& list) const;

    LinkJudge judge_;
    Chain firstByPrev_{};
    Chain firstByParent_{}; ///< of those without a prev
    std::uint32_t firstTopLevel_ = shm::NO_POSITION;
    Chain following_{};
};

} // namespace qel::inspect
