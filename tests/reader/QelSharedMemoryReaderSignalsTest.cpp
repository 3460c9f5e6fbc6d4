// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "reader/QelSharedMemoryReader.h"

#include "tests/reader/BusFailures.h"
#include "tests/reader/SleepRecorder.h"
#include "tests/support/Eventually.h"
#include "tests/support/FakeHardwareManager.h"
#include "tests/support/LogCapture.h"
#include "tests/support/MainLoopThread.h"

#include <gio/gio.h>
#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <type_traits>
#include <vector>

namespace {

using qel::test::eventually;
using qel::test::FakeHardwareManager;
using qel::test::LogCapture;
using qel::test::LogEntry;
using qel::test::MainLoopThread;
using qel::test::sharedConnection;
using qel::test::SleepRecorder;
using shm::QelSharedMemoryReader;

constexpr char busName[] = "org.qel.HardwareManager";

LogEntry debug(std::string const& text) {
    return {"qel.shm.access.reader", log4cpp::Priority::DEBUG, text};
}

static_assert(std::is_same_v<decltype(&QelSharedMemoryReader::handler), GDBusSignalCallback>);

class QelSharedMemoryReaderHandlerTest : public testing::Test {
protected:
    void call(GDBusConnection* from, char const* path, char const* interface, char const* signal,
              GVariant* with) {
        QelSharedMemoryReader::handler(from, ":1.1", path, interface, signal, with, nullptr);
    }

    shm::GObjectPtr<GDBusConnection> const connection = sharedConnection();
    std::unique_ptr<GVariant, void (*)(GVariant*)> const nothing{g_variant_ref_sink(g_variant_new("()")),
                                                                 g_variant_unref};
    QelSharedMemoryReader const reader{0, false};
    LogCapture log;
};

TEST_F(QelSharedMemoryReaderHandlerTest, StructureChanged_CountsAndTells) {
    for (unsigned int count = 1; count <= 16; ++count) {
        call(connection.get(), "/", busName, "shmStructureChanged", nothing.get());
        EXPECT_EQ(reader.modifications(), count);
    }
    EXPECT_EQ(log.entries().front(), debug("handler: modifications = 0x1"));
    EXPECT_EQ(log.entries().back(), debug("handler: modifications = 0x10"));
    EXPECT_EQ(log.entries().size(), 16U);
}

TEST_F(QelSharedMemoryReaderHandlerTest, ForeignSignal_IsAStrangeCall) {
    static constexpr char signal[] = "shmStructureChanged";
    call(nullptr, "/", busName, signal, nothing.get());
    call(connection.get(), "/other", busName, signal, nothing.get());
    call(connection.get(), nullptr, busName, signal, nothing.get());
    call(connection.get(), "/", "org.qel.Other", signal, nothing.get());
    call(connection.get(), "/", nullptr, signal, nothing.get());
    call(connection.get(), "/", busName, signal, nullptr);
    call(connection.get(), "/other", busName, "other", nothing.get());
    EXPECT_EQ(log.entries(), std::vector<LogEntry>(7, debug("handler: strange call")));
    EXPECT_EQ(reader.modifications(), 0U);
}

TEST_F(QelSharedMemoryReaderHandlerTest, OtherSignalName_IsIgnoredSilently) {
    call(connection.get(), "/", busName, "shmStructureChange", nothing.get());
    call(connection.get(), "/", busName, nullptr, nothing.get());
    EXPECT_TRUE(log.entries().empty());
    EXPECT_EQ(reader.modifications(), 0U);
}

class QelSharedMemoryReaderSignalsTest : public testing::Test {
protected:
    bool reaches(unsigned int count) const {
        return eventually([&] { return reader.modifications() >= count; }) && reader.modifications() == count;
    }

    FakeHardwareManager service;
    QelSharedMemoryReader reader{0, false};
    MainLoopThread loop;
};

TEST_F(QelSharedMemoryReaderSignalsTest, EachStructureChange_Counts) {
    LogCapture const log;
    service.emitStructureChanged();
    EXPECT_TRUE(reaches(1));
    service.emitStructureChanged();
    EXPECT_TRUE(reaches(2));
    EXPECT_TRUE(log.waitFor(debug("handler: modifications = 0x2")));
}

TEST_F(QelSharedMemoryReaderSignalsTest, FromAnySender_Count) {
    service.releaseName();
    service.emitStructureChanged();
    EXPECT_TRUE(reaches(1));
}

TEST_F(QelSharedMemoryReaderSignalsTest, OfOtherPathInterfaceOrName_DoNotArrive) {
    service.emitSignal("/other", busName, "shmStructureChanged");
    service.emitSignal("/", "org.qel.Other", "shmStructureChanged");
    service.emitSignal("/", busName, "other");
    LogCapture const log;
    service.emitStructureChanged();
    EXPECT_TRUE(reaches(1));
    EXPECT_TRUE(log.waitFor(debug("handler: modifications = 0x1")));
    EXPECT_EQ(log.entries().size(), 1U);
}

TEST_F(QelSharedMemoryReaderSignalsTest, TwoReaders_CountEachSignalTwice) {
    QelSharedMemoryReader const second(0, false);
    service.emitStructureChanged();
    EXPECT_TRUE(reaches(2));
    EXPECT_EQ(second.modifications(), 2U);
}

TEST_F(QelSharedMemoryReaderSignalsTest, DestroyedReader_NoLongerCounts) {
    { QelSharedMemoryReader const second(0, false); }
    service.emitStructureChanged();
    EXPECT_TRUE(reaches(1));
    service.emitStructureChanged();
    EXPECT_TRUE(reaches(2));
}

TEST_F(QelSharedMemoryReaderSignalsTest, CountOutlivesItsReaders) {
    service.emitStructureChanged();
    EXPECT_TRUE(reaches(1));
    { QelSharedMemoryReader const second(0, false); }
    EXPECT_EQ(reader.modifications(), 1U);
}

TEST(QelSharedMemoryReaderSubscriptionTest, OutlivesTheAbsenceOfTheHardwareManager) {
    LogCapture const log;
    QelSharedMemoryReader sut(0, false);
    {
        SleepRecorder const time;
        EXPECT_FALSE(sut.initialized()); // replaces the proxy that the subscription was made with
    }
    MainLoopThread const loop;
    FakeHardwareManager service;
    service.emitStructureChanged();
    EXPECT_TRUE(eventually([&] { return sut.modifications() == 1; }));
}

} // namespace
