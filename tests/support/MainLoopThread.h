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

/// Dispatches what arrives in a main context, on a thread of its own, for as long as the object lives. D-Bus
/// signals reach a reader that was built on the main thread only while somebody does this for the default
/// context.
class MainLoopThread {
public:
    /// @param context one more reference is taken; null for the global default context
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
