// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// Runs a GLib main context in the background.
#pragma once

#include <atomic>
#include <thread>

// NOLINTNEXTLINE(bugprone-reserved-identifier): the name that GLib declares
using GMainContext = struct _GMainContext;

namespace qel::test {

/// Iterates a main context on a thread of its own while the object exists. D-Bus signals reach a reader that was made on
/// the main thread only while a thread iterates the default context.
///
/// Threads: thread-bound to the thread that made it.
class MainLoopThread {
public:
    /// @param context null for the global default context
    explicit MainLoopThread(GMainContext* context = nullptr);
    ~MainLoopThread();
    MainLoopThread(MainLoopThread const&) = delete;
    MainLoopThread& operator=(MainLoopThread const&) = delete;

private:
    GMainContext* context_;
    std::atomic<bool> running_;
    std::thread thread_;
};

} // namespace qel::test
