// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// A client of the hardware manager.
#pragma once

#include "reader/GLibPtr.h"
#include "tests/support/Eventually.h"

#include <gio/gio.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <optional>
#include <stdexcept>
#include <string>

namespace qel::test {

/// A client with a connection of its own, all on the default main context.
///
/// Threads: thread-bound to the thread that runs the default main context.
class Client {
public:
    Client() {
        GError* failure = nullptr;
        connection_.reset(g_dbus_connection_new_for_address_sync(
            std::getenv("DBUS_SYSTEM_BUS_ADDRESS"),
            static_cast<GDBusConnectionFlags>(G_DBUS_CONNECTION_FLAGS_AUTHENTICATION_CLIENT |
                                              G_DBUS_CONNECTION_FLAGS_MESSAGE_BUS_CONNECTION),
            nullptr, nullptr, &failure));
        shm::GErrorPtr const error(failure);
        if (error) {
            throw std::runtime_error(error->message);
        }
        subscription_ =
            g_dbus_connection_signal_subscribe(connection_.get(), nullptr, name_, "shmStructureChanged", "/",
                                               nullptr, G_DBUS_SIGNAL_FLAGS_NONE, onSignal, this, nullptr);
    }
    Client(Client const&) = delete;
    Client& operator=(Client const&) = delete;

    // A signal that waits for the main context keeps the connection, and would be counted by the next client on this
    // place of the stack.
    ~Client() { g_dbus_connection_signal_unsubscribe(connection_.get(), subscription_); }

    /// What "initialized" answers; nothing if the call fails.
    std::optional<int> initialized() {
        answer_.reset();
        isAnswered_ = false;
        g_dbus_connection_call(connection_.get(), name_, "/", name_, "initialized", nullptr,
                               G_VARIANT_TYPE("(i)"), G_DBUS_CALL_FLAGS_NO_AUTO_START, -1, nullptr, onAnswer,
                               this);
        EXPECT_TRUE(waitFor([this] { return isAnswered_; }));
        return answer_;
    }

    /// Why the last call got no answer, "" if it did.
    std::string const& error() const { return error_; }

    /// How often shmStructureChanged has arrived.
    int signals() const { return signals_; }

    /// Runs the main context until the condition holds.
    /// @return false on timeout
    template <typename Condition>
    static bool waitFor(Condition const& condition) {
        return eventually([&] {
            g_main_context_iteration(nullptr, FALSE);
            return condition();
        });
    }

private:
    static void onAnswer(GObject* connection, GAsyncResult* result, gpointer self) {
        auto& client = *static_cast<Client*>(self);
        GError* failure = nullptr;
        shm::GVariantPtr const reply(
            g_dbus_connection_call_finish(G_DBUS_CONNECTION(connection), result, &failure));
        shm::GErrorPtr const error(failure);
        client.error_ = error ? error->message : "";
        if (reply) {
            int state = -1;
            g_variant_get(reply.get(), "(i)", &state);
            client.answer_ = state;
        }
        client.isAnswered_ = true;
    }

    static void onSignal(GDBusConnection* /*connection*/, gchar const* /*sender*/, gchar const* /*path*/,
                         gchar const* /*interface*/, gchar const* /*name*/, GVariant* /*parameters*/,
                         gpointer self) {
        ++static_cast<Client*>(self)->signals_;
    }

    static constexpr char name_[] = "org.qel.HardwareManager"; // of the service and its interface

    shm::GObjectPtr<GDBusConnection> connection_;
    std::optional<int> answer_;
    std::string error_;
    bool isAnswered_ = false;
    int signals_ = 0;
    guint subscription_ = 0;
};

} // namespace qel::test
