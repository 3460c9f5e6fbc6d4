// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "reader/BusConnection.h"

#include "tests/reader/BusFailures.h"
#include "tests/support/Eventually.h"
#include "tests/support/LogCapture.h"
#include "tests/support/Sanitizers.h"

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <atomic>
#include <memory>
#include <thread>
#include <vector>

namespace {

using qel::test::closeSharedConnection;
using qel::test::eventually;
using qel::test::LogCapture;
using qel::test::LogEntry;
using qel::test::sharedConnection;
using shm::BusConnection;

LogEntry closedLine() {
    return {
        "qel.shm.access.reader", log4cpp::Priority::WARN,
        "onClosed: the connection to the bus was closed, changes of the structure are not heard any more"};
}

/// Whether the shared connection is the very one, which nobody but the holder keeps.
bool isShared(GDBusConnection const* connection) {
    return sharedConnection().get() == connection;
}

TEST(BusConnectionTest, AtFirst_HoldsNothing) {
    BusConnection const sut;
    EXPECT_EQ(sut.held(), nullptr);
    EXPECT_FALSE(sut.isClosed());
    EXPECT_TRUE(sut.isOwnProcess());
}

TEST(BusConnectionTest, Held_OutlivesItsOtherUsers) {
    BusConnection sut;
    sut.hold(sharedConnection().get());
    EXPECT_TRUE(isShared(sut.held()));
    EXPECT_FALSE(sut.isClosed());
}

TEST(BusConnectionTest, End_GivesTheReferenceBack) {
    auto connection = sharedConnection();
    std::atomic<bool> isGone{false};
    g_object_weak_ref(
        G_OBJECT(connection.get()),
        [](void* flag, GObject*) { *static_cast<std::atomic<bool>*>(flag) = true; }, &isGone);
    {
        BusConnection sut;
        sut.hold(connection.get());
        connection.reset();
        EXPECT_FALSE(isGone);
    }
    EXPECT_TRUE(eventually([&] { return isGone.load(); })) << "GLib's own thread may be the last";
}

TEST(BusConnectionTest, Closed_IsToldOnce) {
    BusConnection sut;
    sut.hold(sharedConnection().get());
    LogCapture const log;
    closeSharedConnection();
    EXPECT_TRUE(sut.isClosed());
    EXPECT_EQ(log.entries(), std::vector<LogEntry>{closedLine()});

    sut.giveBack();
    EXPECT_EQ(sut.held(), nullptr);
    EXPECT_TRUE(sut.isClosed());
    EXPECT_EQ(log.entries(), std::vector<LogEntry>{closedLine()});
}

TEST(BusConnectionTest, ClosedBeforeItIsHeld_IsToldAtOnceAndOnce) {
    auto const connection = sharedConnection();
    closeSharedConnection();
    LogCapture const log;
    BusConnection sut;
    sut.hold(connection.get());
    EXPECT_TRUE(sut.isClosed());
    EXPECT_EQ(log.entries(), std::vector<LogEntry>{closedLine()});
    sut.giveBack();
    EXPECT_EQ(log.entries(), std::vector<LogEntry>{closedLine()});
}

TEST(BusConnectionTest, ClosedButNotDispatched_IsToldWhenGivenBack) {
    BusConnection sut;
    auto const connection = sharedConnection();
    g_dbus_connection_set_exit_on_close(connection.get(), FALSE);
    sut.hold(connection.get());
    LogCapture const log;
    g_dbus_connection_close_sync(connection.get(), nullptr, nullptr);
    EXPECT_TRUE(sut.isClosed());
    EXPECT_TRUE(log.entries().empty());
    sut.giveBack();
    EXPECT_EQ(log.entries(), std::vector<LogEntry>{closedLine()});
    while (g_main_context_iteration(nullptr, FALSE) != 0) {
    }
    EXPECT_EQ(log.entries(), std::vector<LogEntry>{closedLine()});
}

TEST(BusConnectionTest, ClosedAfterItsEnd_IsToldByNobody) {
    auto const connection = sharedConnection();
    {
        BusConnection sut;
        sut.hold(connection.get());
    }
    LogCapture const log;
    closeSharedConnection();
    EXPECT_TRUE(log.entries().empty());
}

TEST(BusConnectionTest, EndsWhileClosedIsDispatched_WithoutRace) {
    auto const connection = sharedConnection();
    std::vector<std::unique_ptr<BusConnection>> suts(64);
    for (auto& sut : suts) {
        sut = std::make_unique<BusConnection>();
        sut->hold(connection.get());
    }
    std::thread end([&] { suts.clear(); });
    closeSharedConnection();
    end.join();
}

TEST(BusConnectionTest, InAForkedChild_IsNotTheOwnProcess_AndGivesNothingBack) {
    QEL_SKIP_FORK_UNDER_ADDRESS_SANITIZER();
    auto const connection = sharedConnection();
    bool isGone = false;
    auto sut = std::make_unique<BusConnection>();
    sut->hold(connection.get());
    auto const references = G_OBJECT(connection.get())->ref_count;
    auto const child = ::fork();
    ASSERT_GE(child, 0);
    if (child == 0) {
        isGone = sut->isOwnProcess();
        sut.reset();
        ::_exit(!isGone && G_OBJECT(connection.get())->ref_count == references ? 0 : 1);
    }
    int status = -1;
    ASSERT_EQ(::waitpid(child, &status, 0), child);
    EXPECT_EQ(status, 0);
    EXPECT_TRUE(sut->isOwnProcess());
}

} // namespace
