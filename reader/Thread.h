// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// Base of the objects that own one thread.
#pragma once

#include "region/QelExport.h"

#include <atomic>
#include <memory>

namespace shm {
class OwnedThread;
}

/// Owns at most one operating-system thread, which runs run() of the derived class. A derived loop asks
/// running() once per turn and returns when it gives false.
///
/// An object must be joined before it is destroyed: destroying it lets its thread run on, detached.
///
/// A forked child has a copy of the object, but not its thread: there start(), join() and the destructor first let go
/// of the thread that was started before the fork, without a word and without asking the system about it, and the
/// object counts as never started.
///
/// Threads: start() and join() belong to one thread at a time; running() may be asked from any.
class QEL_EXPORT Thread {
public:
    Thread();
    Thread(Thread const&) = delete;
    Thread& operator=(Thread const&) = delete;

    // Virtual operations in slot order, part of the binary contract; new ones go last.

    /// Neither stops nor joins: detaches a thread that still exists.
    virtual ~Thread();

    /// The thread's body.
    virtual void run() = 0;

    /// Called by join() on the joining thread, before the running flag is cleared and after the interruption
    /// was requested. Both do nothing by default and must not throw.
    virtual void preStop();
    virtual void postStop();

    /// Sets the running flag and starts the thread. When there is one already, only writes "Already started"
    /// and an end of line to standard output. Throws boost::thread_resource_error when the system has no
    /// thread to give.
    void start();

    /// Clears the running flag, requests an interruption (Boost.Thread) and waits for the thread's end,
    /// itself not to be interrupted. Does nothing to an object that was never started. Throws nothing: what
    /// goes wrong is written to standard error, and the thread is detached.
    void join();

protected:
    /// True from start() until join(), also when run() has returned by itself.
    bool running() const { return running_.load(); }

private:
    void detach();

    // In the order of the binary contract. What the thread must know about itself stands with it, not here: what
    // derives from this class begins in the room behind the flag.
    std::unique_ptr<shm::OwnedThread> thread_;
    std::atomic<bool> running_;
};
