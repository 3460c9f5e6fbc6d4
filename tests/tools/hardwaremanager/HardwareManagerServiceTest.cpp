// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tools/hardwaremanager/HardwareManagerService.h"

#include "tests/support/Eventually.h"
#include "tests/support/FakeHardwareManager.h"

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
        shm::GErrorPtr const error(failure);
        if (error) {
            throw std::runtime_error(error->message);
        }
        g_dbus_connection_signal_subscribe(connection_.get(), nullptr, busName, "shmStructureChanged", "/",
                                           nullptr, G_DBUS_SIGNAL_FLAGS_NONE, onSignal, this, nullptr);
    }

    /// What "initialized" answers; nothing if the call fails.
    std::optional<int> initialized() {
        answer_.reset();
        isAnswered_ = false;
        g_dbus_connection_call(connection_.get(), busName, "/", busName, "initialized", nullptr,
                               G_VARIANT_TYPE("(i)"), G_DBUS_CALL_FLAGS_NO_AUTO_START, -1, nullptr, onAnswer,
                               this);
        EXPECT_TRUE(waitFor([this] { return isAnswered_; }));
        return answer_;
    }

    /// Why the last call got no answer, "" if it did.
    std::string const& error() const { return error_; }

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

    shm::GObjectPtr<GDBusConnection> connection_;
    std::optional<int> answer_;
    std::string error_;
    bool isAnswered_ = false;
    int signals_ = 0;
};

} // namespace

TEST(HardwareManagerServiceTest, Initialized_IsWhatTheAnswerGives) {
    int state = 0;
    HardwareManagerService sut([&] { return state; });
    sut.ownName();
    Client client;

    EXPECT_EQ(0, client.initialized());
    state = 1;
    EXPECT_EQ(1, client.initialized());
}

TEST(HardwareManagerServiceTest, AnswerThatThrows_IsAnErrorOfTheCall) {
    HardwareManagerService sut([]() -> int { throw std::runtime_error("not today"); });
    sut.ownName();
    Client client;

    EXPECT_EQ(std::nullopt, client.initialized());
    EXPECT_EQ("GDBus.Error:org.qel.Error: not today", client.error());
}

TEST(HardwareManagerServiceTest, Announcement_IsTheSignal) {
    HardwareManagerService sut([] { return 0; });
    sut.ownName();
    Client client;
    ASSERT_EQ(0, client.initialized()) << "the subscription is in place";
    EXPECT_EQ(0, client.signals());

    sut.announceStructureChange();

    EXPECT_TRUE(Client::waitFor([&] { return client.signals() == 1; }));
}

TEST(HardwareManagerServiceTest, TakenName_IsRefused) {
    test::FakeHardwareManager other;
    HardwareManagerService sut([] { return 0; });

    try {
        sut.ownName();
        FAIL() << "owned";
    } catch (std::runtime_error const& error) {
        EXPECT_STREQ("another process owns org.qel.HardwareManager on the system bus; end it first, since a "
                     "unit has one "
                     "hardware manager",
                     error.what());
    }
    other.releaseName();
    EXPECT_NO_THROW(sut.ownName());
    EXPECT_NO_THROW(sut.ownName()) << "again";
}

TEST(HardwareManagerServiceTest, ClosedConnection_IsALoss) {
    bool isLost = false;
    HardwareManagerService const sut([] { return 0; }, [&] { isLost = true; });
    g_dbus_connection_close_sync(sut.connection(), nullptr, nullptr);
    EXPECT_TRUE(Client::waitFor([&] { return isLost; }));
}

TEST(HardwareManagerServiceTest, Destroyed_ServesNoMore) {
    Client client;
    {
        HardwareManagerService sut([] { return 0; });
        sut.ownName();
        EXPECT_EQ(0, client.initialized());
    }
    EXPECT_EQ(std::nullopt, client.initialized());
}

} // namespace qel::tools
