// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

// propagateStates and defineState.

#include "writer/QelSharedMemoryWriter.h"

#include "format/ValueKeys.h"
#include "tests/model/ReferenceStates.h"
#include "tests/model/ReferenceWriter.h"
#include "tests/model/WriterCalls.h"
#include "tests/support/FailureSeams.h"
#include "tests/support/SmallStack.h"
#include "tests/writer/WriterFixture.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <list>
#include <random>
#include <vector>

namespace qel::test {

namespace {

namespace key = shm::key;
using testing::ElementsAre;

constexpr long long device = pointId(1, 0);
constexpr unsigned short stateKey = key::state;

} // namespace

class QelSharedMemoryWriterStatesTest : public WriterTest {
protected:
    void setValue(std::uint32_t pos, std::size_t index, int state) {
        auto const slot = values(pos).at(index);
        auto const key = raw.get<std::uint16_t>(rawValue(slot) + field::valueKey);
        ASSERT_TRUE(sut.updateMV(guid(pos) | key, measured(0.0, 1, static_cast<eStatus_Bits>(state))));
    }
    void setPoint(std::uint32_t pos, int state) {
        ASSERT_TRUE(sut.updateMV(guid(pos) | stateKey, measured(0.0, 1, static_cast<eStatus_Bits>(state))));
    }
    long long guid(std::uint32_t pos) const { return raw.get<std::int64_t>(rawPoint(pos) + field::guid); }
};

TEST_F(QelSharedMemoryWriterStatesTest, EmptyTree_LeavesTheGlobalStateAtOn) {
    sut.setActive();
    auto const before = raw.copy();

    sut.propagateStates();

    EXPECT_EQ(17, globalState());
    EXPECT_EQ(before, raw.copy());
}

TEST_F(QelSharedMemoryWriterStatesTest, HighAlarmOfOneValue_ReachesPointAndGlobalState) {
    sut.setActive();
    sut.addMP(device, {{key::voltage, 0}}, rawNone);
    setValue(0, 0, 1);

    sut.propagateStates();

    EXPECT_EQ(9, pointState(0));
    EXPECT_EQ(23, globalState());

    auto const before = raw.copy();
    sut.propagateStates();
    EXPECT_EQ(before, raw.copy());
}

TEST_F(QelSharedMemoryWriterStatesTest, AlarmThatEnds_FallsBackToOn) {
    sut.setActive();
    sut.addMP(device, {{key::voltage, 0}}, rawNone);
    setValue(0, 0, 1);
    sut.propagateStates();
    setValue(0, 0, 0);

    sut.propagateStates();

    EXPECT_EQ(17, pointState(0));
    EXPECT_EQ(17, globalState());
}

TEST_F(QelSharedMemoryWriterStatesTest, GlobalState_TakesEachOfItsFiveValues) {
    sut.setActive();
    sut.addMP(device, {}, rawNone);
    sut.addMP(pointId(1, 2), {{key::voltage, 0}}, rawNone);
    for (auto const& [own, value, expected] : std::vector<std::array<int, 3>>{
             {17, 0, 17}, {17, 1, 23}, {17, 3, 24}, {34, 0, 34}, {35, 0, 35}, {17, -1, 17}, {18, 0, 17}}) {
        setPoint(1, own);
        setValue(1, 0, value);

        sut.propagateStates();

        EXPECT_EQ(expected, globalState()) << own << ", " << value;
    }
}

TEST_F(QelSharedMemoryWriterStatesTest, GroupsCountAsDevicesDo) {
    sut.setActive();
    sut.addMP(pointId(1, 2), {{key::voltage, 0}}, rawNone);
    setValue(0, 0, 4);

    sut.propagateStates();

    EXPECT_EQ(13, pointState(0));
    EXPECT_EQ(24, globalState());
}

TEST_F(QelSharedMemoryWriterStatesTest, PointLinkedNowhere_IsLeftOut) {
    sut.setActive();
    sut.addMP(pointId(1, 4), {{key::voltage, 0}}, rawNone);
    setValue(0, 0, 1);

    sut.propagateStates();

    EXPECT_EQ(17, pointState(0));
    EXPECT_EQ(17, globalState());
}

TEST_F(QelSharedMemoryWriterStatesTest, BeforeActivation_OnlyStatesAreWritten) {
    sut.addMP(device, {}, rawNone);
    auto expected = raw.copy();
    expected[field::rootState] = 17;
    std::fill_n(expected.begin() + static_cast<std::ptrdiff_t>(field::rootState) + 1, 3, std::uint8_t{0});

    sut.propagateStates();

    EXPECT_EQ(expected, raw.copy());
}

TEST_F(QelSharedMemoryWriterStatesTest, ChildrenReachTheirParentInOneGo) {
    sut.setActive();
    sut.addMP(device, {}, rawNone);
    sut.addMP(pointId(1, 0, 1), {}, 0);
    sut.addMP(pointId(1, 0, 1, 1), {}, 1);
    sut.addMP(pointId(1, 0, 1, 2), {{key::voltage, 0}, {key::peakVoltage, 0}}, 1);
    setValue(3, 0, 3);
    setValue(3, 1, 2);

    sut.propagateStates();

    EXPECT_EQ(17, pointState(2));
    EXPECT_EQ(9, pointState(3));
    EXPECT_EQ(23, pointState(1));
    EXPECT_EQ(23, pointState(0));
    EXPECT_EQ(23, globalState());
}

TEST_F(QelSharedMemoryWriterStatesTest, Propagation_LeavesTheTimesAlone) {
    sut.addMP(device, {{key::voltage, 0}}, rawNone);
    sut.updateMV(device | stateKey, measured(0.0, 1234, eStatus_Off));
    sut.updateMV(device | key::voltage, measured(0.0, 5678, eStatus_HighAlarm));

    sut.propagateStates();

    EXPECT_EQ(10, pointState(0));
    EXPECT_EQ(1234U, raw.get<std::uint64_t>(field::pointAt));
    EXPECT_EQ(5678U, raw.get<std::uint64_t>(rawValue(0) + field::valueAt));
}

// A switched-off circuit counts as an alarm above it; nothing else that is off does.
TEST_F(QelSharedMemoryWriterStatesTest, OffCircuit_CountsAsAlarmForItsParent_AndKeepsOff) {
    for (int kind = -1; kind <= 5; ++kind) {
        for (int const circuit : {-1, 0, 1}) {
            for (int const socket : {-1, 0, 1}) {
                // Linked by hand, so that slots serve again.
                auto& parent = sut.initMP(0, device, rawNone);
                auto const svid = pointId(1, kind, 1, 1, circuit, socket);
                sut.connectMP(sut.initMP(1, svid, 0));
                raw.set<std::int32_t>(rawPoint(1) + field::pointState, 18);
                std::list<eStatus_Bits> out;

                sut.defineState(parent, out);

                EXPECT_EQ(18, pointState(1));
                EXPECT_EQ(reference::reportedState(svid, 18) == 39 ? 23 : 17, pointState(0))
                    << kind << ", " << circuit << ", " << socket;
            }
        }
    }
}

TEST_F(QelSharedMemoryWriterStatesTest, OffCircuitAtTheTop_RaisesTheGlobalState) {
    sut.setActive();
    sut.addMP(pointId(1, 0, -1, -1, 3), {}, rawNone);
    setPoint(0, 18);

    sut.propagateStates();

    EXPECT_EQ(18, pointState(0));
    EXPECT_EQ(23, globalState());
}

TEST_F(QelSharedMemoryWriterStatesTest, DefineState_ReportsThePointAndItsFollowingSiblingsInOrder) {
    for (int const number : {1, 2, 3, 4}) {
        sut.addMP(pointId(number, 0), {}, rawNone);
    }
    sut.addMP(pointId(2, 0, 1), {{key::voltage, 0}}, 1);
    setValue(4, 0, 1);
    setPoint(2, 18);
    setPoint(3, 6);
    std::list<eStatus_Bits> out{eStatus_OK};

    sut.defineState(sut.region()->points[1], out);

    EXPECT_THAT(out, ElementsAre(eStatus_OK, eStatus_ChildAlarm, eStatus_Off, eStatus_Deactivated));
    EXPECT_EQ(9, pointState(4));
}

TEST_F(QelSharedMemoryWriterStatesTest, DefineState_StopsAtPositionsOutOfRange) {
    sut.addMP(device, {{key::voltage, 0}}, rawNone);
    raw.set<std::uint32_t>(field::next, 800);
    raw.set<std::uint32_t>(field::children, 0x80000000);
    raw.set<std::uint32_t>(rawValue(0) + field::valueNext, 8800);
    raw.set<std::uint32_t>(field::groups, 800);
    setValue(0, 0, 1);
    std::list<eStatus_Bits> out;

    sut.defineState(sut.region()->points[0], out);
    sut.propagateStates();

    EXPECT_THAT(out, ElementsAre(eStatus_OnAlarm));
    EXPECT_EQ(23, globalState());
}

// Trees that no unit has: long lists as well as deep ones, with states that rules never meet among the others.
class QelSharedMemoryWriterStatesRandomTest : public WriterTest {
protected:
    int number(int low, int high) { return std::uniform_int_distribution<int>(low, high)(random_); }

    // Some points more, at any place.
    void grow(int tree) {
        for (int i = 0; i < 60; ++i, ++points_) {
            auto const parent = points_ == 0 || number(0, 9) == 0
                                    ? rawNone
                                    : static_cast<std::uint32_t>(number(0, static_cast<int>(points_) - 1));
            auto const kind = parent == rawNone ? 2 * number(0, 1) : number(0, 5);
            auto const svid = pointId(tree, kind, i, number(-1, 1), number(-1, 1), number(-1, 1));
            ReferenceWriter::Keys keys;
            Keys mvs;
            for (int key = number(0, 4); key > 0; --key) {
                keys.insert(static_cast<std::uint16_t>(key));
                mvs[static_cast<unsigned short>(key)] = 0;
            }
            ASSERT_EQ(reference_.addMP(svid, keys, parent), sut.addMP(svid, mvs, parent));
        }
    }

    void deliver(long long svid, int state) {
        reference_.updateMV(svid, 0.0, 1, state);
        ASSERT_TRUE(sut.updateMV(svid, measured(0.0, 1, static_cast<eStatus_Bits>(state))));
    }

    // So many of a hundred states are anything, the others quiet.
    void deliverAll(int trouble) {
        for (auto const& [svid, known] : reference_.known()) {
            for (auto const& value : known.values) {
                deliver(svid | value.first, number(1, 100) <= trouble ? number(-3, 45) : number(0, 1) * 41);
            }
            if (number(1, 100) <= trouble) {
                deliver(svid | stateKey, number(-3, 45));
            } else if (number(0, 1) == 0) {
                deliver(svid | stateKey, number(17, 18));
            }
        }
    }

    ReferenceWriter reference_;

private:
    std::mt19937 random_ = randomNumbers(11);
    std::uint32_t points_ = 0;
};

TEST_F(QelSharedMemoryWriterStatesRandomTest, PropagateStates_LeavesTheBytesOfTheReference) {
    reference_.setActive();
    sut.setActive();
    for (int tree = 0; tree < 12; ++tree) {
        grow(tree);
        for (int round = 0; round < 15; ++round) {
            deliverAll(1 + 10 * (round % 5));

            reference_.propagateStates();
            sut.propagateStates();

            ASSERT_TRUE(holdsBytesOf(reference_, raw.bytes())) << "tree " << tree << ", round " << round;
        }
    }
}

// Failures

TEST_F(QelSharedMemoryWriterStatesTest, PropagateStates_NeedsNoMemory) {
    sut.setActive();
    sut.addMP(device, {}, rawNone);
    sut.addMP(pointId(1, 0, 1), {{key::voltage, 0}}, 0);
    setValue(1, 0, 1);
    {
        MemoryRunsOut const noMemory(0);
        sut.propagateStates();
    }
    EXPECT_EQ(9, pointState(1));
    EXPECT_EQ(23, pointState(0));
    EXPECT_EQ(23, globalState());
}

TEST_F(QelSharedMemoryWriterStatesTest, PropagateStates_LetsNoExceptionOut) {
    EXPECT_TRUE(noexcept(sut.propagateStates()));
}

TEST_F(QelSharedMemoryWriterStatesTest, NestingOf800Points_FitsASmallStack) {
    sut.setActive();
    for (std::uint32_t pos = 0; pos < 800; ++pos) {
        auto const parent = pos == 0 ? rawNone : pos - 1;
        auto const level = static_cast<int>(pos);
        ASSERT_EQ(pos, sut.addMP(pointId(level / 256, 0, level % 256), {{key::voltage, 0}}, parent));
    }
    setValue(799, 0, 1);

    runOnSmallStack([&] { sut.propagateStates(); });

    EXPECT_EQ(9, pointState(799));
    EXPECT_EQ(23, pointState(0));
    EXPECT_EQ(23, globalState());
}

} // namespace qel::test
