// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// A reader that follows a writer which ends and starts again.
#pragma once

#include "reader/QelSharedMemoryReader.h"
#include "region/QelExport.h"
#include "region/QelShmCondition.h"

#include <chrono>
#include <functional>
#include <memory>

namespace shm {

class FollowedReader;

/// Owns a reader and replaces it when it cannot become current any more. It returns what the reader finds only
/// while the region is Active, so it never shows a value of an ended writer as current.
///
/// It replaces the reader when
/// - the region's name leads to another object,
/// - the writer has started again: the region is active after it was not, the object is locked after it was not,
///   or another writer has reused the object between two calls,
/// - the reader has no region and will not map one: its wait budget is used up, or there was no region when the
///   hardware manager was initialised,
/// - the reader's bus connection was closed and the bus can be reached again. Until then the follower serves the
///   mapped region. If other readers of the process still hold the closed connection, the follower has no reader
///   until they are destroyed.
///
/// All of this happens inside the operations of this class, which has no thread of its own. Call one of them as
/// often as you want to follow, for example every 100 ms. If the hardware manager answers at once, the first or
/// second call after the activation finds the new content.
///
/// Cost: each operation makes a few system calls and reads the times of all points and values, some ten
/// microseconds. To look up many values in a row, call reader() once. Replacing the reader destroys the old one
/// first, since the process shares one bus connection. That may take as long as ~QelSharedMemoryReader() does;
/// constructing the new one also asks the bus. The follower makes at most one reader in 250 ms, unless the
/// previous one had an active region, and at most one per second while there is no bus. It tests a closed bus at
/// most once per second, by a connection that may take 2 s.
///
/// Logs nothing itself; its readers do. No operation throws because the bus or the region is missing.
///
/// Threads: thread-bound to one thread at a time. The thread-default main context of that thread receives the reader's
/// signals.
class QEL_EXPORT QelSharedMemoryFollower {
public:
    /// Called when all handles that the follower has returned become void: they must not be used any more. It must
    /// neither throw nor call the follower.
    using Voided = std::function<void(QelShmCondition)>;

    /// Makes no reader yet; the first operation does.
    /// @param seconds wait budget of each reader, see QelSharedMemoryReader; 0 never maps a region
    /// @param maxAge  age up to which the newest value is current, see QelSharedMemoryReader::condition()
    /// @param voided  called once each time the region stops being Active or its reader is replaced: within the
    ///                operation that notices it, before the reader is destroyed. It gets the region's condition,
    ///                which is Active if only the bus connection was lost. May be empty. Not called by the
    ///                destructor.
    QelSharedMemoryFollower(unsigned int seconds, std::chrono::milliseconds maxAge, Voided voided = {});

    /// Destroys the reader. See ~QelSharedMemoryReader() for how long that may take.
    ~QelSharedMemoryFollower();
    QelSharedMemoryFollower(QelSharedMemoryFollower const&) = delete;
    QelSharedMemoryFollower& operator=(QelSharedMemoryFollower const&) = delete;

    /// Examines the region and replaces the reader if needed.
    /// @return the condition; Gone while there is no reader because there is no bus
    QelShmCondition condition();

    /// Does the same as condition().
    /// @return the reader if the condition is Active, else null. It stays owned by the follower and is valid until
    ///         the next call of any operation. What it finds is valid until `voided` is called
    QelSharedMemoryReader* reader();

    /// Finds a point. See QelSharedMemoryReader::mpnt().
    /// @param svid  sensor id of the point
    /// @param force whether to rebuild the index first
    /// @return the point; null if there is none, the region is not Active, or the slot holds another point by now
    std::unique_ptr<QelShmMPnt> mpnt(long long svid, bool force = false);

    /// Finds a value. See QelSharedMemoryReader::mval().
    /// @param svid  sensor id of the value
    /// @param force whether to rebuild the index first
    /// @return the value; a null handle if there is none or the region is not Active
    QelShmMVal mval(long long svid, bool force = false);

    /// Finds a value that is read repeatedly.
    /// @param kept names the value; stays valid when the reader is replaced
    /// @return the value; a null handle if there is none or the region is not Active
    QelShmMVal mval(QelShmKeptMVal& kept);

    /// Visits the whole region if it is Active.
    ///
    /// The callbacks may call the look-ups of this follower. The reader is not replaced during the visit: once the
    /// region is not Active any more, the look-ups return nothing, and the visit continues in the region in which
    /// it began. A visit inside a visit does nothing. The callbacks must not destroy the follower.
    /// @param visitor not owned; installed in the reader for this visit, which has no visitor afterwards
    /// @param result  passed to each callback
    /// @return whether the visit took place
    /// @throws std::bad_alloc and what a callback throws
    bool visit(IQelSharedMemoryVisitor& visitor, std::shared_ptr<IQelVisitorResult>& result);

private:
    std::unique_ptr<FollowedReader> followed_;
};

} // namespace shm
