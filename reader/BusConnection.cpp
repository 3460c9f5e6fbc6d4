// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "reader/BusConnection.h"

#include "region/LogLine.h"

#include <gio/gio.h>
#include <unistd.h>

#include <utility>

namespace shm {

void BusConnection::Notice::tell() {
    if (!told_.exchange(true)) {
        LogLine(readerLog(), log4cpp::Priority::WARN, "onClosed")
            << "the connection to the bus was closed, changes of the structure are not heard any more";
    }
}

BusConnection::BusConnection() : process_(::getpid()), notice_(std::make_shared<Notice>()) {}

BusConnection::~BusConnection() {
    if (isOwnProcess()) {
        release();
    }
}

bool BusConnection::isOwnProcess() const {
    return process_ == ::getpid();
}

void BusConnection::hold(GDBusConnection* connection) {
    {
        std::lock_guard<std::mutex> const lock(mutex_);
        auto notice = std::make_unique<std::shared_ptr<Notice>>(notice_);
        auto const destroy = +[](void* held, GClosure* /*closure*/) {
            delete static_cast<std::shared_ptr<Notice>*>(held);
        };
        connection_ = G_DBUS_CONNECTION(g_object_ref(connection));
        handler_ = g_signal_connect_data(connection, "closed", G_CALLBACK(onClosed), notice.release(),
                                         destroy, GConnectFlags{});
    }
    if (isClosed()) {
        notice_->tell();
    }
}

void BusConnection::onClosed(GDBusConnection* /*connection*/, int /*byPeer*/, GError* /*error*/,
                             void* notice) {
    (*static_cast<std::shared_ptr<Notice>*>(notice))->tell();
}

GDBusConnection* BusConnection::held() const {
    std::lock_guard<std::mutex> const lock(mutex_);
    return connection_;
}

bool BusConnection::isClosed() const {
    std::lock_guard<std::mutex> const lock(mutex_);
    return wasClosed_ || (connection_ != nullptr && g_dbus_connection_is_closed(connection_) != 0);
}

void BusConnection::giveBack() {
    {
        std::lock_guard<std::mutex> const lock(mutex_);
        if (connection_ == nullptr) {
            return;
        }
        wasClosed_ = true;
    }
    release();
    notice_->tell();
}

void BusConnection::release() {
    // Without the lock: giving up the last reference may run handlers of others.
    GDBusConnection* connection = nullptr;
    unsigned long handler = 0;
    {
        std::lock_guard<std::mutex> const lock(mutex_);
        std::swap(connection, connection_);
        std::swap(handler, handler_);
    }
    if (connection != nullptr) {
        g_signal_handler_disconnect(connection, handler);
        g_object_unref(connection);
    }
}

} // namespace shm
