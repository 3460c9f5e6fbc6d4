// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

// propagateStates and defineState.

#include "writer/QelSharedMemoryWriter.h"

#include "tests/support/FailureSeams.h"
#include "tests/support/SmallStack.h"
#include "tests/writer/WriterFixture.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <csignal>
#include <initializer_list>
#include <random>

namespace qel::test {

namespace {

using testing::ElementsAre;

constexpr long long device = pointId(1, 0);
constexpr unsigned short stateKey = 0x3B;

// The rules of combination, in their own words.

template <typename States = std::initializer_list<int>>
bool isOneOf(int state, States const& states) {
    return std::find(states.begin(), states.end(), state) != states.end();
}

std::vector<int> const valueAlarms{1, 2, 9, 10, 39};
std::vector<int> const valueWarnings{3, 4, 13, 14, 40};
std::vector<int> const childAlarms{5, 7, 8, 9, 10, 19, 20, 22, 23, 25, 39};
std::vector<int> const childWarnings{11, 12, 13, 14, 21, 24, 40};

int combined(int stored, std::vector<int> const& values, std::vector<int> const& children) {
    // What the point is by itself.
    if (isOneOf(stored, {-2, 5, 6, 34, 36, 43})) {
        return stored;
    }
    bool const identify = isOneOf(stored, {7, 11, 15, 8, 12, 16});
    bool const off = isOneOf(stored, {8, 12, 16, 10, 14, 18, 20, 22});
    int own = (identify ? 15 : 17) + (off ? 1 : 0);
    int const index = own - 15;
    if (stored == 35) {
        own = 35; // neither its values nor anything but an update below change it
    } else if (std::any_of(values.begin(), values.end(),
                           [](int state) { return isOneOf(state, valueAlarms); })) {
        own = 7 + index;
    } else if (std::any_of(values.begin(), values.end(),
                           [](int state) { return isOneOf(state, valueWarnings); })) {
        own = 11 + index;
    }
    // What comes from below.
    auto const update =
        std::find_if(children.begin(), children.end(), [](int state) { return state == 34 || state == 35; });
    if (update != children.end()) {
        return *update;
    }
    if (own == 35 || (own >= 7 && own <= 10)) {
        return own;
    }
    bool const alarmBelow =
        std::any_of(children.begin(), children.end(), [](int state) { return isOneOf(state, childAlarms); });
    bool const warningBelow = std::any_of(children.begin(), children.end(),
                                          [](int state) { return isOneOf(state, childWarnings); });
    if (alarmBelow) {
        return own == 18 ? 20 : 23;
    }
    if (warningBelow && own >= 15) {
        return own == 18 ? 22 : 24;
    }
    return own;
}

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
    sut.addMP(device, {{1, 0}}, rawNone);
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
    sut.addMP(device, {{1, 0}}, rawNone);
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
    sut.addMP(pointId(1, 2), {{1, 0}}, rawNone);
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
    sut.addMP(pointId(1, 2), {{1, 0}}, rawNone);
    setValue(0, 0, 4);

    sut.propagateStates();

    EXPECT_EQ(13, pointState(0));
    EXPECT_EQ(24, globalState());
}

TEST_F(QelSharedMemoryWriterStatesTest, PointLinkedNowhere_IsLeftOut) {
    sut.setActive();
    sut.addMP(pointId(1, 4), {{1, 0}}, rawNone);
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
    sut.addMP(pointId(1, 0, 1, 2), {{1, 0}, {2, 0}}, 1);
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
    sut.addMP(device, {{1, 0}}, rawNone);
    sut.updateMV(device | stateKey, measured(0.0, 1234, eStatus_Off));
    sut.updateMV(device | 1, measured(0.0, 5678, eStatus_HighAlarm));

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
                sut.connectMP(sut.initMP(1, pointId(1, kind, 1, 1, circuit, socket), 0));
                raw.set<std::int32_t>(rawPoint(1) + field::pointState, 18);
                std::list<eStatus_Bits> out;

                sut.defineState(parent, out);

                bool const isCircuit = kind == 0 && circuit != -1 && socket == -1;
                EXPECT_EQ(18, pointState(1));
                EXPECT_EQ(isCircuit ? 23 : 17, pointState(0)) << kind << ", " << circuit << ", " << socket;
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
    sut.addMP(pointId(2, 0, 1), {{1, 0}}, 1);
    setValue(4, 0, 1);
    setPoint(2, 18);
    setPoint(3, 6);
    std::list<eStatus_Bits> out{eStatus_OK};

    sut.defineState(sut.region()->points[1], out);

    EXPECT_THAT(out, ElementsAre(eStatus_OK, eStatus_ChildAlarm, eStatus_Off, eStatus_Deactivated));
    EXPECT_EQ(9, pointState(4));
}

TEST_F(QelSharedMemoryWriterStatesTest, DefineState_StopsAtPositionsOutOfRange) {
    sut.addMP(device, {{1, 0}}, rawNone);
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

TEST_F(QelSharedMemoryWriterStatesTest, RandomTrees_GetTheStatesOfThePlainRules) {
    auto random = randomNumbers(11);
    auto const number = [&](int low, int high) {
        return std::uniform_int_distribution<int>(low, high)(random);
    };
    sut.setActive();
    std::uint32_t points = 0;
    for (int tree = 0; tree < 12; ++tree) {
        // Some points more, at any place: long lists as well as deep ones.
        for (int i = 0; i < 60; ++i, ++points) {
            auto const parent = points == 0 || number(0, 9) == 0
                                    ? rawNone
                                    : static_cast<std::uint32_t>(number(0, static_cast<int>(points) - 1));
            auto const kind = parent == rawNone ? 2 * number(0, 1) : number(0, 5);
            Keys keys;
            for (int key = number(0, 4); key > 0; --key) {
                keys[static_cast<unsigned short>(key)] = 0;
            }
            sut.addMP(pointId(tree, kind, i, number(-1, 1), number(-1, 1), number(-1, 1)), keys, parent);
        }
        for (int round = 0; round < 15; ++round) {
            // Rounds of few and of many troubled points; states that rules never meet are among them.
            int const trouble = 1 + 10 * (round % 5);
            for (std::uint32_t pos = 0; pos < points; ++pos) {
                for (std::size_t i = 0; i < values(pos).size(); ++i) {
                    setValue(pos, i, number(1, 100) <= trouble ? number(-3, 45) : number(0, 1) * 41);
                }
                if (number(1, 100) <= trouble) {
                    setPoint(pos, number(-3, 45));
                } else if (number(0, 1) == 0) {
                    setPoint(pos, number(17, 18));
                }
            }
            std::vector<int> expected(points, -100);
            std::vector<int> reported;
            auto const expect = [&](auto const& self, std::uint32_t pos) -> int {
                std::vector<int> valueStates;
                for (auto const slot : values(pos)) {
                    valueStates.push_back(raw.get<std::int32_t>(rawValue(slot) + field::valueState));
                }
                std::vector<int> childStates;
                for (auto const child : children(pos)) {
                    childStates.push_back(self(self, child));
                }
                expected[pos] = combined(pointState(pos), valueStates, childStates);
                auto const parts = SensorIdentifier::getSensorIdParts(guid(pos));
                return expected[pos] == 18 && parts[1] == 0 && parts[4] != -1 && parts[5] == -1
                           ? 39
                           : expected[pos];
            };
            for (auto const& list : {devices(), groups()}) {
                for (auto const pos : list) {
                    reported.push_back(expect(expect, pos));
                }
            }

            sut.propagateStates();

            for (std::uint32_t pos = 0; pos < points; ++pos) {
                ASSERT_EQ(expected[pos], pointState(pos))
                    << "tree " << tree << ", round " << round << ", slot " << pos;
            }
            ASSERT_EQ(combined(17, {}, reported), globalState());
        }
    }
}

// Failures

TEST_F(QelSharedMemoryWriterStatesTest, PropagateStates_NeedsNoMemory) {
    sut.setActive();
    sut.addMP(device, {}, rawNone);
    sut.addMP(pointId(1, 0, 1), {{1, 0}}, 0);
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
        ASSERT_EQ(pos, sut.addMP(pointId(level / 256, 0, level % 256), {{1, 0}}, parent));
    }
    setValue(799, 0, 1);

    runOnSmallStack([&] { sut.propagateStates(); });

    EXPECT_EQ(9, pointState(799));
    EXPECT_EQ(23, pointState(0));
    EXPECT_EQ(23, globalState());
}

} // namespace qel::test
