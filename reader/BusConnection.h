// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// The D-Bus connection on which a reader has subscribed.
#pragma once

#include <atomic>
#include <memory>
#include <mutex>

#include <sys/types.h>

// NOLINTBEGIN(bugprone-reserved-identifier): the names that GLib declares.
using GDBusConnection = struct _GDBusConnection;
using GError = struct _GError;
// NOLINTEND(bugprone-reserved-identifier)

namespace shm {

/// Holds one reference to a connection, since its subscriptions end with the last reference. Logs once at WARN in
/// "qel.shm.access.reader" that the connection was closed; the signal for that arrives in the GLib main context in
/// which the connection was made.
///
/// A forked child releases nothing: it lacks GLib's thread for the connection, and that thread's locks may stay
/// locked for ever.
///
/// Threads: thread-safe.
class BusConnection {
public:
    /// Holds nothing yet. Notes the process id.
    BusConnection();

    /// Releases the connection.
    ~BusConnection();
    BusConnection(BusConnection const&) = delete;
    BusConnection& operator=(BusConnection const&) = delete;

    /// @return whether this is the process that made the object, not a child that was forked since
    bool isOwnProcess() const;

    /// Takes a reference to a connection. Call it once. Logs at once if the connection is closed already, since no
    /// signal would follow.
    /// @param connection not null
    void hold(GDBusConnection* connection);

    /// @return the connection, null for none; the caller gets no reference
    GDBusConnection* held() const;

    /// @return whether the connection has been closed, also if it was released since
    bool isClosed() const;

    /// Releases a closed connection, so that the process can get a new one. Logs that it was closed, unless that
    /// is logged already.
    void giveBack();

private:
    /// Logs the closing once, whoever notices it first. Shared by the object and GLib's closure, so that it
    /// outlives the object while a call is under way.
    class Notice {
    public:
        void tell();

    private:
        std::atomic<bool> told_{false};
    };

    static void onClosed(GDBusConnection* connection, int byPeer, GError* error, void* notice);
    void release();

    pid_t const process_;
    mutable std::mutex mutex_; // guards the next three
    GDBusConnection* connection_ = nullptr;
    unsigned long handler_ = 0;
    bool wasClosed_ = false;
    std::shared_ptr<Notice> const notice_;
};

} // namespace shm
