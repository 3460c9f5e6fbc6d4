// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tools/hardwaremanager/HardwareManagerService.h"

#include "tests/support/FakeHardwareManager.h"
#include "tests/tools/hardwaremanager/Client.h"

#include <gtest/gtest.h>

#include <optional>
#include <stdexcept>

namespace qel::tools {

TEST(HardwareManagerServiceTest, Initialized_IsWhatTheAnswerGives) {
    int state = 0;
    HardwareManagerService sut([&] { return state; });
    sut.ownName();
    test::Client client;

    EXPECT_EQ(0, client.initialized());
    state = 1;
    EXPECT_EQ(1, client.initialized());
}

TEST(HardwareManagerServiceTest, AnswerThatThrows_IsAnErrorOfTheCall) {
    HardwareManagerService sut([]() -> int { throw std::runtime_error("not today"); });
    sut.ownName();
    test::Client client;

    EXPECT_EQ(std::nullopt, client.initialized());
    EXPECT_EQ("GDBus.Error:org.qel.Error: not today", client.error());
}

TEST(HardwareManagerServiceTest, Announcement_IsTheSignal) {
    HardwareManagerService sut([] { return 0; });
    sut.ownName();
    test::Client client;
    ASSERT_EQ(0, client.initialized()) << "the subscription is in place";
    EXPECT_EQ(0, client.signals());

    sut.announceStructureChange();

    EXPECT_TRUE(test::Client::waitFor([&] { return client.signals() == 1; }));
}

TEST(HardwareManagerServiceTest, TakenName_IsRefused) {
    test::FakeHardwareManager other;
    HardwareManagerService sut([] { return 0; });

    try {
        sut.ownName();
        FAIL() << "owned";
    } catch (std::runtime_error const& error) {
        EXPECT_STREQ("another process owns org.qel.HardwareManager on the system bus; end it first, since a "
                     "unit has one hardware manager",
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
    EXPECT_TRUE(test::Client::waitFor([&] { return isLost; }));
}

TEST(HardwareManagerServiceTest, Destroyed_ServesNoMore) {
    test::Client client;
    {
        HardwareManagerService sut([] { return 0; });
        sut.ownName();
        EXPECT_EQ(0, client.initialized());
    }
    EXPECT_EQ(std::nullopt, client.initialized());
}

} // namespace qel::tools
