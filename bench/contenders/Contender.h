// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// What a contender is.
#pragma once

#include <cstddef>
#include <limits>

namespace bench {

/// A contender is a struct with
///
///     name     as the report calls it
///     Input    what a Writer lays out, made from a Plan
///     Writer   open() makes an empty store, build(Input) lays out points and values, update(Access, Sample) stores a
///              sample and tells whether it could; a Writer's destructor removes the store
///     Reader   made from a Plan, in any process, once the store is built; fetch(Access) gives a value's number
///
/// and what else it can do: a Writer propagate() and bytes(), a Reader find(Access) (of a point), sumOfPoint(Access),
/// sumOfAll() and rebuildIndex(), and a KeptWriter, made from a Writer and a Plan, that updates by what a client keeps. Works list the contenders that can do them.
///
/// One Writer of a kind exists at a time: names of stores are fixed.
///
/// Threads: thread-bound to the main thread, all of them.
struct InProcess {
    /// The most operations that one round makes of a sweep over all values.
    static constexpr std::size_t roundLimit = std::numeric_limits<std::size_t>::max();
    static constexpr bool throughServer = false;

    /// Whether operations wait for other processes, so that the elapsed time counts. For all others it is the time that
    /// the thread runs, which other programs on the machine disturb less.
    static constexpr bool waits = false;
};

/// Readers and writers may wait for each other's locks.
struct Locking : InProcess {
    static constexpr bool waits = true;
};

/// A contender whose work is done by another process on request: slow, and instructions of this process tell little.
struct ThroughServer {
    static constexpr std::size_t roundLimit = 100;
    static constexpr bool throughServer = true;
    static constexpr bool waits = true;
};

} // namespace bench
