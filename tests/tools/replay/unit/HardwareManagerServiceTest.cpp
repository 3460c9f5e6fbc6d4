// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tools/replay/unit/HardwareManagerService.h"

#include "tests/support/Eventually.h"
#include "tests/support/HardwareManagerService.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <optional>
#include <stdexcept>
#include <string>

namespace qel::tools {

namespace {

constexpr char busName[] = "org.qel.HardwareManager";

/// A client with a connection of its own, all on the default main context.
class Client {
public:
    Client() {
        GError* failure = nullptr;
        connection_.reset(g_dbus_connection_new_for_address_sync(
            std::getenv("DBUS_SYSTEM_BUS_ADDRESS"),
            static_cast<GDBusConnectionFlags>(G_DBUS_CONNECTION_FLAGS_AUTHENTICATION_CLIENT |
                                              G_DBUS_CONNECTION_FLAGS_MESSAGE_BUS_CONNECTION),
            nullptr, nullptr, &failure));
        GErrorPtr const error(failure);
        if (error) {
            throw std::runtime_error(error->message);
        }
        g_dbus_connection_signal_subscribe(connection_.get(), nullptr, busName, "shmStructureChanged", "/",
                                           nullptr, G_DBUS_SIGNAL_FLAGS_NONE, onSignal, this, nullptr);
    }

    /// What "initialized" answers; nothing when nobody does.
    std::optional<int> initialized() {
        answer_.reset();
        isAnswered_ = false;
        g_dbus_connection_call(connection_.get(), busName, "/", busName, "initialized", nullptr,
                               G_VARIANT_TYPE("(i)"), G_DBUS_CALL_FLAGS_NO_AUTO_START, -1, nullptr, onAnswer,
                               this);
        EXPECT_TRUE(waitFor([this] { return isAnswered_; }));
        return answer_;
    }

    int signals() const { return signals_; }

    template <typename Condition>
    static bool waitFor(Condition const& condition) {
        return test::eventually([&] {
            g_main_context_iteration(nullptr, FALSE);
            return condition();
        });
    }

private:
    static void onAnswer(GObject* connection, GAsyncResult* result, gpointer self) {
        auto& client = *static_cast<Client*>(self);
        GError* failure = nullptr;
        auto* const reply = g_dbus_connection_call_finish(G_DBUS_CONNECTION(connection), result, &failure);
        GErrorPtr const error(failure);
        if (reply != nullptr) {
            int state = -1;
            g_variant_get(reply, "(i)", &state);
            g_variant_unref(reply);
            client.answer_ = state;
        }
        client.isAnswered_ = true;
    }

    static void onSignal(GDBusConnection* /*connection*/, gchar const* /*sender*/, gchar const* /*path*/,
                         gchar const* /*interface*/, gchar const* /*name*/, GVariant* /*parameters*/,
                         gpointer self) {
        ++static_cast<Client*>(self)->signals_;
    }

    GObjectPtr<GDBusConnection> connection_;
    std::optional<int> answer_;
    bool isAnswered_ = false;
    int signals_ = 0;
};

/// A service that notes what it is told.
struct NotedService {
    bool isOwned = false;
    std::string lost;
    HardwareManagerService service{[this] { isOwned = true; },
                                   [this](std::string const& reason) {
                                       lost = reason;
                                   }};
};

} // namespace

TEST(HardwareManagerServiceTest, Initialized_IsZeroUntilItIsSet) {
    NotedService sut;
    ASSERT_TRUE(Client::waitFor([&] { return sut.isOwned; }));
    Client client;

    EXPECT_EQ(0, client.initialized());
    sut.service.setInitialized();
    EXPECT_EQ(1, client.initialized());
}

TEST(HardwareManagerServiceTest, Announcement_IsTheSignal) {
    NotedService sut;
    ASSERT_TRUE(Client::waitFor([&] { return sut.isOwned; }));
    Client client;
    ASSERT_EQ(0, client.initialized()) << "the subscription is in place";
    EXPECT_EQ(0, client.signals());

    sut.service.announceStructureChange();

    EXPECT_TRUE(Client::waitFor([&] { return client.signals() == 1; }));
}

TEST(HardwareManagerServiceTest, TakenName_IsALoss) {
    test::HardwareManagerService const other;

    NotedService const sut;

    EXPECT_TRUE(Client::waitFor([&] { return !sut.lost.empty(); }));
    EXPECT_EQ("another process serves org.qel.HardwareManager on the system bus", sut.lost);
    EXPECT_FALSE(sut.isOwned);
}

TEST(HardwareManagerServiceTest, Destroyed_ServesNoMore) {
    Client client;
    {
        NotedService sut;
        ASSERT_TRUE(Client::waitFor([&] { return sut.isOwned; }));
        EXPECT_EQ(0, client.initialized());
    }
    EXPECT_EQ(std::nullopt, client.initialized());
}

} // namespace qel::tools
