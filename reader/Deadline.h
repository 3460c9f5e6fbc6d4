// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// An end for what GIO may wait for without one.
#pragma once

#include "reader/GLibPtr.h"

#include <gio/gio.h>

#include <chrono>
#include <future>
#include <thread>

namespace shm {

/// Cancels what takes too long: reaching a bus has no time-out of its own, GLib knows one for calls alone.
///
/// In a header alone, since the tools use it, too.
///
/// Threads: belongs to the thread that made it.
class Deadline {
public:
    /// Starts to count, in a thread of its own.
    /// @throws std::system_error when there is no thread
    explicit Deadline(std::chrono::milliseconds patience)
        : cancellable_(g_cancellable_new()),
          watch_([this, patience, over = over_.get_future()] {
              if (over.wait_for(patience) == std::future_status::timeout) {
                  g_cancellable_cancel(cancellable_.get());
              }
          }) {}

    /// Ends at once, whether the time is over or not.
    ~Deadline() {
        over_.set_value();
        watch_.join();
    }
    Deadline(Deadline const&) = delete;
    Deadline& operator=(Deadline const&) = delete;

    /// For the operations that the time is for. Good for the object's life.
    GCancellable* cancellable() const { return cancellable_.get(); }

private:
    GObjectPtr<GCancellable> cancellable_;
    std::promise<void> over_;
    std::thread watch_; // last: uses the others
};

} // namespace shm
