// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

// modifyStructure, removeStructure, unlinkMP, disconnectMP.

#include "writer/QelSharedMemoryWriter.h"

#include "format/ValueKeys.h"
#include "region/Exceptions.h"
#include "tests/support/FailureSeams.h"
#include "tests/writer/WriterFixture.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <new>
#include <numeric>
#include <set>
#include <system_error>

namespace qel::test {

namespace {

namespace key = shm::key;
using log4cpp::Priority;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::UnorderedElementsAre;

constexpr long long device = pointId(1, 0);

/// Definitions of some points, without values.
Definitions points(std::vector<long long> const& svids) {
    Definitions definitions;
    for (auto const svid : svids) {
        definitions[svid] = {};
    }
    return definitions;
}

} // namespace

class QelSharedMemoryWriterRemovalTest : public WriterTest {
protected:
    std::vector<std::uint8_t> slot(std::uint32_t pos) const {
        return {raw.bytes() + rawPoint(pos), raw.bytes() + rawPoint(pos) + 48};
    }

    /// Which point slots are free, in the order in which they are handed out; takes them all.
    std::vector<std::uint32_t> takeFreePoints() {
        std::vector<std::uint32_t> positions;
        for (int i = 0;; ++i) {
            auto const pos = sut.addMP(pointId(100 + i / 256, 3, i % 256), {}, rawNone);
            if (pos == rawNone) {
                return positions;
            }
            positions.push_back(pos);
        }
    }

    /// Which value slots are free, in the order in which they are handed out; takes them all for one new
    /// point.
    std::vector<std::uint32_t> takeFreeValues() {
        Keys keys;
        for (int key = 0; key < 8801; ++key) {
            keys[static_cast<unsigned short>(key)] = 0;
        }
        return values(sut.addMP(pointId(99, 3), keys, rawNone));
    }
};

// removeStructure: links

TEST_F(QelSharedMemoryWriterRemovalTest, EveryPointDefined_UnlinksNothing_LogsNothing) {
    sut.addStructure({{device, withKeys({key::voltage})}, {pointId(1, 0, 1), withKeys({key::peakVoltage})}});
    auto const before = raw.copy();
    WriterLog const log;

    EXPECT_FALSE(sut.removeStructure(points({device, pointId(1, 0, 1), pointId(7, 0)})));

    EXPECT_EQ(before, raw.copy());
    EXPECT_THAT(log.entries(), IsEmpty());
}

TEST_F(QelSharedMemoryWriterRemovalTest, NothingKnown_RemovesNothing) {
    EXPECT_FALSE(sut.removeStructure({}));
}

TEST_F(QelSharedMemoryWriterRemovalTest, FirstOfThreeDevices_TheSecondBecomesTheHead) {
    sut.addStructure(points({pointId(1, 0), pointId(2, 0), pointId(3, 0)}));

    EXPECT_TRUE(sut.removeStructure(points({pointId(2, 0), pointId(3, 0)})));

    EXPECT_THAT(devices(), ElementsAre(1, 2)); // checks prev as well
    EXPECT_EQ(1U, raw.u32(field::devices));
    EXPECT_EQ(rawNone, pointField(1, field::prev));
    EXPECT_EQ(rawNone, pointField(0, field::next));
    EXPECT_EQ(rawNone, pointField(0, field::prev));
    EXPECT_EQ(rawNone, pointField(0, field::parent));
}

TEST_F(QelSharedMemoryWriterRemovalTest, MiddleSibling_NeighboursMeet_ItsPrevStays) {
    sut.addStructure(points({pointId(1, 0), pointId(2, 0), pointId(3, 0)}));

    sut.removeStructure(points({pointId(1, 0), pointId(3, 0)}));

    EXPECT_THAT(devices(), ElementsAre(0, 2));
    EXPECT_EQ(0U, pointField(1, field::prev));
    EXPECT_EQ(rawNone, pointField(1, field::next));
}

TEST_F(QelSharedMemoryWriterRemovalTest, LastSibling_ItsPredecessorEndsTheList) {
    sut.addStructure(points({pointId(1, 0), pointId(2, 0)}));

    sut.removeStructure(points({pointId(1, 0)}));

    EXPECT_THAT(devices(), ElementsAre(0));
    EXPECT_EQ(0U, pointField(1, field::prev));
}

TEST_F(QelSharedMemoryWriterRemovalTest, OnlyDeviceAndOnlyGroup_LeaveEmptyLists) {
    sut.addStructure(points({pointId(1, 0), pointId(1, 2)}));

    sut.removeStructure({});

    EXPECT_EQ(rawNone, raw.u32(field::devices));
    EXPECT_EQ(rawNone, raw.u32(field::groups));
}

TEST_F(QelSharedMemoryWriterRemovalTest, FirstGroup_TheNextBecomesTheHead_DevicesStay) {
    sut.addStructure(points({pointId(1, 0), pointId(1, 2), pointId(2, 2)}));

    sut.removeStructure(points({pointId(1, 0), pointId(2, 2)}));

    EXPECT_THAT(devices(), ElementsAre(0));
    EXPECT_EQ(1U, groups().size());
    EXPECT_EQ(pointId(2, 2), raw.get<std::int64_t>(rawPoint(groups().front()) + field::guid));
}

TEST_F(QelSharedMemoryWriterRemovalTest, FirstChild_TheNextBecomesTheHeadOfItsParentsList) {
    sut.addStructure(points({device, pointId(1, 0, 1), pointId(1, 0, 2)}));

    sut.removeStructure(points({device, pointId(1, 0, 2)}));

    EXPECT_THAT(children(0), ElementsAre(2));
    EXPECT_EQ(0U, pointField(2, field::parent));
    EXPECT_EQ(rawNone, pointField(1, field::parent));
}

TEST_F(QelSharedMemoryWriterRemovalTest, PointLinkedNowhere_ChangesNoHead) {
    sut.addStructure(points({pointId(1, 0), pointId(1, 2)}));
    sut.addMP(pointId(1, 4), {}, rawNone);

    EXPECT_TRUE(sut.removeStructure(points({pointId(1, 0), pointId(1, 2)})));

    EXPECT_THAT(devices(), ElementsAre(0));
    EXPECT_THAT(groups(), ElementsAre(1));
}

TEST_F(QelSharedMemoryWriterRemovalTest, RemovedSlot_KeepsTheRestOfItsContent) {
    sut.addStructure({{device, withKeys({key::voltage})}, {pointId(1, 0, 1), withKeys({})}});
    auto const values = raw.copy();
    auto expected = slot(0);
    std::fill_n(expected.begin() + field::parent, 4, std::uint8_t{0xFF});

    sut.removeStructure(points({pointId(1, 0, 1)}));

    EXPECT_EQ(expected, slot(0));
    EXPECT_EQ(1U, pointField(0, field::children));
    EXPECT_TRUE(std::equal(values.begin() + 38400, values.begin() + 320000, raw.bytes() + 38400));
}

TEST_F(QelSharedMemoryWriterRemovalTest, ChildThatStaysWhileItsParentGoes_KeepsItsLinks) {
    sut.addStructure(points({device, pointId(1, 0, 1), pointId(1, 0, 2)}));

    EXPECT_TRUE(sut.removeStructure(points({pointId(1, 0, 1), pointId(1, 0, 2)})));

    EXPECT_THAT(devices(), IsEmpty());
    EXPECT_EQ(0U, pointField(1, field::parent));
    EXPECT_EQ(2U, pointField(1, field::next));
    EXPECT_TRUE(sut.updateMV(pointId(1, 0, 1) | key::fuseState, measured(0.0))); // still known

    // It goes by the same steps as any other: its parent's slot gives up the link.
    EXPECT_TRUE(sut.removeStructure(points({pointId(1, 0, 2)})));
    EXPECT_EQ(2U, pointField(0, field::children));
    EXPECT_EQ(rawNone, pointField(2, field::prev));
}

// removeStructure: slots and svids

TEST_F(QelSharedMemoryWriterRemovalTest, Subtree_IsFreedPointByPoint_EachOnce) {
    sut.addStructure({{device, withKeys({key::voltage})},
                      {pointId(1, 0, 1), withKeys({key::peakCurrent, 6})},
                      {pointId(1, 0, 1, 1), withKeys({})},
                      {pointId(1, 0, 1, 2), withKeys({3})},
                      {pointId(2, 0), withKeys({key::voltage})}});
    WriterLog log;

    EXPECT_TRUE(sut.removeStructure(points({device, pointId(2, 0)})));

    EXPECT_THAT(log.take(),
                ElementsAre(writerLine(Priority::INFO, "unlinkMP: pos = 0x1, topnode = true, #svids = 0"),
                            writerLine(Priority::INFO, "unlinkMP: pos = 0x2, topnode = true, #svids = 0x1"),
                            writerLine(Priority::INFO, "unlinkMP: pos = 0x3, topnode = true, #svids = 0x2")));
    EXPECT_THAT(devices(), ElementsAre(0, 4));
    EXPECT_THAT(children(0), IsEmpty());

    auto const freeValues = takeFreeValues();
    std::vector<std::uint32_t> expected(8800 - 5);
    std::iota(expected.begin(), expected.end(), 5U);
    expected.insert(expected.end(), {1, 2, 3}); // behind all that were never used
    EXPECT_EQ(expected, freeValues);

    auto const freePoints = takeFreePoints();
    std::vector<std::uint32_t> expectedPoints(800 - 6); // one went to the values' point
    std::iota(expectedPoints.begin(), expectedPoints.end(), 6U);
    expectedPoints.insert(expectedPoints.end(), {1, 2, 3});
    EXPECT_EQ(expectedPoints, freePoints);
}

TEST_F(QelSharedMemoryWriterRemovalTest, RemovedPoint_IsUnknown_AndComesBackFresh) {
    sut.addStructure({{device, withKeys({key::voltage})}});
    sut.updateMV(device | key::fuseState, measured(0.0, 9, eStatus_Off));
    sut.removeStructure({});

    EXPECT_FALSE(sut.updateMV(device | key::voltage, measured(1.0)));
    EXPECT_FALSE(sut.updateMV(device | key::fuseState, measured(1.0)));
    EXPECT_THAT(sut.injectTypes({{device, 1}}), IsEmpty());

    EXPECT_TRUE(sut.addStructure({{device, withKeys({key::voltage})}}));
    EXPECT_THAT(devices(), ElementsAre(1));
    EXPECT_EQ(17, pointState(1));
    EXPECT_THAT(values(1), ElementsAre(1));
}

TEST_F(QelSharedMemoryWriterRemovalTest, ReusedSlot_IsInitialisedAnew) {
    sut.addStructure(points({device, pointId(1, 0, 1)}));
    sut.removeStructure({});
    auto const free = takeFreePoints();
    ASSERT_EQ(800U, free.size());
    EXPECT_EQ(0U, free[798]);
    EXPECT_EQ(1U, free[799]);

    EXPECT_EQ(rawNone, pointField(0, field::children));
    EXPECT_EQ(rawNone, pointField(0, field::mvs));
    EXPECT_EQ(0U, pointField(0, field::pos));
}

TEST_F(QelSharedMemoryWriterRemovalTest,
       ReusedValueSlotsBelowAPointsHighest_TheChainContinuesBehindTheHighest) {
    // All slots but the last belong to one point, the last to another.
    Keys keys;
    for (int key = 0; key < 8799; ++key) {
        keys[static_cast<unsigned short>(key)] = 0;
    }
    sut.addMP(device, keys, rawNone);
    sut.addMP(pointId(2, 0), {{key::voltage, 0}}, rawNone);
    sut.removeStructure(points({pointId(2, 0)}));

    sut.addMP(pointId(2, 0), {{key::peakVoltage, 0}, {3, 0}}, rawNone);
    EXPECT_THAT(values(1), ElementsAre(8799, 0, 1));

    sut.addMP(pointId(2, 0), {{key::current, 0}}, rawNone);
    EXPECT_THAT(values(1), ElementsAre(8799, 2)); // the highest position counts as the tail
}

TEST_F(QelSharedMemoryWriterRemovalTest, ValuesThatAreNotDefined_Stay) {
    sut.addStructure({{device, withKeys({key::voltage, key::peakVoltage})}});

    EXPECT_FALSE(sut.removeStructure({{device, withKeys({key::voltage})}}));

    EXPECT_THAT(values(0), ElementsAre(0, 1));
}

// unlinkMP

TEST_F(QelSharedMemoryWriterRemovalTest, UnlinkMP_PositionOutOfRange_IsOnlyLogged) {
    auto const before = raw.copy();
    std::unordered_set<long long> removed;
    WriterLog const log;

    sut.unlinkMP(800, true, removed);
    sut.unlinkMP(rawNone, false, removed);

    EXPECT_THAT(
        log.entries(),
        ElementsAre(writerLine(Priority::INFO, "unlinkMP: pos = 0x320, topnode = true, #svids = 0"),
                    writerLine(Priority::INFO, "unlinkMP: pos = 0xffffffff, topnode = false, #svids = 0")));
    EXPECT_THAT(removed, IsEmpty());
    EXPECT_EQ(before, raw.copy());
    EXPECT_EQ(800U, takeFreePoints().size());
}

TEST_F(QelSharedMemoryWriterRemovalTest, UnlinkMP_Topnode_LeavesSiblingsAndChildren) {
    sut.addStructure(points({device, pointId(1, 0, 1), pointId(2, 0)}));
    std::unordered_set<long long> removed{77};

    sut.unlinkMP(0, true, removed);

    EXPECT_THAT(removed, UnorderedElementsAre(77, device));
    EXPECT_THAT(devices(), ElementsAre(2));
    EXPECT_EQ(0U, pointField(1, field::parent));
}

TEST_F(QelSharedMemoryWriterRemovalTest, UnlinkMP_NoTopnode_FreesFollowingSiblingsThenChildrenThenThePoint) {
    sut.addStructure({{device, withKeys({})},
                      {pointId(1, 0, 1), withKeys({10})},
                      {pointId(1, 0, 1, 1), withKeys({key::peakActivePower})},
                      {pointId(1, 0, 2), withKeys({40, 30})}});
    auto const before = raw.copy();
    std::unordered_set<long long> removed;
    WriterLog log(Priority::INFO);

    sut.unlinkMP(1, false, removed);

    auto const line = [](std::string const& pos, std::string const& count) {
        return writerLine(Priority::INFO, "unlinkMP: pos = " + pos + ", topnode = false, #svids = " + count);
    };
    EXPECT_THAT(log.take(), ElementsAre(line("0x1", "0"), line("0x3", "0"), line("0xffffffff", "0"),
                                        line("0xffffffff", "0"), line("0x2", "0x1"),
                                        line("0xffffffff", "0x1"), line("0xffffffff", "0x1")));
    EXPECT_EQ(before, raw.copy()); // links untouched
    EXPECT_THAT(removed, UnorderedElementsAre(pointId(1, 0, 1), pointId(1, 0, 1, 1), pointId(1, 0, 2)));
    auto const free = takeFreePoints();
    EXPECT_EQ((std::vector<std::uint32_t>{3, 2, 1}), std::vector<std::uint32_t>(free.end() - 3, free.end()));
}

TEST_F(QelSharedMemoryWriterRemovalTest, UnlinkMP_FreesValuesInKeyOrder) {
    sut.addMP(device, {{40, 0}}, rawNone);
    sut.addMP(device, {{30, 0}}, rawNone);
    std::unordered_set<long long> removed;

    sut.unlinkMP(0, true, removed);

    auto const free = takeFreeValues();
    ASSERT_EQ(8800U, free.size());
    EXPECT_EQ(1U, free[8798]); // key 30
    EXPECT_EQ(0U, free[8799]); // key 40
}

TEST_F(QelSharedMemoryWriterRemovalTest, UnlinkMP_SlotThatIsNotKnown_IsLogged_KeepsItsValues_AndIsFreed) {
    sut.addStructure({{device, withKeys({key::voltage})}});
    raw.set<std::int64_t>(field::guid, pointId(3, 0, 4));
    std::unordered_set<long long> removed;
    WriterLog log;

    sut.unlinkMP(0, true, removed);

    EXPECT_THAT(log.take(),
                ElementsAre(writerLine(Priority::INFO, "unlinkMP: pos = 0, topnode = true, #svids = 0"),
                            writerLine(Priority::WARN, "unlinkMP: failed to find " +
                                                           std::to_string(pointId(3, 0, 4)) +
                                                           " in local cache (no mvs are freed, ignored)")));
    EXPECT_THAT(removed, UnorderedElementsAre(pointId(3, 0, 4)));
    EXPECT_THAT(devices(), IsEmpty());
    EXPECT_EQ(8799U, takeFreeValues().size());
    EXPECT_EQ(799U, takeFreePoints().size());
}

TEST_F(QelSharedMemoryWriterRemovalTest, SlotThatBearsAnUnknownId_IsFreedOnce_AndItsPointComesBackFresh) {
    sut.addStructure({{device, withKeys({key::voltage})}});
    raw.set<std::int64_t>(field::guid, pointId(3, 0, 4));

    EXPECT_TRUE(sut.removeStructure({}));
    EXPECT_FALSE(sut.removeStructure({}));

    EXPECT_FALSE(sut.updateMV(device | key::voltage, measured(1.0)));
    EXPECT_TRUE(sut.addStructure({{device, withKeys({key::voltage})}}));
    EXPECT_EQ(1U, raw.u32(field::devices));
    EXPECT_EQ(8798U, takeFreeValues().size()); // the former value's slot stays behind
    auto const free = takeFreePoints();
    EXPECT_EQ(798U, free.size()); // one is the device's, one the values'
    EXPECT_EQ(free.size(), std::set<std::uint32_t>(free.begin(), free.end()).size());
}

TEST_F(QelSharedMemoryWriterRemovalTest, SlotThatBearsTheIdOfAnotherPoint_NoSlotIsFreedTwice) {
    sut.addStructure(
        {{device, withKeys({key::voltage})}, {pointId(2, 0), withKeys({key::voltage, key::peakVoltage})}});
    raw.set<std::int64_t>(rawPoint(1) + field::guid, device);

    EXPECT_TRUE(sut.removeStructure({}));
    EXPECT_FALSE(sut.removeStructure({}));

    auto const values = takeFreeValues();
    EXPECT_EQ(values.size(), std::set<std::uint32_t>(values.begin(), values.end()).size());
    auto const free = takeFreePoints();
    EXPECT_EQ(799U, free.size());
    EXPECT_EQ(free.size(), std::set<std::uint32_t>(free.begin(), free.end()).size());
}

TEST_F(QelSharedMemoryWriterRemovalTest, UnlinkMP_OfAFreeSlot_DoesNotFreeItAgain) {
    sut.addStructure({{device, withKeys({key::voltage})}});
    std::unordered_set<long long> removed;

    sut.unlinkMP(0, true, removed);
    sut.unlinkMP(0, true, removed);
    sut.removeStructure({});

    EXPECT_EQ(8800U, takeFreeValues().size());
    EXPECT_EQ(799U, takeFreePoints().size());
}

TEST_F(QelSharedMemoryWriterRemovalTest, LaterRemovalThatFails_LeavesTheEarlierOnesDone) {
    WriterLog const withoutLines(log4cpp::Priority::WARN); // which would take memory, too
    sut.addStructure({{device, withKeys({key::voltage})}, {pointId(2, 0), withKeys({key::voltage})}});
    {
        MemoryRunsOut const soon(2); // for the ids of removed points: its places, and one of them
        EXPECT_THROW(sut.removeStructure({}), std::bad_alloc);
    }
    EXPECT_THAT(devices(), ElementsAre(1));
    EXPECT_FALSE(sut.updateMV(device | key::voltage, measured(1.0)));
    EXPECT_TRUE(sut.updateMV(pointId(2, 0) | key::voltage, measured(1.0)));

    EXPECT_TRUE(sut.removeStructure({}));

    EXPECT_THAT(devices(), IsEmpty());
    EXPECT_EQ(8800U, takeFreeValues().size());
    EXPECT_EQ(799U, takeFreePoints().size());
}

// disconnectMP

TEST_F(QelSharedMemoryWriterRemovalTest, DisconnectMP_ChangesItsNeighboursOnly) {
    sut.addStructure({{device, withKeys({key::voltage})},
                      {pointId(1, 0, 1), withKeys({})},
                      {pointId(2, 0), withKeys({})}});
    auto expected = raw.copy();
    auto const put = [&](std::size_t offset, std::uint32_t number) {
        std::memcpy(&expected[offset], &number, 4);
    };
    put(field::devices, 2);
    put(field::next, rawNone);
    put(rawPoint(2) + field::prev, rawNone);

    sut.disconnectMP(sut.region()->points[0]);

    EXPECT_EQ(expected, raw.copy());
}

TEST_F(QelSharedMemoryWriterRemovalTest, DisconnectMP_LastSibling_KeepsItsPrev_LosesItsParent) {
    sut.addStructure(points({device, pointId(1, 0, 1), pointId(1, 0, 2)}));

    sut.disconnectMP(sut.region()->points[2]);

    EXPECT_THAT(children(0), ElementsAre(1));
    EXPECT_EQ(1U, pointField(2, field::prev));
    EXPECT_EQ(rawNone, pointField(2, field::parent));
}

TEST_F(QelSharedMemoryWriterRemovalTest, DisconnectMP_PositionsOutOfRange_ReadAsNone) {
    sut.addStructure(points({device}));
    raw.set<std::uint32_t>(field::prev, 800);
    raw.set<std::uint32_t>(field::next, 801);
    raw.set<std::uint32_t>(field::parent, 802);

    sut.disconnectMP(sut.region()->points[0]);

    EXPECT_EQ(801U, raw.u32(field::devices)); // the head takes what stood in next
    EXPECT_EQ(rawNone, pointField(0, field::prev));
    EXPECT_EQ(801U, pointField(0, field::next));
    EXPECT_EQ(rawNone, pointField(0, field::parent));
}

// modifyStructure

TEST_F(QelSharedMemoryWriterRemovalTest, ModifyStructure_BuildsPointsAndValuesFromSvids) {
    WriterLog log;

    EXPECT_TRUE(sut.modifyStructure({device | key::current, device | key::voltage, pointId(1, 0, 1)}));

    EXPECT_EQ(writerLine(Priority::DEBUG, "modifyStructure: #svids = 0x3"), log.entries().front());
    EXPECT_TRUE(log.contains(writerLine(Priority::DEBUG,
                                        "addStructure: 0x100ffffffff0000, #keys = MPDef {pos = 0xffffffff, "
                                        "mvs = [<Voltage;0xffffffff>, <Current;0xffffffff>]}")));
    EXPECT_THAT(devices(), ElementsAre(0));
    EXPECT_THAT(children(0), ElementsAre(1));
    EXPECT_THAT(values(0), ElementsAre(0, 1));
    EXPECT_EQ(1, raw.get<std::uint16_t>(rawValue(0) + field::valueKey));
}

TEST_F(QelSharedMemoryWriterRemovalTest, ModifyStructure_SameSet_ChangesNothing) {
    std::unordered_set<long long> const svids{device | key::voltage, device | key::fuseState,
                                              pointId(1, 0, 1) | key::peakVoltage};
    sut.modifyStructure(svids);
    auto const before = raw.copy();
    WriterLog const log;

    EXPECT_FALSE(sut.modifyStructure(svids));

    EXPECT_EQ(before, raw.copy());
    EXPECT_THAT(log.entries(), ElementsAre(writerLine(Priority::DEBUG, "modifyStructure: #svids = 0x3")));
}

TEST_F(QelSharedMemoryWriterRemovalTest, ModifyStructure_PointStateKeys_MakeThePointButNoValue) {
    int number = 0;
    for (int const key :
         {key::fuseState, key::socket, key::pduState, key::sensorState, key::circuitState, key::phaseState,
          key::rcdState, key::socketGroupState, key::globalState, key::state}) {
        std::unordered_set<long long> svids;
        svids.insert(pointId(++number, 0) | key);

        EXPECT_TRUE(sut.modifyStructure(svids));

        ASSERT_EQ(1U, devices().size());
        EXPECT_THAT(values(devices().front()), IsEmpty()) << key;
    }
}

TEST_F(QelSharedMemoryWriterRemovalTest, ModifyStructure_NeighboursOfPointStateKeys_AreValues) {
    sut.modifyStructure(
        {device | 0x2F, device | key::orientation, device | key::usb, device | 0x3C, device | 0xFFFF});

    EXPECT_EQ(5U, values(0).size());
}

TEST_F(QelSharedMemoryWriterRemovalTest, ModifyStructure_OnlyAdded_OnlyRemoved_Both) {
    EXPECT_TRUE(sut.modifyStructure({device}));
    EXPECT_TRUE(sut.modifyStructure({device, pointId(2, 0)}));
    EXPECT_TRUE(sut.modifyStructure({pointId(2, 0)}));
    EXPECT_TRUE(sut.modifyStructure({pointId(3, 0)}));

    EXPECT_EQ(1U, devices().size());
    EXPECT_EQ(pointId(3, 0), raw.get<std::int64_t>(rawPoint(devices().front()) + field::guid));
}

TEST_F(QelSharedMemoryWriterRemovalTest, ModifyStructure_EmptySet_RemovesEverything) {
    sut.modifyStructure({device | key::voltage, pointId(1, 0, 1) | key::voltage, pointId(1, 2)});
    WriterLog const log(Priority::DEBUG);

    EXPECT_TRUE(sut.modifyStructure({}));

    EXPECT_EQ(writerLine(Priority::DEBUG, "modifyStructure: #svids = 0"), log.entries().front());
    EXPECT_EQ(rawNone, raw.u32(field::devices));
    EXPECT_EQ(rawNone, raw.u32(field::groups));
    EXPECT_EQ(8800U, takeFreeValues().size());
    EXPECT_EQ(799U, takeFreePoints().size());
    EXPECT_FALSE(log.contains(writerLine(Priority::ERROR, "")));
}

TEST_F(QelSharedMemoryWriterRemovalTest, ModifyStructure_RootSvid_IsNoPoint) {
    EXPECT_FALSE(sut.modifyStructure({rootSvid, rootSvid | key::globalState, rootSvid | key::voltage}));

    EXPECT_EQ(800U, takeFreePoints().size());
}

TEST_F(QelSharedMemoryWriterRemovalTest, ModifyStructure_AddsBeforeItRemoves) {
    std::unordered_set<long long> svids;
    for (int i = 0; i < 800; ++i) {
        svids.insert(pointId(1 + i / 100, 0, -1, i % 100));
    }
    sut.modifyStructure(svids);
    svids.erase(pointId(1, 0, -1, 0));
    svids.insert(pointId(20, 0));

    EXPECT_THROW(sut.modifyStructure(svids), ex::InvalidSensorIdException); // no slot is free yet

    EXPECT_EQ(800U, devices().size()); // and nothing was removed
    svids.erase(pointId(20, 0));
    EXPECT_TRUE(sut.modifyStructure(svids));
    svids.insert(pointId(20, 0));
    EXPECT_TRUE(sut.modifyStructure(svids));
    EXPECT_EQ(800U, devices().size());
}

TEST_F(QelSharedMemoryWriterRemovalTest, ModifyStructure_MissingParent_ThrowsAndRemovesNothing) {
    sut.modifyStructure({device});

    EXPECT_THROW(sut.modifyStructure({pointId(2, 0, 1)}), ex::InvalidSensorIdException);

    EXPECT_THAT(devices(), ElementsAre(0));
}

TEST_F(QelSharedMemoryWriterRemovalTest, ModifyStructure_FailingMutex_ThrowsSystemError) {
    sut.modifyStructure({device | key::voltage});
    std::string thrown;
    try {
        MutexesFail const broken;
        sut.modifyStructure({device | key::voltage});
    } catch (std::system_error const& failure) {
        thrown = failure.code().message();
    }
    EXPECT_EQ(std::make_error_code(std::errc::invalid_argument).message(), thrown);
    EXPECT_FALSE(sut.modifyStructure({device | key::voltage}));
}

TEST_F(QelSharedMemoryWriterRemovalTest, PropagationAfterRemoval_ForgetsTheRemovedAlarm) {
    sut.modifyStructure({device, pointId(1, 0, 1) | key::voltage});
    sut.setActive();
    sut.updateMV(pointId(1, 0, 1) | key::voltage, measured(0.0, 1, eStatus_HighAlarm));
    sut.propagateStates();
    ASSERT_EQ(23, globalState());

    sut.modifyStructure({device});
    sut.propagateStates();

    EXPECT_EQ(17, pointState(0));
    EXPECT_EQ(17, globalState());
}

} // namespace qel::test
