// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

// Construction, destruction, and the building of points and values.

#include "writer/QelSharedMemoryWriter.h"

#include "format/ValueKeys.h"
#include "region/Exceptions.h"
#include "tests/writer/WriterFixture.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <numeric>
#include <type_traits>

namespace qel::test {

namespace {

namespace key = shm::key;
using log4cpp::Priority;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr long long device = pointId(1, 0);

std::vector<std::uint8_t> slotBytes(RawRegion const& raw, std::size_t offset, std::size_t size) {
    return {raw.bytes() + offset, raw.bytes() + offset + size};
}

std::set<unsigned short> firstKeys(unsigned int count) {
    std::set<unsigned short> keys;
    for (unsigned int key = 0; key < count; ++key) {
        keys.insert(static_cast<unsigned short>(key));
    }
    return keys;
}

std::vector<std::uint32_t> counting(std::uint32_t count) {
    std::vector<std::uint32_t> numbers(count);
    std::iota(numbers.begin(), numbers.end(), 0U);
    return numbers;
}

} // namespace

using QelSharedMemoryWriterTest = WriterTest;

static_assert(!std::is_copy_constructible_v<shm::QelSharedMemoryWriter>);
static_assert(!std::is_copy_assignable_v<shm::QelSharedMemoryWriter>);
static_assert(std::is_base_of_v<shm::QelSharedMemoryAccess, shm::QelSharedMemoryWriter>);
static_assert(std::is_base_of_v<shm::QelSharedMemoryStates, shm::QelSharedMemoryWriter>);
static_assert(std::has_virtual_destructor_v<shm::QelSharedMemoryWriter>);

// Construction and destruction

TEST(QelSharedMemoryWriterLifeTest, Constructor_CreatesAWipedRegion) {
    shm::QelSharedMemoryWriter const sut;

    ASSERT_EQ(320032, rawRegionSizeNow());
    auto const bytes = RawRegion().copy();
    EXPECT_TRUE(std::all_of(bytes.begin(), bytes.end(), [](auto byte) { return byte == 0xFF; }));
    EXPECT_EQ(0U, sut.root().dvcCnt());
    EXPECT_EQ(0U, sut.root().grpCnt());
}

TEST(QelSharedMemoryWriterLifeTest, Constructor_WipesWhatAnEarlierWriterLeft) {
    {
        RawRegion const leftOver(true);
        leftOver.fill(32);
    }
    shm::QelSharedMemoryWriter const sut;

    auto const bytes = RawRegion().copy();
    EXPECT_TRUE(std::all_of(bytes.begin(), bytes.end(), [](auto byte) { return byte == 0xFF; }));
}

TEST(QelSharedMemoryWriterLifeTest, ConstructorAndDestructor_LogTheirLines) {
    LogCapture const log("qel.shm.access");
    { shm::QelSharedMemoryWriter const sut; }

    auto const entries = log.entries();
    auto const from = [&](std::string const& category) {
        std::vector<LogEntry> lines;
        std::copy_if(entries.begin(), entries.end(), std::back_inserter(lines),
                     [&](auto const& entry) { return entry.category == category; });
        return lines;
    };
    EXPECT_THAT(from("qel.shm.access.writer"),
                ElementsAre(writerLine(Priority::INFO, "QelSharedMemoryWriter: start"),
                            writerLine(Priority::INFO, "~QelSharedMemoryWriter: done")));
    EXPECT_THAT(from("qel.shm.access"),
                ElementsAre(LogEntry{"qel.shm.access", Priority::INFO, "QelSharedMemoryAccess: start"},
                            LogEntry{"qel.shm.access", Priority::INFO, "~QelSharedMemoryAccess: done"}));
    EXPECT_EQ("QelSharedMemoryAccess: start", entries.front().text);
    EXPECT_EQ("~QelSharedMemoryAccess: done", entries.back().text);
}

TEST(QelSharedMemoryWriterLifeTest, Destructor_RemovesTheRegionsName) {
    { shm::QelSharedMemoryWriter const sut; }

    EXPECT_FALSE(rawRegionExists());
}

// initMP, initMV

TEST_F(QelSharedMemoryWriterTest, InitMP_WritesItsFields_AndLeavesTheRestAtFF) {
    raw.fill(0);

    auto const& mp = sut.initMP(2, pointId(1, 2, 3, 4, 5, 6), 0x01020304);

    EXPECT_THAT(slotBytes(raw, 96, 48), ElementsAre(2, 0, 0, 0,             // pos
                                                    0xFF, 0xFF, 0xFF, 0xFF, // next
                                                    0xFF, 0xFF, 0xFF, 0xFF, // prev
                                                    0xFF, 0xFF, 0xFF, 0xFF, // mvs
                                                    0xFF, 0xFF, 0xFF, 0xFF, // children
                                                    4, 3, 2, 1,             // parent
                                                    0, 0, 6, 5, 4, 3, 2, 1, // guid
                                                    0, 0, 0, 0, 0, 0, 0, 0, // at
                                                    17, 0, 0, 0,            // state
                                                    1,                      // type: a group
                                                    0xFF, 0xFF, 0xFF));     // reserved
    EXPECT_EQ(&sut.region()->points[2], &mp);
    EXPECT_EQ(0, raw.bytes()[95]);
    EXPECT_EQ(0, raw.bytes()[144]);
}

TEST_F(QelSharedMemoryWriterTest, InitMP_TypeIsOneForGroupsAndRcmsOnly) {
    for (int kind = 0; kind <= 0xFF; ++kind) {
        sut.initMP(0, pointId(1, kind), rawNone);

        EXPECT_EQ(kind == 2 || kind == 4 ? 1 : 0, raw.bytes()[field::pointType]) << kind;
    }
}

TEST_F(QelSharedMemoryWriterTest, InitMP_LogsItsArguments) {
    WriterLog const log;

    sut.initMP(0x1F, device, rawNone);

    EXPECT_THAT(log.entries(),
                ElementsAre(writerLine(Priority::DEBUG,
                                       "initMP: pos = 0x1f, guid = 0x100ffffffff0000, ppos = 0xffffffff")));
}

TEST_F(QelSharedMemoryWriterTest, InitMV_WritesItsFields_AndLeavesTheRestAtFF) {
    raw.fill(0x55);

    auto const& mv = sut.initMV(8799, key::input1);

    EXPECT_THAT(slotBytes(raw, 319968, 32), ElementsAre(0, 0, 0, 0, 0, 0, 0, 0,               // value
                                                        0, 0, 0, 0, 0, 0, 0, 0,               // at
                                                        0xFE, 0xFF, 0xFF, 0xFF,               // state -2
                                                        0xFF, 0xFF, 0xFF, 0xFF,               // next
                                                        2, 1,                                 // key
                                                        0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF)); // reserved
    EXPECT_EQ(&sut.region()->values[8799], &mv);
    EXPECT_EQ(0x55, raw.bytes()[319967]);
    EXPECT_EQ(0x55, raw.bytes()[320000]);
}

TEST_F(QelSharedMemoryWriterTest, InitMV_LogsItsArguments) {
    WriterLog const log;

    sut.initMV(0, key::voltageMeasuredAtSocketLevel);

    EXPECT_THAT(log.entries(), ElementsAre(writerLine(Priority::DEBUG, "initMV: pos = 0, key = 0xfffe")));
}

// addMP, addMVs

TEST_F(QelSharedMemoryWriterTest, AddMP_HandsOutPointsAndValuesLowestFirst) {
    EXPECT_EQ(0U, sut.addMP(device, {{key::peakCurrent, 77}, {key::voltage, 88}}, rawNone));
    EXPECT_EQ(1U, sut.addMP(pointId(1, 0, 1), {{key::peakVoltage, 0}}, 0));

    EXPECT_THAT(values(0), ElementsAre(0, 1));
    EXPECT_THAT(values(1), ElementsAre(2));
    EXPECT_EQ(1, raw.get<std::uint16_t>(rawValue(0) + field::valueKey));
    EXPECT_EQ(5, raw.get<std::uint16_t>(rawValue(1) + field::valueKey));
}

TEST_F(QelSharedMemoryWriterTest, AddMP_WithoutValues_LeavesTheChainEmpty) {
    sut.addMP(device, {}, rawNone);

    EXPECT_EQ(rawNone, pointField(0, field::mvs));
    EXPECT_EQ(rawNone, pointField(0, field::children));
}

TEST_F(QelSharedMemoryWriterTest, AddMP_KeyInTheSvid_IsCleared) {
    sut.addMP(device | 0x1234, {}, rawNone);

    EXPECT_EQ(device, raw.get<std::int64_t>(field::guid));
    EXPECT_EQ(0U, sut.addMP(device | 0xFFFF, {}, rawNone));
    EXPECT_THAT(devices(), ElementsAre(0));
}

TEST_F(QelSharedMemoryWriterTest, AddMP_KnownPoint_GetsTheMissingValuesAndKeepsItsParent) {
    sut.addMP(device, {}, rawNone);
    sut.addMP(pointId(1, 0, 1), {{key::current, 0}}, 0);

    EXPECT_EQ(1U, sut.addMP(pointId(1, 0, 1),
                            {{key::voltage, 0}, {key::current, 0}, {key::neutralCurrent, 0}}, rawNone));

    EXPECT_THAT(values(1), ElementsAre(0, 1, 2));
    EXPECT_EQ(0U, pointField(1, field::parent));
    EXPECT_EQ(1, raw.get<std::uint16_t>(rawValue(1) + field::valueKey));
    EXPECT_EQ(9, raw.get<std::uint16_t>(rawValue(2) + field::valueKey));
}

TEST_F(QelSharedMemoryWriterTest, AddMP_NewPoint_LogsEachStep) {
    WriterLog const log;

    sut.addMP(device | key::differentialCurrentAc, {{key::voltage, 0}}, rawNone);

    EXPECT_THAT(
        log.entries(),
        ElementsAre(
            writerLine(Priority::INFO, "addMP: svid = 0x100ffffffff0007, ppos = 0xffffffff"),
            writerLine(Priority::DEBUG, "initMP: pos = 0, guid = 0x100ffffffff0000, ppos = 0xffffffff"),
            writerLine(Priority::DEBUG, "connectMP: pos = 0, stype = Electrical, ppos = 0xffffffff"),
            writerLine(Priority::DEBUG, "connectMP: curpos = 0xffffffff"),
            writerLine(Priority::DEBUG, "initMV: pos = 0, key = 0x1")));
}

TEST_F(QelSharedMemoryWriterTest, AddMP_KnownPoint_LogsEachKnownKey) {
    sut.addMP(device, {{key::voltage, 0}, {key::apparentEnergy, 0}}, rawNone);
    WriterLog const log;

    sut.addMP(device, {{key::voltage, 0}, {key::peakVoltage, 0}, {key::apparentEnergy, 0}}, 5);

    EXPECT_THAT(log.entries(),
                ElementsAre(writerLine(Priority::INFO, "addMP: svid = 0x100ffffffff0000, ppos = 0x5"),
                            writerLine(Priority::WARN, "addMVs: Ignoring known key 0x1, pos = 0"),
                            writerLine(Priority::DEBUG, "initMV: pos = 0x2, key = 0x2"),
                            writerLine(Priority::WARN, "addMVs: Ignoring known key 0x20, pos = 0x1")));
}

TEST_F(QelSharedMemoryWriterTest, AddMP_KnownKey_LeavesItsSlotUnchanged) {
    sut.addMP(device, {{key::voltage, 0}}, rawNone);
    sut.updateMV(device | key::voltage, measured(2.5, 77, eStatus_LowAlarm));
    auto const before = raw.copy();

    sut.addMP(device, {{key::voltage, 0}}, rawNone);

    EXPECT_EQ(before, raw.copy());
}

TEST_F(QelSharedMemoryWriterTest, AddMVs_HighestPositionCountsAsTail) {
    auto& mp = sut.initMP(0, device, rawNone);
    auto& mv = sut.initMV(5000, key::voltage);
    mp.mvs = 5000;
    shm::MPDef definition(0, {{key::voltage, 5000}});

    sut.addMVs(mp, definition, {{key::peakVoltage, 0}, {3, 0}});

    EXPECT_THAT(values(0), ElementsAre(5000, 0, 1));
    EXPECT_EQ((Keys{{key::voltage, 5000}, {key::peakVoltage, 0}, {3, 1}}), definition.mvs);

    // The chain ends at 1, yet the next value goes behind 5000, and 0 and 1 drop out.
    sut.addMVs(mp, definition, {{key::current, 0}});

    EXPECT_EQ(2U, mv.next);
    EXPECT_THAT(values(0), ElementsAre(5000, 2));
    EXPECT_EQ((Keys{{key::voltage, 5000}, {key::peakVoltage, 0}, {3, 1}, {key::current, 2}}), definition.mvs);
}

// The limits

TEST_F(QelSharedMemoryWriterTest, AddMP_801stPoint_IsRefused) {
    for (std::uint32_t i = 0; i < 800; ++i) {
        ASSERT_EQ(
            i, sut.addMP(pointId(1, 2, static_cast<int>(i / 100), static_cast<int>(i % 100)), {}, rawNone));
    }
    auto const before = raw.copy();
    WriterLog const log(Priority::WARN);

    EXPECT_EQ(rawNone, sut.addMP(pointId(9, 2) | 3, {{key::voltage, 0}}, rawNone));

    EXPECT_THAT(log.entries(),
                ElementsAre(writerLine(Priority::WARN, "addMP: no free measurement points left, cannot add "
                                                       "0x902ffffffff0000")));
    EXPECT_EQ(before, raw.copy());
    EXPECT_EQ(800U, groups().size());
    EXPECT_EQ(5U,
              sut.addMP(pointId(1, 2, 0, 5), {{key::voltage, 0}}, rawNone)); // known points still get values
    EXPECT_THAT(values(5), ElementsAre(0));
}

TEST_F(QelSharedMemoryWriterTest, AddStructure_801stPoint_Throws_AndThePointsBeforeItStay) {
    Definitions definitions;
    for (int i = 0; i < 801; ++i) {
        definitions[pointId(1 + i / 100, 2, -1, i % 100)] = withKeys({key::voltage});
    }
    WriterLog const log(Priority::WARN);

    try {
        sut.addStructure(definitions);
        FAIL() << "nothing thrown";
    } catch (ex::InvalidSensorIdException const& failure) {
        EXPECT_EQ("The sensor identifier " + SensorIdentifier::explain(pointId(9, 2, -1, 0)) + " is invalid",
                  failure.what());
    }

    EXPECT_THAT(
        log.entries(),
        ElementsAre(writerLine(Priority::WARN,
                               "addMP: no free measurement points left, cannot add 0x902ff00ffff0000"),
                    writerLine(Priority::ERROR, "bailout: failed to handle MP 0x902ff00ffff0000")));
    EXPECT_EQ(counting(800), groups());
    EXPECT_THAT(values(799), ElementsAre(799));
}

TEST_F(QelSharedMemoryWriterTest, AddMP_ValuesBeyond8800_AreRefusedOneByOne) {
    sut.addMP(device, withKeys(firstKeys(8799)).mvs, rawNone);
    WriterLog const log(Priority::WARN);

    EXPECT_EQ(1U, sut.addMP(pointId(2, 0),
                            {{key::fuseState, 0}, {0x3C, 0}, {key::activeEnergyResettableDeltaBaseValue, 0}},
                            rawNone));

    EXPECT_THAT(
        log.entries(),
        ElementsAre(writerLine(Priority::WARN, "addMVs: no free measured values left, cannot add key 0x3c to "
                                               "0x200ffffffff0000"),
                    writerLine(Priority::WARN,
                               "addMVs: no free measured values left, cannot add key 0xfffc to "
                               "0x200ffffffff0000")));
    EXPECT_THAT(values(1), ElementsAre(8799));
    EXPECT_EQ(counting(8799), values(0));
    EXPECT_EQ(rawNone, raw.u32(field::devices + 4)); // the root after the last value is untouched
}

TEST_F(QelSharedMemoryWriterTest, AddMP_RefusedValue_CannotBeUpdated_TheOthersCan) {
    sut.addMP(device, withKeys(firstKeys(8800)).mvs, rawNone);
    sut.addMP(pointId(2, 0), {{key::voltage, 0}}, rawNone);

    EXPECT_FALSE(sut.updateMV(pointId(2, 0) | key::voltage, measured(1.0)));
    EXPECT_TRUE(sut.updateMV(device | 8799, measured(4.25)));
    EXPECT_EQ(rawNone, pointField(1, field::mvs));
    EXPECT_EQ(4.25, number(8799));
}

TEST_F(QelSharedMemoryWriterTest, AddMP_KnownAndRefusedKeys_AreToldApart) {
    sut.addMP(device, withKeys(firstKeys(8800)).mvs, rawNone);
    WriterLog const log(Priority::WARN);

    EXPECT_EQ(0U, sut.addMP(device, {{8798, 0}, {8800, 0}, {8799, 0}}, rawNone));

    EXPECT_THAT(log.entries(),
                ElementsAre(writerLine(Priority::WARN, "addMVs: Ignoring known key 0x225e, pos = 0x225e"),
                            writerLine(Priority::WARN, "addMVs: Ignoring known key 0x225f, pos = 0x225f"),
                            writerLine(Priority::WARN,
                                       "addMVs: no free measured values left, cannot add key 0x2260 to "
                                       "0x100ffffffff0000")));
    EXPECT_EQ(counting(8800), values(0));
}

// addStructure

TEST_F(QelSharedMemoryWriterTest, AddStructure_BuildsTheTree_ParentsFirst) {
    Definitions const definitions{{pointId(1, 0, 1, 1, 1, 1), withKeys({key::voltage})},
                                  {pointId(1, 0, 1, 1, 1), withKeys({})},
                                  {pointId(1, 0, 1, 1), withKeys({key::peakVoltage, 3})},
                                  {pointId(1, 0, 1), withKeys({})},
                                  {device, withKeys({key::type})},
                                  {pointId(1, 2, -1, 4), withKeys({})}};

    EXPECT_TRUE(sut.addStructure(definitions));

    EXPECT_THAT(devices(), ElementsAre(0));
    EXPECT_THAT(children(0), ElementsAre(1));
    EXPECT_THAT(children(1), ElementsAre(2));
    EXPECT_THAT(children(2), ElementsAre(3));
    EXPECT_THAT(children(3), ElementsAre(4));
    EXPECT_THAT(groups(), ElementsAre(5));
    EXPECT_EQ(pointId(1, 0, 1, 1, 1, 1), raw.get<std::int64_t>(rawPoint(4) + field::guid));
    EXPECT_EQ(3U, pointField(4, field::parent));
    EXPECT_THAT(values(2), ElementsAre(1, 2));
    EXPECT_EQ(1U, sut.root().dvcCnt());
    EXPECT_EQ(1U, sut.root().grpCnt());
}

TEST_F(QelSharedMemoryWriterTest, AddStructure_SecondTimeAddsNothing) {
    Definitions const definitions{{device, withKeys({key::voltage, key::peakVoltage})},
                                  {pointId(1, 0, 1), withKeys({})}};
    EXPECT_TRUE(sut.addStructure(definitions));
    auto const before = raw.copy();
    WriterLog const log;

    EXPECT_FALSE(sut.addStructure(definitions));

    EXPECT_EQ(before, raw.copy());
    EXPECT_THAT(log.entries(), IsEmpty());
}

TEST_F(QelSharedMemoryWriterTest, AddStructure_FewerKeysThanKnown_AddsNothing) {
    sut.addStructure({{device, withKeys({key::voltage, key::peakVoltage})}});

    EXPECT_FALSE(sut.addStructure({{device, withKeys({key::peakVoltage})}}));
}

TEST_F(QelSharedMemoryWriterTest, AddStructure_OneNewKeyOfAKnownPoint_AddsOneValueAtTheEnd) {
    sut.addStructure({{device, withKeys({key::voltage, key::peakCurrent})}});
    WriterLog const log(Priority::WARN);

    EXPECT_TRUE(sut.addStructure({{device, withKeys({key::voltage, 3, key::peakCurrent})}}));

    EXPECT_THAT(values(0), ElementsAre(0, 1, 2));
    EXPECT_EQ(3, raw.get<std::uint16_t>(rawValue(2) + field::valueKey));
    EXPECT_THAT(log.entries(),
                ElementsAre(writerLine(Priority::WARN, "addMVs: Ignoring known key 0x1, pos = 0"),
                            writerLine(Priority::WARN, "addMVs: Ignoring known key 0x5, pos = 0x1")));
    EXPECT_EQ(3U, sut.addMP(pointId(3, 0), {{key::voltage, 0}}, rawNone) + 2); // one point so far
    EXPECT_THAT(values(1), ElementsAre(3));                                    // three values so far
}

TEST_F(QelSharedMemoryWriterTest, AddMP_RootsId_TakesNoSlot) {
    for (auto const svid : {rootSvid, rootSvid | key::voltage}) {
        auto const before = raw.copy();
        WriterLog log;

        EXPECT_EQ(rawNone, sut.addMP(svid, {{key::voltage, 0}}, rawNone));

        EXPECT_THAT(log.take(), ElementsAre(writerLine(Priority::INFO, "addMP: svid = " + hex(svid) +
                                                                           ", ppos = 0xffffffff")));
        EXPECT_EQ(before, raw.copy());
    }
    EXPECT_EQ(0U, sut.addMP(device, {}, rawNone)); // the first slot is still there
    EXPECT_FALSE(sut.updateMV(rootSvid | key::voltage, measured(1.0)));
}

TEST_F(QelSharedMemoryWriterTest, AddStructure_RootSvid_IsSkipped) {
    auto const before = raw.copy();
    WriterLog const log;

    EXPECT_FALSE(sut.addStructure({{rootSvid, withKeys({key::voltage})}}));

    EXPECT_EQ(before, raw.copy());
    EXPECT_THAT(log.entries(), IsEmpty());
}

TEST_F(QelSharedMemoryWriterTest, AddStructure_RootSvidWithAKey_IsSkipped) {
    auto const before = raw.copy();

    EXPECT_FALSE(sut.addStructure({{rootSvid | key::voltage, withKeys({key::voltage})},
                                   {rootSvid | key::voltageMeasuredAtSocketLevel, {}}}));

    EXPECT_EQ(before, raw.copy());
}

TEST_F(QelSharedMemoryWriterTest, AddStructure_EmptyMap_AddsNothing) {
    EXPECT_FALSE(sut.addStructure({}));
}

TEST_F(QelSharedMemoryWriterTest, AddStructure_PositionsInTheDefinitions_AreIgnored) {
    sut.addStructure({{device, shm::MPDef(99, {{key::voltage, 4711}})}});

    EXPECT_THAT(devices(), ElementsAre(0));
    EXPECT_THAT(values(0), ElementsAre(0));
}

TEST_F(QelSharedMemoryWriterTest, AddStructure_LogsANewPointWithItsDefinition) {
    sut.addStructure({{device, withKeys({})}});
    WriterLog const log;

    sut.addStructure(
        {{device, withKeys({})},
         {pointId(1, 0, 1), shm::MPDef(0xFFFFFFFF, {{key::voltage, 31}, {key::peakVoltage, 0}})}});

    auto const entries = log.entries();
    ASSERT_LE(2U, entries.size());
    EXPECT_EQ(writerLine(Priority::DEBUG,
                         "addStructure: 0x10001ffffff0000, #keys = MPDef {pos = 0xffffffff, mvs = "
                         "[<Voltage;0x1f>, <Peak Voltage;0>]}"),
              entries[0]);
    EXPECT_EQ(writerLine(Priority::INFO, "addMP: svid = 0x10001ffffff0000, ppos = 0"), entries[1]);
}

TEST_F(QelSharedMemoryWriterTest, AddStructure_NewKeysOfAKnownPoint_AreAddedWithoutAParent) {
    sut.addStructure({{device, withKeys({})}, {pointId(1, 0, 1), withKeys({})}});
    WriterLog const log;

    sut.addStructure({{pointId(1, 0, 1), withKeys({key::voltage})}});

    EXPECT_THAT(log.entries(),
                ElementsAre(writerLine(Priority::INFO, "addMP: svid = 0x10001ffffff0000, ppos = 0xffffffff"),
                            writerLine(Priority::DEBUG, "initMV: pos = 0, key = 0x1")));
    EXPECT_EQ(0U, pointField(1, field::parent));
}

TEST_F(QelSharedMemoryWriterTest, AddStructure_MissingParent_Throws_AndWritesNothingOfThatPoint) {
    WriterLog const log(Priority::ERROR);
    Definitions const definitions{
        {device, withKeys({})}, {pointId(2, 0, 1), withKeys({key::voltage})}, {pointId(3, 0), withKeys({})}};

    EXPECT_THROW(sut.addStructure(definitions), ex::InvalidSensorIdException);

    EXPECT_THAT(log.entries(),
                ElementsAre(writerLine(Priority::ERROR, "bailout: failed to find parent MP "
                                                        "0x200ffffffff0000 of MP 0x20001ffffff0000")));
    EXPECT_THAT(devices(), ElementsAre(0)); // added before it, stays
    EXPECT_THAT(slotBytes(raw, rawPoint(1), 48), testing::Each(0xFF));
    EXPECT_THAT(slotBytes(raw, rawValue(0), 32), testing::Each(0xFF));
    EXPECT_EQ(1U, sut.addMP(pointId(3, 0), {}, rawNone)); // no slot was lost
}

TEST_F(QelSharedMemoryWriterTest, AddStructure_WhileActive_LeavesTheRootsStampsAlone) {
    sut.setActive();

    sut.addStructure({{device, withKeys({key::voltage})}});

    EXPECT_EQ(rootSvid, raw.get<std::int64_t>(rawRootOffset));
    EXPECT_EQ(32, raw.bytes()[field::version]);
    EXPECT_EQ(0U, raw.u32(field::devices));
}

// injectTypes

TEST_F(QelSharedMemoryWriterTest, InjectTypes_StoresTheLow8Bits_AndGivesTheSvidsAsHandedIn) {
    sut.addMP(device, {}, rawNone);
    sut.addMP(pointId(2, 0), {}, rawNone);
    sut.addMP(pointId(3, 0), {}, rawNone);

    auto const applied = sut.injectTypes(
        {{device, 7}, {pointId(2, 0) | key::pduType, 0x1FE}, {pointId(3, 0), -2}, {pointId(4, 0), 1}});

    EXPECT_EQ((std::unordered_set<long long>{device, pointId(2, 0) | key::pduType, pointId(3, 0)}), applied);
    EXPECT_EQ(7, raw.bytes()[rawPoint(0) + field::pointType]);
    EXPECT_EQ(0xFE, raw.bytes()[rawPoint(1) + field::pointType]);
    EXPECT_EQ(0xFE, raw.bytes()[rawPoint(2) + field::pointType]);
}

TEST_F(QelSharedMemoryWriterTest, InjectTypes_ChangesNothingButTheType) {
    sut.addMP(device, {{key::voltage, 0}}, rawNone);
    auto expected = raw.copy();
    expected[field::pointType] = 9;

    sut.injectTypes({{device, 9}});

    EXPECT_EQ(expected, raw.copy());
}

TEST_F(QelSharedMemoryWriterTest, InjectTypes_LogsTheNumberAndEachEntry) {
    WriterLog const log;

    sut.injectTypes({{device | key::pduType, 0x12}});
    sut.injectTypes({});

    EXPECT_THAT(log.entries(),
                ElementsAre(writerLine(Priority::DEBUG, "injectTypes: #itm = 0x1"),
                            writerLine(Priority::DEBUG, "injectTypes: 0x100ffffffff0046, 0x12"),
                            writerLine(Priority::DEBUG, "injectTypes: #itm = 0")));
}

} // namespace qel::test
