// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// The reader of a follower, and when another one takes its place.
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

/// What QelSharedMemoryFollower does before each look-up; see there.
///
/// Threads: belongs to one at a time.
class FollowedReader {
public:
    /// The parameters of QelSharedMemoryFollower. Makes no reader yet.
    FollowedReader(unsigned int seconds, std::chrono::milliseconds maxAge,
                   std::function<void(QelShmCondition)> voided);

    /// Looks at the region and makes another reader if needed, but never while this one is lent.
    QelShmCondition look();

    /// The reader of the last look, null while there is none.
    QelSharedMemoryReader* get() const { return reader_.get(); }

    /// Whether a visit runs by the reader.
    bool isLent() const { return isLent_; }

    /// To live while a visit runs by the reader: its callbacks may look, too. One at a time.
    class Loan {
    public:
        explicit Loan(FollowedReader& followed) : followed_(followed) { followed_.isLent_ = true; }
        ~Loan() { followed_.isLent_ = false; }
        Loan(Loan const&) = delete;
        Loan& operator=(Loan const&) = delete;

    private:
        FollowedReader& followed_;
    };

private:
    using Clock = std::chrono::steady_clock;

    QelShmCondition judge(NamedRegion const& named);
    bool wantsAnotherReader(QelShmCondition condition, NamedRegion const& named);
    void leave(QelShmCondition condition);
    void makeReader();

    unsigned int const seconds_;
    std::chrono::milliseconds const maxAge_;
    std::function<void(QelShmCondition)> const voided_;

    std::unique_ptr<QelSharedMemoryReader> reader_;
    bool isLent_ = false;            // a visit runs by the reader, so it must stay
    bool isSound_ = false;           // the region was Active at the last look, so there may be handles
    bool wasLaidOut_ = false;        // active at some look, with this reader
    bool isOver_ = false;            // the writer of what this reader has seen has ended
    std::uint64_t changed_ = 0;      // of the object, when this reader saw it laid out
    std::optional<ObjectId> locked_; // the last object that was seen locked, by whichever reader
    Clock::time_point nextReader_;   // not earlier, unless the present one was of use
    Clock::time_point nextProbe_;    // of the bus
};

} // namespace shm
