// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "inspect/why/FoldedStates.h"

#include "format/ValueKeys.h"
#include "inspect/image/LiveRegion.h"
#include "states/StateRules.h"
#include "tests/inspect/RandomUnit.h"
#include "tests/writer/WriterFixture.h"

#include <gtest/gtest.h>

namespace qel::inspect {

namespace {

namespace key = shm::key;
using test::pointId;
using test::withKeys;

constexpr long long unit = pointId(1, 0);
constexpr long long inlet = pointId(1, 0, 1);
constexpr long long circuit = pointId(1, 0, 1, -1, 1);
constexpr long long socket = pointId(1, 0, 1, -1, 1, 1);

} // namespace

TEST(FoldedStatesTest, TellHowEachStateComesAbout) {
    test::ExposedWriter writer;
    writer.addStructure({{unit, {}},
                         {inlet, withKeys({key::voltage})},
                         {circuit, {}},
                         {socket, withKeys({key::voltage, key::current})}});
    writer.updateMV(inlet | key::voltage, test::measured(1, 1, eStatus_LowWarning));
    writer.updateMV(socket | key::current, test::measured(1, 1, eStatus_HighAlarm));
    writer.updateMV(socket | key::fuseState, test::measured(1, 1, eStatus_Off));
    auto const image = LiveRegion().copy();
    PointTree const tree(image);
    FoldedStates const folded(image, tree);

    ASSERT_EQ(4U, folded.nodes().size());
    auto const& ofSocket = folded.nodes()[3];
    EXPECT_EQ(eStatus_Off, ofSocket.own);
    EXPECT_EQ(eStatus_HighAlarm, ofSocket.values);
    EXPECT_EQ(eStatus_UndefinedValue, ofSocket.children);
    EXPECT_EQ(eStatus_OffAlarm, ofSocket.state);
    EXPECT_EQ(eStatus_OffAlarm, ofSocket.reported);
    auto const& ofInlet = folded.nodes()[1];
    EXPECT_EQ(eStatus_On, ofInlet.own);
    EXPECT_EQ(eStatus_LowWarning, ofInlet.values);
    EXPECT_EQ(eStatus_ChildAlarm, ofInlet.children);
    EXPECT_EQ(eStatus_ChildAlarm, ofInlet.state);
    EXPECT_EQ(eStatus_ChildAlarm, folded.global());
}

TEST(FoldedStatesTest, SwitchedOffCircuit_ReportsAnAlarm_AndShowsOff) {
    test::ExposedWriter writer;
    writer.addStructure({{unit, {}}, {inlet, {}}, {circuit, {}}, {socket, {}}});
    writer.updateMV(circuit | key::fuseState, test::measured(1, 1, eStatus_Off));
    auto const image = LiveRegion().copy();
    PointTree const tree(image);
    FoldedStates const folded(image, tree);
    EXPECT_EQ(eStatus_Off, folded.nodes()[2].state);
    EXPECT_EQ(eStatus_Alarm, folded.nodes()[2].reported);
    EXPECT_EQ(eStatus_ChildAlarm, folded.nodes()[0].state);
}

TEST(FoldedStatesTest, ReportedState_OnlyOfAnElectricalCircuitDiffers) {
    EXPECT_EQ(eStatus_Alarm, shm::reportedState(circuit, eStatus_Off));
    EXPECT_EQ(eStatus_On, shm::reportedState(circuit, eStatus_On));
    EXPECT_EQ(eStatus_OffAlarm, shm::reportedState(circuit, eStatus_OffAlarm));
    EXPECT_EQ(eStatus_Off, shm::reportedState(socket, eStatus_Off));
    EXPECT_EQ(eStatus_Off, shm::reportedState(inlet, eStatus_Off));
    EXPECT_EQ(eStatus_Off, shm::reportedState(pointId(1, 4, 1, -1, 1), eStatus_Off));
}

TEST(FoldedStatesTest, WithoutPoints_GlobalStateIsOn) {
    Image const image;
    PointTree const tree(image);
    FoldedStates const folded(image, tree);
    EXPECT_TRUE(folded.nodes().empty());
    EXPECT_EQ(eStatus_On, folded.global());
}

TEST(FoldedStatesTest, AreWhatAPropagationStoresThen) {
    test::LogCapture const quiet("qel", log4cpp::Priority::FATAL);
    test::RandomUnit random(11, 60, false);
    int changed = 0;
    for (int i = 0; i < 500; ++i) {
        random.stepWithoutPropagation();
        auto const before = random.image();
        PointTree const tree(before);
        FoldedStates const folded(before, tree);
        random.propagate();
        auto const after = random.image();
        for (std::size_t node = 0; node < tree.nodes().size(); ++node) {
            auto const pos = tree.nodes()[node].pos;
            ASSERT_EQ(after.point(pos)->state, folded.nodes()[node].state) << "step " << i << " slot " << pos;
            changed += before.point(pos)->state != after.point(pos)->state ? 1 : 0;
        }
        ASSERT_EQ(after.root().state, folded.global()) << "step " << i;
    }
    EXPECT_GT(changed, 500);
}

} // namespace qel::inspect
