// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// A thread that knows whether it runs in this process.
#pragma once

#include <boost/thread/thread_only.hpp>

#include <cstdint>
#include <functional>
#include <memory>

namespace shm {

/// The thread of a Thread object. fork() copies the object, but not the thread: in the child the object represents
/// a thread that does not exist. Any call of Boost or the system for it, even its destructor, may wait for ever.
/// Such an object must be abandoned.
///
/// Threads: thread-bound to the owner of the Thread object.
class OwnedThread {
public:
    /// Starts the thread.
    /// @param body what it runs
    /// @throws boost::thread_resource_error when no thread can be created, or pthread_atfork() fails
    explicit OwnedThread(std::function<void()> const& body);
    OwnedThread(OwnedThread const&) = delete;
    OwnedThread& operator=(OwnedThread const&) = delete;
    ~OwnedThread() = default;

    /// @return false in a process that was forked after the thread was started
    bool isOfThisProcess() const noexcept;

    /// Abandons a thread of another process without touching it. Its memory is never freed.
    /// @param foreign for which isOfThisProcess() is false
    static void abandon(std::unique_ptr<OwnedThread> foreign) noexcept;

    /// @return the thread, valid as long as this object
    boost::thread& thread() { return thread_; }

private:
    std::uint32_t const forks_; // number of forks that led to this process, when the thread was started
    boost::thread thread_;
    OwnedThread* nextAbandoned_ = nullptr;
};

} // namespace shm
