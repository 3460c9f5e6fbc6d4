// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// The connection to the bus that a reader has subscribed on.
#pragma once

#include <atomic>
#include <cstdint>
#include <memory>
#include <mutex>

// NOLINTBEGIN(bugprone-reserved-identifier): the names that GLib declares.
using GDBusConnection = struct _GDBusConnection;
using GError = struct _GError;
// NOLINTEND(bugprone-reserved-identifier)

namespace shm {

/// Keeps one reference to a connection, since subscriptions end with its last one, and says once at WARN in
/// "qel.shm.access.reader" that it was closed. The connection says so in the GLib main context in which it was made.
///
/// In a forked child nothing is given back: the thread of GLib that serves the connection is not there, and its locks
/// may be taken for good.
///
/// Threads: thread-safe.
class BusConnection {
public:
    /// Holds nothing yet.
    BusConnection();

    /// Gives the connection back.
    ~BusConnection();
    BusConnection(BusConnection const&) = delete;
    BusConnection& operator=(BusConnection const&) = delete;

    /// Whether this is the process that made the object, not a child that was forked since.
    bool isOwnProcess() const;

    /// Takes a reference to the connection; to be called once, and not with null. Tells at once if it is closed already,
    /// since nothing else would.
    void hold(GDBusConnection* connection);

    /// What is held, null for nothing. The reference stays here.
    GDBusConnection* held() const;

    /// Whether the connection was held and has been closed, also when it was given back since.
    bool isClosed() const;

    /// Gives the connection back, so that the process can get a new one. Tells that it was closed, if the main context
    /// has not done so yet. For a closed connection.
    void giveBack();

private:
    /// Tells of one closed connection once, whoever comes first. Owned by the object and by GLib's closure, so that a
    /// call under way outlives the object.
    class Notice {
    public:
        void tell();

    private:
        std::atomic<bool> told_{false};
    };

    static void onClosed(GDBusConnection* connection, int byPeer, GError* error, void* notice);
    void release();

    std::uint64_t const process_; // mark of the process that made the object
    mutable std::mutex mutex_;    // guards the next three
    GDBusConnection* connection_ = nullptr;
    unsigned long handler_ = 0;
    bool wasClosed_ = false;
    std::shared_ptr<Notice> const notice_;
};

} // namespace shm
