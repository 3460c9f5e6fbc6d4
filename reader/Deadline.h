// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// A time limit for GIO operations that have none.
#pragma once

#include "reader/GLibPtr.h"

#include <gio/gio.h>

#include <chrono>
#include <future>
#include <thread>

namespace shm {

/// Cancels GIO operations after a time. GLib has a time-out for D-Bus calls, but none for connecting to a bus.
///
/// Header-only, since the tools use it too.
///
/// Threads: thread-bound to the thread that made it.
class Deadline {
public:
    /// Starts a thread that waits for the end of the time.
    /// @param patience the time
    /// @throws std::system_error when no thread can be created
    explicit Deadline(std::chrono::milliseconds patience)
        : cancellable_(g_cancellable_new()),
          watch_([this, patience, over = over_.get_future()] {
              if (over.wait_for(patience) == std::future_status::timeout) {
                  g_cancellable_cancel(cancellable_.get());
              }
          }) {}

    /// Ends the thread at once.
    ~Deadline() {
        over_.set_value();
        watch_.join();
    }
    Deadline(Deadline const&) = delete;
    Deadline& operator=(Deadline const&) = delete;

    /// @return to be passed to the operations that are limited; valid as long as this object
    GCancellable* cancellable() const { return cancellable_.get(); }

private:
    GObjectPtr<GCancellable> cancellable_;
    std::promise<void> over_;
    std::thread watch_; // last: uses the others
};

} // namespace shm
