// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

// Announcements of changed structure by the thousand.

#include "reader/QelSharedMemoryReader.h"
#include "tests/faults/FaultLines.h"
#include "tests/reader/BusFailures.h"
#include "tests/support/Eventually.h"
#include "tests/support/FakeHardwareManager.h"
#include "tests/support/ForgedRegion.h"
#include "tests/support/MainLoopThread.h"

#include <gtest/gtest.h>

#include <chrono>
#include <memory>
#include <vector>

namespace {

using namespace std::chrono_literals;
using qel::test::eventually;
using qel::test::ForgedRegion;
using qel::test::LogCapture;
using qel::test::readerDebug;

constexpr char busName[] = "org.qel.HardwareManager";
constexpr char structureChanged[] = "shmStructureChanged";
constexpr unsigned int storm = 10000;
constexpr long long unit = 0x0100FFFFFFFF0000;

/// Sends from a connection of its own, which owns no name: any sender counts.
class Sender {
public:
    Sender()
        : connection_(g_dbus_connection_new_for_address_sync(
              g_getenv("DBUS_SYSTEM_BUS_ADDRESS"),
              static_cast<GDBusConnectionFlags>(G_DBUS_CONNECTION_FLAGS_AUTHENTICATION_CLIENT |
                                                G_DBUS_CONNECTION_FLAGS_MESSAGE_BUS_CONNECTION),
              nullptr, nullptr, nullptr)) {}

    void send(char const* path, char const* interface, char const* name) const {
        EXPECT_TRUE(g_dbus_connection_emit_signal(connection_.get(), nullptr, path, interface, name, nullptr,
                                                  nullptr));
    }
    void flush() const { EXPECT_TRUE(g_dbus_connection_flush_sync(connection_.get(), nullptr, nullptr)); }

private:
    shm::GObjectPtr<GDBusConnection> connection_;
};

class SignalStorm : public testing::TestWithParam<unsigned int> {};

TEST_P(SignalStorm, CountsForEachReader_AndTheNextLookUpRebuildsOnce) {
    ForgedRegion const region;
    region.point(5, unit);
    region.devices({5});
    std::vector<std::unique_ptr<shm::QelSharedMemoryReader>> readers;
    for (unsigned int reader = 0; reader < GetParam(); ++reader) {
        readers.push_back(std::make_unique<shm::QelSharedMemoryReader>(0, false));
        readers.back()->onInitialized();
    }
    auto& sut = *readers.front();
    sut.syncPositions(true);
    ASSERT_EQ(0U, sut.modifications());

    {
        LogCapture const quiet("qel.shm.access.reader", log4cpp::Priority::INFO);
        qel::test::MainLoopThread const loop;
        Sender const sender;
        for (unsigned int number = 0; number < storm; ++number) {
            sender.send("/", busName, structureChanged);
            sender.send("/other", busName, structureChanged);
            sender.send("/", "org.qel.Other", structureChanged);
            sender.send("/", busName, "other");
        }
        sender.flush();
        EXPECT_TRUE(eventually([&] { return sut.modifications() >= storm * GetParam(); }, 120s));
        sender.send("/", busName, structureChanged); // comes after all of them
        sender.flush();
        EXPECT_TRUE(eventually([&] { return sut.modifications() >= (storm + 1) * GetParam(); }));
        EXPECT_EQ((storm + 1) * GetParam(), sut.modifications());
    }

    LogCapture const log("qel.shm.access.reader");
    EXPECT_NE(nullptr, sut.mpnt(unit, false));
    EXPECT_NE(nullptr, sut.mpnt(unit, false));
    EXPECT_EQ(nullptr, sut.mpnt(unit + 0x10000, false));
    EXPECT_EQ(std::vector{readerDebug("syncPositions: modifications = 0")}, log.entries());
}

INSTANTIATE_TEST_SUITE_P(Readers, SignalStorm, testing::Values(1U, 3U));

} // namespace
