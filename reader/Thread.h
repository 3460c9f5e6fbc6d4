// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// Base class of the objects that own one thread.
#pragma once

#include "region/QelExport.h"

#include <atomic>
#include <memory>

namespace shm {
class OwnedThread;
}

/// Owns at most one operating-system thread (Boost.Thread), which runs run() of the derived class. A loop in run() asks
/// running() in each turn and returns when it is false.
///
/// An object must be joined before it is destroyed: the destructor detaches a thread, which then runs on.
///
/// A forked child has a copy of the object, but not its thread. There start(), join() and the destructor first
/// abandon the parent's thread, silently and without any system call for it. Then the object is one that was never
/// started.
///
/// Threads: thread-bound to the owner, who calls start() and join(). running() is thread-safe.
class QEL_EXPORT Thread {
public:
    /// Starts nothing.
    Thread();
    Thread(Thread const&) = delete;
    Thread& operator=(Thread const&) = delete;

    // Virtual operations in the order of their slots (binary interface); new ones go last.

    /// Neither stops nor joins: detaches a thread that still exists.
    virtual ~Thread();

    /// The thread's body.
    virtual void run() = 0;

    /// Called by join() on the joining thread, before it clears the running flag. Does nothing by default. Must
    /// not throw.
    virtual void preStop();

    /// Called by join() on the joining thread, after it has requested the interruption. Does nothing by default.
    /// Must not throw.
    virtual void postStop();

    /// Sets the running flag and starts the thread. If there is a thread already, only writes the line "Already
    /// started" to standard output.
    /// @throws boost::thread_resource_error when the system cannot create a thread
    void start();

    /// Clears the running flag, requests an interruption (Boost.Thread) and waits for the thread's end. The
    /// waiting itself cannot be interrupted. Does nothing to an object that was never started. Throws nothing: a
    /// failure is written to standard error and the thread is detached.
    void join();

protected:
    /// Whether the thread should run.
    ///
    /// Threads: thread-safe.
    /// @return true from start() until join(), also after run() has returned
    bool running() const { return running_.load(); }

private:
    /// Detaches the thread, if there is one.
    void detach();

    // The order and size of the members are part of the binary interface. Derived classes put their first members into
    // the padding behind the flag, so further data of the thread is in OwnedThread.
    std::unique_ptr<shm::OwnedThread> thread_;
    std::atomic<bool> running_;
};
