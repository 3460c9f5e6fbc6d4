// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

// What makes propagateStates combine the states again. An alarm that the test stores behind the writer's back shows
// whether it did: only then the alarm is seen.

#include "writer/QelSharedMemoryWriter.h"

#include "format/ValueKeys.h"
#include "tests/support/FailureSeams.h"
#include "tests/writer/WriterFixture.h"
#include "writer/QelShmKeptUpdate.h"

#include <gtest/gtest.h>

#include <functional>
#include <list>
#include <ostream>
#include <string>
#include <thread>
#include <unordered_set>
#include <vector>

namespace qel::test {

namespace {

namespace key = shm::key;

constexpr long long device = pointId(1, 0);
constexpr long long other = pointId(2, 0);

/// Two devices with values in No Error, active and propagated.
class QelSharedMemoryWriterChangesTest : public WriterTest {
protected:
    QelSharedMemoryWriterChangesTest() {
        sut.addStructure({{device, withKeys({key::voltage})}, {other, withKeys({key::voltage})}});
        sut.setActive();
        for (auto const svid : {device, other}) {
            sut.updateMV(svid | key::voltage, measured(1.0));
        }
        sut.propagateStates();
    }

    void storeAlarmUnnoticed() { raw.set<std::int32_t>(rawValue(0) + field::valueState, eStatus_HighAlarm); }

    /// Whether a propagation combines the states.
    bool combines() {
        storeAlarmUnnoticed();
        sut.propagateStates();
        return globalState() == eStatus_ChildAlarm;
    }
};

TEST_F(QelSharedMemoryWriterChangesTest, NothingChanged_NothingIsCombined) {
    EXPECT_FALSE(combines());
    EXPECT_FALSE(combines());
}

TEST_F(QelSharedMemoryWriterChangesTest, SameStatesStoredAgain_NothingIsCombined) {
    shm::QelShmKeptUpdate value(other | key::voltage);
    shm::QelShmKeptUpdate state(other | key::state);
    for (int round = 0; round < 2; ++round) {
        sut.updateMV(other | key::voltage, measured(2.0, 2));
        sut.updateMV(other | key::state, measured(0.0, 2, eStatus_On));
        sut.updateMV(value, 3.0, 3, eStatus_NoError);
        sut.updateMV(state, 0.0, 3, eStatus_On);
    }
    sut.updateMV(pointId(3, 0) | key::voltage, measured(1.0, 1, eStatus_HighAlarm)); // unknown
    sut.injectTypes({{other, 2}});

    EXPECT_FALSE(combines());
}

TEST_F(QelSharedMemoryWriterChangesTest, AfterAChangeThatWasCombined_NothingIsCombined) {
    sut.updateMV(other | key::voltage, measured(0.0, 1, eStatus_LowWarning));
    sut.propagateStates();
    ASSERT_EQ(eStatus_ChildWarning, globalState());

    EXPECT_FALSE(combines());
}

// Whatever changes a state or a list
struct Change {
    std::string name;
    std::function<void(ExposedWriter&)> make;
};

std::ostream& operator<<(std::ostream& out, Change const& change) {
    return out << change.name;
}

std::vector<Change> changesOfStates() {
    return {
        {"UpdateById",
         [](auto& sut) {
             sut.updateMV(other | key::voltage, measured(1.0, 1, eStatus_OK));
         }},
        {"UpdateWithText",
         [](auto& sut) {
             sut.updateMV(other | key::voltage,
                          std::make_unique<measval::MeasureValue>("text", 1, eStatus_OK));
         }},
        {"UpdateOfAPointsState",
         [](auto& sut) {
             sut.updateMV(other | key::state, measured(1.0, 1, eStatus_Off));
         }},
        {"KeptUpdateLookedUp",
         [](auto& sut) {
             shm::QelShmKeptUpdate kept(other | key::voltage);
             sut.updateMV(kept, 1.0, 1, eStatus_OK);
         }},
        {"KeptUpdateRemembered",
         [](auto& sut) {
             shm::QelShmKeptUpdate kept(other | key::voltage);
             sut.updateMV(kept, 1.0, 1, eStatus_NoError);
             sut.updateMV(kept, 1.0, 1, eStatus_OK);
         }},
        {"KeptUpdateOfAPointsState",
         [](auto& sut) {
             shm::QelShmKeptUpdate kept(other | key::state);
             sut.updateMV(kept, 1.0, 1, eStatus_On);
             sut.updateMV(kept, 1.0, 1, eStatus_Off);
         }},
        {"Activation",
         [](auto& sut) {
             sut.setActive();
         }},
        {"StatesOfAPointDefined",
         [](auto& sut) {
             std::list<eStatus_Bits> out;
             sut.defineState(sut.region()->points[1], out);
         }},
        {"StatesChanged",
         [](auto& sut) {
             sut.statesChanged();
         }},
    };
}

std::vector<Change> changesOfStructure() {
    return {
        {"PointAdded",
         [](auto& sut) {
             sut.addMP(pointId(3, 0), {}, rawNone);
         }},
        {"ValueAdded",
         [](auto& sut) {
             sut.addMP(other, {{key::current, 0}}, rawNone);
         }},
        {"StructureAdded",
         [](auto& sut) {
             sut.addStructure({{pointId(3, 0), withKeys({key::current})}});
         }},
        {"StructureRemoved",
         [](auto& sut) {
             sut.removeStructure({{device, withKeys({})}});
         }},
        {"StructureModified",
         [](auto& sut) {
             sut.modifyStructure({device, device | key::voltage});
         }},
        {"PointConnected",
         [](auto& sut) {
             sut.connectMP(sut.initMP(7, pointId(3, 0), rawNone));
         }},
        {"PointInitialised",
         [](auto& sut) {
             sut.initMP(7, pointId(3, 0), rawNone);
         }},
        {"ValueInitialised",
         [](auto& sut) {
             sut.initMV(7, key::current);
         }},
        {"PointDisconnected",
         [](auto& sut) {
             sut.disconnectMP(sut.region()->points[1]);
         }},
        {"PointUnlinked",
         [](auto& sut) {
             std::unordered_set<long long> removed;
             sut.unlinkMP(1, true, removed);
         }},
    };
}

class QelSharedMemoryWriterEachChangeTest : public QelSharedMemoryWriterChangesTest,
                                            public testing::WithParamInterface<Change> {};

TEST_P(QelSharedMemoryWriterEachChangeTest, IsNoted_AndAllStatesAreCombinedOnce) {
    GetParam().make(sut);

    EXPECT_TRUE(combines());

    raw.set<std::int32_t>(rawValue(0) + field::valueState, eStatus_NoError);
    sut.propagateStates();
    EXPECT_EQ(eStatus_ChildAlarm, globalState()) << "noted for one propagation only";
}

auto const nameOfChange = [](auto const& change) {
    return change.param.name;
};
INSTANTIATE_TEST_SUITE_P(States, QelSharedMemoryWriterEachChangeTest, testing::ValuesIn(changesOfStates()),
                         nameOfChange);
INSTANTIATE_TEST_SUITE_P(Structure, QelSharedMemoryWriterEachChangeTest,
                         testing::ValuesIn(changesOfStructure()), nameOfChange);

// Regions

TEST_F(QelSharedMemoryWriterChangesTest, RootOverwritten_IsPutRight) {
    raw.set<std::int32_t>(field::rootState, eStatus_ChildWarning);

    sut.propagateStates();

    EXPECT_EQ(eStatus_On, globalState());
}

TEST(QelSharedMemoryWriterChangesLifeTest, RegionOpenedAgain_IsCombined) {
    ExposedWriter sut;
    sut.setActive();
    sut.propagateStates();
    sut.closeShm();
    sut.openShm();
    ASSERT_EQ(-1, sut.region()->root.state);

    sut.propagateStates();

    EXPECT_EQ(eStatus_On, sut.region()->root.state);
}

TEST(QelSharedMemoryWriterChangesLifeTest, WithoutARegion_EachPropagationIsLogged_AndTheNoteStays) {
    ExposedWriter sut;
    sut.addMP(device, {{key::voltage, 0}}, rawNone);
    sut.propagateStates();
    sut.updateMV(device | key::voltage, measured(1.0, 1, eStatus_HighAlarm));
    sut.closeShm();
    {
        WriterLog const log;
        sut.propagateStates();
        sut.propagateStates();
        EXPECT_EQ(2U, log.entries().size());
    }
    sut.openShm();
    sut.region()->root.state = eStatus_On;
    sut.region()->root.devices = 0;
    sut.region()->points[0].mvs = 0;
    sut.region()->values[0].state = eStatus_HighAlarm;

    sut.propagateStates();

    EXPECT_EQ(eStatus_ChildAlarm, sut.region()->root.state);
}

// Failures and threads

TEST_F(QelSharedMemoryWriterChangesTest, Exception_KeepsTheNote) {
    sut.updateMV(other | key::voltage, measured(0.0, 1, eStatus_LowWarning));
    {
        MutexesFail const broken; // the LED thread's
        sut.propagateStates();
    }
    ASSERT_EQ(eStatus_ChildWarning, globalState());

    EXPECT_TRUE(combines());
}

TEST_F(QelSharedMemoryWriterChangesTest, NothingChanged_NeedsNoMemoryAndNoLock) {
    auto const before = raw.copy();
    auto const locked = locks();
    {
        MemoryRunsOut const noMemory(0);
        MutexesFail const broken;
        sut.propagateStates();
    }
    EXPECT_EQ(before, raw.copy());
    EXPECT_EQ(locked, locks());
}

TEST_F(QelSharedMemoryWriterChangesTest, UpdatesOfSeveralThreads_AreAllCombined) {
    constexpr int rounds = 200;
    for (int round = 0; round < rounds; ++round) {
        auto const state = round % 2 == 0 ? eStatus_HighAlarm : eStatus_NoError;
        std::thread byId([&] { sut.updateMV(device | key::voltage, measured(1.0, 1, state)); });
        std::thread kept([&] {
            shm::QelShmKeptUpdate value(other | key::voltage);
            sut.updateMV(value, 1.0, 1, state);
        });
        byId.join();
        kept.join();

        sut.propagateStates();

        auto const expected = state == eStatus_HighAlarm ? eStatus_OnAlarm : eStatus_On;
        ASSERT_EQ(expected, pointState(0)) << round;
        ASSERT_EQ(expected, pointState(1)) << round;
    }
}

} // namespace

} // namespace qel::test
