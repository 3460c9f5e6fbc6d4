// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// An operating-system thread that knows in which process it runs.
#pragma once

#include <boost/thread/thread_only.hpp>

#include <cstdint>
#include <functional>
#include <memory>

namespace shm {

/// The thread of a Thread object. fork() copies the object, but not the thread: in the child this object stands for a
/// thread that does not exist, and whatever Boost or the system is asked about it may wait for ever, its destructor
/// included. Such an object is abandoned.
///
/// Threads: belongs to one thread at a time.
class OwnedThread {
public:
    /// Starts the thread.
    /// @throws boost::thread_resource_error if the system cannot start one
    explicit OwnedThread(std::function<void()> const& body);
    OwnedThread(OwnedThread const&) = delete;
    OwnedThread& operator=(OwnedThread const&) = delete;
    ~OwnedThread() = default;

    /// False in a process that was forked since the thread was started.
    bool isOfThisProcess() const noexcept;

    /// Lets go of a thread of another process without touching it. Its memory is never freed.
    static void abandon(std::unique_ptr<OwnedThread> foreign) noexcept;

    boost::thread& thread() { return thread_; }

private:
    std::uint64_t const process_; // mark of the process that started the thread
    boost::thread thread_;
    OwnedThread* nextAbandoned_ = nullptr;
};

} // namespace shm
