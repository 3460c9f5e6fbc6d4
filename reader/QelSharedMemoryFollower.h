// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// The data plane of a unit whose writing process comes and goes.
#pragma once

#include "reader/QelSharedMemoryReader.h"
#include "region/QelExport.h"
#include "region/QelShmCondition.h"

#include <chrono>
#include <functional>
#include <memory>

namespace shm {

class FollowedReader;

/// Owns a reader and makes a new one when the old one cannot become current any more. It hands out what its reader finds
/// only while the reader's region is Active, so no value of an ended writer is shown as current.
///
/// A new reader is made when
/// - the region's name leads to another object,
/// - the writer came back: the region is active after it was not, the object is locked after it was not, or the object
///   was taken over by another writer between two looks,
/// - the reader has no region and will get none: its wait budget ran out, or the region was not there to map when the
///   hardware manager was initialised,
/// - the reader's connection to the bus was closed and the bus can be reached again. Until then its region is served on.
///   Beside other readers of the process, which share that connection and hold it on, there is no reader from then until
///   these are gone.
///
/// All of that happens within the operations of this class: without a call nothing is followed, and there is no thread
/// beside the reader's own. Call one of them at least as often as you want to follow, say every 100 ms. With a hardware
/// manager that answers at once, a look-up finds the new content with the first call or two after the activation.
///
/// What an operation costs: a look at the object (a few system calls) and at the times of all points and values, some ten
/// microseconds; whoever looks up many values in a row takes reader() once. When a new reader is made, the old one is
/// destroyed first, since the process shares one connection to the bus: that may take a pause of 250 ms, three creations of
/// a proxy and a D-Bus call under way if it was still waiting (see ~QelSharedMemoryReader()), and the new one's
/// construction asks the bus, too. At most one reader is made in 250 ms, unless the former one was of use, and one in a second while there is no bus.
/// To learn whether a closed bus can be reached again takes a connection to it, at most once in a second, and 2 s at most.
///
/// Logs nothing of its own; its readers log as ever. No operation throws for want of a bus or of a region.
///
/// Threads: belongs to one thread at a time, the one whose thread-default main context receives the reader's signals.
class QEL_EXPORT QelSharedMemoryFollower {
public:
    /// Told when the handles that were given out became void, in whose place nothing may be read any more. Must neither
    /// throw nor call the follower.
    using Voided = std::function<void(QelShmCondition)>;

    /// Makes no reader yet; the first operation does.
    /// @param seconds wait budget of each reader, as that of QelSharedMemoryReader; 0 never maps a region
    /// @param maxAge age up to which the newest delivery is current; see QelSharedMemoryReader::condition()
    /// @param voided told once each time when the region was Active and is no longer, or when its reader is exchanged: after
    ///        the call that found it out began, before the reader is destroyed. It gets the region's condition; Active if
    ///        only the connection to the bus was lost. May be empty. Not told at the follower's end.
    QelSharedMemoryFollower(unsigned int seconds, std::chrono::milliseconds maxAge, Voided voided = {});

    /// Destroys the reader; see ~QelSharedMemoryReader() for how long that may take.
    ~QelSharedMemoryFollower();
    QelSharedMemoryFollower(QelSharedMemoryFollower const&) = delete;
    QelSharedMemoryFollower& operator=(QelSharedMemoryFollower const&) = delete;

    /// Looks at the region, follows if needed, and tells the condition that the look-ups below meet. Gone while there is no
    /// reader for want of a bus.
    QelShmCondition condition();

    /// The same, and gives the reader if the condition is Active, else null.
    /// @return good until the next call of any operation, and not to be destroyed or kept; what it finds is good until
    ///         `voided` is told
    QelSharedMemoryReader* reader();

    /// A point by its sensor id. Null if there is none or the region is not Active, and for a slot that shows another
    /// point by now.
    std::unique_ptr<QelShmMPnt> mpnt(long long svid, bool force = false);

    /// A value by its sensor id. A null handle if there is none or the region is not Active.
    QelShmMVal mval(long long svid, bool force = false);

    /// The same for a value that is read over and over. It outlives readers: what it remembers of a former one is not used.
    QelShmMVal mval(QelShmKeptMVal& kept);

    /// Takes a visitor round the whole region, and none while it is not Active.
    ///
    /// The callbacks may call the look-ups of this follower, but nothing is followed before the visit has ended: they give
    /// nothing once the region is not Active any more, and the visit goes on by the region that it began with. A visit
    /// inside a visit does not take place. The callbacks must not destroy the follower.
    /// @param visitor not owned. The visitor of the follower's reader for this visit; the reader has none afterwards
    /// @param result handed to each callback
    /// @return whether the visit took place
    /// @throws std::bad_alloc and whatever a callback throws
    bool visit(IQelSharedMemoryVisitor& visitor, std::shared_ptr<IQelVisitorResult>& result);

private:
    std::unique_ptr<FollowedReader> followed_;
};

} // namespace shm
