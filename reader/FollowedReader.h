// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// The reader of a follower, and when it is replaced.
#pragma once

#include "reader/NamedRegion.h"
#include "reader/QelSharedMemoryReader.h"
#include "region/QelShmCondition.h"

#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>

namespace shm {

/// What QelSharedMemoryFollower does before each look-up. See there.
///
/// Threads: thread-bound to the follower's thread.
class FollowedReader {
public:
    /// Makes no reader yet.
    /// @param seconds wait budget of each reader, see QelSharedMemoryFollower
    /// @param maxAge  maximum age of the newest value, see QelSharedMemoryFollower
    /// @param voided  callback, see QelSharedMemoryFollower
    FollowedReader(unsigned int seconds, std::chrono::milliseconds maxAge,
                   std::function<void(QelShmCondition)> voided);

    /// Examines the region and replaces the reader if needed, but never during a visit.
    /// @return the region's condition
    QelShmCondition refresh();

    /// @return the reader after the last refresh(), null while there is none
    QelSharedMemoryReader* get() const { return reader_.get(); }

    /// @return whether a VisitGuard lives
    bool isVisiting() const { return isVisiting_; }

    /// Keeps the reader from being replaced while it visits, since callbacks may call refresh() too. One at a time.
    class VisitGuard {
    public:
        /// @param followed must outlive the guard
        explicit VisitGuard(FollowedReader& followed) : followed_(followed) { followed_.isVisiting_ = true; }
        ~VisitGuard() { followed_.isVisiting_ = false; }
        VisitGuard(VisitGuard const&) = delete;
        VisitGuard& operator=(VisitGuard const&) = delete;

    private:
        FollowedReader& followed_;
    };

private:
    using Clock = std::chrono::steady_clock;

    QelShmCondition judge(NamedRegion const& named);
    bool needsNewReader(QelShmCondition condition, NamedRegion const& named);
    void reportVoid(QelShmCondition condition);
    void makeReader();

    unsigned int const seconds_;
    std::chrono::milliseconds const maxAge_;
    std::function<void(QelShmCondition)> const voided_;

    std::unique_ptr<QelSharedMemoryReader> reader_;
    bool isVisiting_ = false;        // the reader must stay
    bool mayHaveHandles_ = false;    // the region was Active at the last refresh()
    bool wasLaidOut_ = false;        // this reader has seen the region active or silent
    bool isOver_ = false;            // the writer of that region has ended
    std::uint64_t changed_ = 0;      // NamedRegion::changed() when this reader first saw the region laid out
    std::optional<ObjectId> locked_; // the last object that any reader saw locked
    Clock::time_point nextReader_;   // earliest time for a new reader after one that saw no active region
    Clock::time_point nextProbe_;    // earliest time to test the bus again
};

} // namespace shm
