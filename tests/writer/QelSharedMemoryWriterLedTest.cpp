// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

// The status LED that the writer drives.

#include "writer/QelSharedMemoryWriter.h"

#include "format/ValueKeys.h"
#include "tests/reader/NoMoreThreads.h"
#include "tests/support/Eventually.h"
#include "tests/support/FailureSeams.h"
#include "tests/support/LedFiles.h"
#include "tests/writer/WriterFixture.h"

#include <boost/thread/exceptions.hpp>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <memory>

namespace qel::test {

namespace {

namespace key = shm::key;
using testing::ElementsAre;

constexpr long long device = pointId(1, 0);

bool ledShows(std::string const& contents) {
    return eventually([&] { return ledContents() == contents; });
}

} // namespace

class QelSharedMemoryWriterLedTest : public WriterTest {
protected:
    QelSharedMemoryWriterLedTest() {
        sut.addStructure({{device, withKeys({key::voltage})}});
        sut.setActive();
    }

    void setValue(eStatus_Bits state) {
        ASSERT_TRUE(sut.updateMV(device | key::voltage, measured(0.0, 1, state)));
    }
};

TEST_F(QelSharedMemoryWriterLedTest, Constructor_MakesTheLedGreen) {
    EXPECT_EQ("0/1/0", ledContents());
}

TEST_F(QelSharedMemoryWriterLedTest, ChangedGlobalState_IsShown) {
    setValue(eStatus_HighAlarm);
    sut.propagateStates();
    EXPECT_TRUE(ledShows("1/0/0"));

    setValue(eStatus_LowWarning);
    sut.propagateStates();
    EXPECT_TRUE(ledShows("10/5/0"));

    setValue(eStatus_NoError);
    sut.propagateStates();
    EXPECT_TRUE(ledShows("0/1/0"));
}

TEST_F(QelSharedMemoryWriterLedTest, GlobalState_IsHandedOverOnceWhenItChanges) {
    setValue(eStatus_HighAlarm);
    auto const atFirst = locks();

    sut.propagateStates();

    auto const afterChange = locks();
    EXPECT_EQ(atFirst + 1, afterChange); // the LED thread's mutex

    sut.propagateStates();

    EXPECT_EQ(afterChange, locks());
}

TEST_F(QelSharedMemoryWriterLedTest, ActivationAlone_DoesNotTouchTheLedThread) {
    auto const before = locks();

    sut.setActive();
    sut.propagateStates(); // "On" as before

    EXPECT_EQ(before, locks());
}

TEST_F(QelSharedMemoryWriterLedTest, ActivationAfterAnAlarm_MakesLedAndRootAgree) {
    setValue(eStatus_HighAlarm);
    sut.propagateStates();
    ASSERT_TRUE(ledShows("1/0/0"));

    sut.setActive();
    setValue(eStatus_NoError);
    sut.propagateStates(); // "On", as the root says already

    EXPECT_EQ(17, globalState());
    EXPECT_TRUE(ledShows("0/1/0"));
}

TEST_F(QelSharedMemoryWriterLedTest, ActivationDuringAnAlarm_TheNextPropagationShowsItAgain) {
    setValue(eStatus_HighAlarm);
    sut.propagateStates();
    ASSERT_TRUE(ledShows("1/0/0"));

    sut.setActive();
    EXPECT_TRUE(ledShows("0/1/0"));
    sut.propagateStates();

    EXPECT_EQ(23, globalState());
    EXPECT_TRUE(ledShows("1/0/0"));
}

TEST_F(QelSharedMemoryWriterLedTest, FailingMutexOfTheLedThread_IsSwallowed_TheRootHasTheState) {
    setValue(eStatus_HighAlarm);
    {
        MutexesFail const broken;
        sut.propagateStates();
    }
    EXPECT_EQ(23, globalState());
}

TEST(QelSharedMemoryWriterLedLifeTest, Destructor_LeavesTheLastColour_AndNothingWritesItAgain) {
    {
        shm::QelSharedMemoryWriter sut;
        sut.addStructure({{device, withKeys({key::voltage})}});
        sut.updateMV(device | key::fuseState, measured(0.0, 1, eStatus_DeviceIsUpdating)); // blinks
        sut.propagateStates();
        ASSERT_TRUE(ledShows("1/0/1"));
    }
    LogCapture const log("qel.shm.access.states");
    markLedFiles();
    auto const marked = ledContents();

    EXPECT_FALSE(eventually([&] { return ledContents() != marked; }, std::chrono::milliseconds(1200)));

    EXPECT_THAT(log.entries(), ElementsAre());
    restoreLedFiles();
}

TEST(QelSharedMemoryWriterLedLifeTest, Destructor_DoesNotWaitForATick) {
    auto sut = std::make_unique<shm::QelSharedMemoryWriter>();
    sut->addStructure({{device, withKeys({key::voltage})}});
    sut->updateMV(device | key::voltage, measured(0.0, 1, eStatus_HighAlarm));
    sut->propagateStates();
    ASSERT_TRUE(ledShows("1/0/0")); // the next tick is 500 ms away

    auto const begin = std::chrono::steady_clock::now();
    sut.reset();

    EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::milliseconds(400));
}

TEST(QelSharedMemoryWriterLedLifeTest, Constructor_NoThreadToBeHad_ThrowsAndLeavesNoRegion) {
    NoMoreThreads const exhausted;

    EXPECT_THROW(shm::QelSharedMemoryWriter(), boost::thread_resource_error);

    EXPECT_FALSE(rawRegionExists());
}

} // namespace qel::test
