// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

// A reader whose mutex cannot be locked, and one whose proxy has no connection.

#include "format/ValueKeys.h"
#include "reader/QelSharedMemoryReader.h"
#include "tests/faults/FaultLines.h"
#include "tests/faults/NoConnection.h"
#include "tests/reader/MappedReader.h"
#include "tests/support/Eventually.h"
#include "tests/support/FailureSeams.h"
#include "tests/support/FakeHardwareManager.h"
#include "tests/support/ForgedRegion.h"
#include "tests/support/MainLoopThread.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <memory>
#include <system_error>

namespace {

using qel::test::eventually;
using qel::test::ForgedRegion;
using qel::test::LogCapture;
using qel::test::MutexesFail;
using qel::test::NoConnection;
using qel::test::readerInfo;
using testing::ElementsAre;

constexpr long long unit = 0x0100FFFFFFFF0000;

TEST(ReaderMutex, ThatCannotBeLocked_IsThrown_AndLeavesTheIndexAsItWas) {
    ForgedRegion const region;
    region.point(5, unit);
    region.devices({5});
    qel::test::MappedReader sut;
    ASSERT_NE(nullptr, sut.mpnt(unit, false));
    {
        MutexesFail const broken;
        EXPECT_THROW(sut.mpnt(unit, false), std::system_error);
        EXPECT_THROW(sut.mpnt(unit, true), std::system_error);
        EXPECT_THROW(sut.syncPositions(true), std::system_error);
        EXPECT_THROW(sut.mval(unit | shm::key::voltage, false), std::system_error);
        EXPECT_NO_THROW(sut.syncPositions(false)) << "locks nothing while the index is current";
    }
    EXPECT_EQ(0U, sut.modifications());
    EXPECT_NE(nullptr, sut.mpnt(unit, false));
}

TEST(ReaderWithoutConnection, IsBuiltWithoutSubscription_AndOpensAllTheSame) {
    ForgedRegion const region;
    region.point(5, unit);
    region.devices({5});
    qel::test::MainLoopThread const loop;
    qel::test::FakeHardwareManager service;
    LogCapture log("qel.shm.access.reader");
    std::unique_ptr<shm::QelSharedMemoryReader> sut;
    {
        NoConnection const gone;
        sut = std::make_unique<shm::QelSharedMemoryReader>(0, false);
    }
    EXPECT_THAT(log.take(), ElementsAre(readerInfo("QelSharedMemoryReader: start")));

    service.emitStructureChanged();
    EXPECT_FALSE(eventually([&] { return sut->modifications() != 0; }, std::chrono::milliseconds(300)));
    EXPECT_TRUE(sut->initialized());
    sut->onInitialized();
    EXPECT_NE(nullptr, sut->mpnt(unit, false));
    log.take();
    sut.reset();
    EXPECT_THAT(log.entries(), ElementsAre(readerInfo("~QelSharedMemoryReader: done")));
}

TEST(ReaderWithoutConnection, AtItsEnd_UnsubscribesNothing) {
    auto sut = std::make_unique<shm::QelSharedMemoryReader>(0, false);
    LogCapture const log("qel.shm.access.reader");
    {
        NoConnection const gone;
        sut.reset();
    }
    EXPECT_THAT(log.entries(), ElementsAre(readerInfo("~QelSharedMemoryReader: done")));
}

} // namespace
