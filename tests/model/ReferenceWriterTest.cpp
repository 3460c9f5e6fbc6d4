// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

// Known answers: bytes written down by hand from the layout and the rules.

#include "tests/model/ReferenceWriter.h"

#include "format/ValueKeys.h"
#include "tests/support/RawRegion.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace qel::test {

namespace {

namespace key = shm::key;
using reference::svidOf;
using testing::ElementsAre;

using Outcome = ReferenceWriter::Outcome;

constexpr ReferenceWriter::Svid device = 0x0100FFFFFFFF0000;
constexpr char digits[] = "0123456789ABCDEF";

class ReferenceWriterTest : public testing::Test {
protected:
    /// "00 FF": so many bytes from an offset on.
    std::string bytes(std::size_t offset, std::size_t count) const {
        std::string text;
        for (std::size_t i = offset; i < offset + count; ++i) {
            auto const byte = sut.image()[i];
            text += text.empty() ? "" : " ";
            text += {digits[byte >> 4U], digits[byte & 0xFU]};
        }
        return text;
    }
    std::string pointBytes(std::uint32_t pos) const { return bytes(rawPoint(pos), 48); }
    std::string valueBytes(std::uint32_t pos) const { return bytes(rawValue(pos), 32); }
    std::string rootBytes() const { return bytes(rawRootOffset, 32); }
    /// next, prev, mvs, children, parent
    std::string linksOf(std::uint32_t pos) const { return bytes(rawPoint(pos) + 4, 20); }
    int stateOf(std::uint32_t pos) const { return sut.image()[rawPoint(pos) + 40]; }
    int globalState() const { return sut.image()[320024]; }

    ReferenceWriter sut;
};

} // namespace

TEST_F(ReferenceWriterTest, NewRegion_IsWiped) {
    EXPECT_EQ(std::vector<std::uint8_t>(320032, 0xFF), sut.image());
}

TEST_F(ReferenceWriterTest, SetActive_StampsTheRoot) {
    sut.setActive();

    EXPECT_EQ("00 00 FF FF FF FF 00 FF " // guid
              "00 00 00 00 00 00 00 00 " // unused
              "FF FF FF FF FF FF FF FF " // devices, groups
              "11 00 00 00 "             // state
              "20 FF FF FF",             // version
              rootBytes());
    EXPECT_TRUE(std::all_of(sut.image().begin(), sut.image().begin() + 320000,
                            [](auto byte) { return byte == 0xFF; }));
}

TEST_F(ReferenceWriterTest, AddedDevice_HasItsValuesChained) {
    EXPECT_EQ(Outcome::Changed, sut.addStructure({{device, {key::voltage, key::current}}}));

    EXPECT_EQ("00 00 00 00 FF FF FF FF FF FF FF FF " // pos, next, prev
              "00 00 00 00 FF FF FF FF FF FF FF FF " // mvs, children, parent
              "00 00 FF FF FF FF 00 01 "             // guid
              "00 00 00 00 00 00 00 00 "             // at
              "11 00 00 00 00 FF FF FF",             // state, type
              pointBytes(0));
    EXPECT_EQ("00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 " // value, at
              "FE FF FF FF 01 00 00 00 01 00 FF FF FF FF FF FF", // state, next, key
              valueBytes(0));
    EXPECT_EQ("00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 00 "
              "FE FF FF FF FF FF FF FF 04 00 FF FF FF FF FF FF",
              valueBytes(1));
    EXPECT_EQ("00 00 00 00 FF FF FF FF", bytes(field::devices, 8));
    EXPECT_EQ(Outcome::Nothing, sut.addStructure({{device, {key::current}}}));
}

TEST_F(ReferenceWriterTest, SocketGroupAndMonitor_HaveTypeOne_AndOnlyTheGroupAList) {
    sut.addStructure({{svidOf({1, 2}), {}}, {svidOf({1, 4}), {}}});

    EXPECT_EQ(1, sut.image()[44]);
    EXPECT_EQ(1, sut.image()[48 + 44]);
    EXPECT_EQ("FF FF FF FF 00 00 00 00", bytes(field::devices, 8));
}

TEST_F(ReferenceWriterTest, Siblings_AreLinkedBothWays) {
    sut.addMP(svidOf({2, 0}), {}, rawNone);
    sut.addMP(svidOf({3, 0}), {}, rawNone); // behind
    sut.addMP(svidOf({1, 0}), {}, rawNone); // in front
    sut.addMP(svidOf({1, 0, 1}), {}, 0);    // below

    EXPECT_EQ("01 00 00 00 02 00 00 00 FF FF FF FF 03 00 00 00 FF FF FF FF", linksOf(0));
    EXPECT_EQ("FF FF FF FF 00 00 00 00 FF FF FF FF FF FF FF FF FF FF FF FF", linksOf(1));
    EXPECT_EQ("00 00 00 00 FF FF FF FF FF FF FF FF FF FF FF FF FF FF FF FF", linksOf(2));
    EXPECT_EQ("FF FF FF FF FF FF FF FF FF FF FF FF FF FF FF FF 00 00 00 00", linksOf(3));
    EXPECT_EQ("02 00 00 00", bytes(field::devices, 4));
}

TEST_F(ReferenceWriterTest, RemovedPoint_KeepsItsPrev_AndItsSlotIsTakenLast) {
    for (int const number : {1, 2, 3}) {
        sut.addMP(svidOf({number, 0}), {key::voltage}, rawNone);
    }
    EXPECT_TRUE(sut.removeStructure({{svidOf({1, 0}), {}}, {svidOf({3, 0}), {}}}));

    EXPECT_EQ("02 00 00 00 FF FF FF FF", linksOf(0).substr(0, 23));
    EXPECT_EQ("FF FF FF FF 00 00 00 00 01 00 00 00 FF FF FF FF FF FF FF FF", linksOf(1));
    EXPECT_EQ("FF FF FF FF 00 00 00 00", linksOf(2).substr(0, 23));
    EXPECT_EQ(3U, sut.freePoints().front());
    EXPECT_EQ(1U, sut.freePoints().back());
    EXPECT_EQ(1U, sut.freeValues().back());
}

TEST_F(ReferenceWriterTest, RemovedFirstChild_LosesNextAndParent_AndTheNextOneIsFirst) {
    sut.addMP(device, {}, rawNone);
    sut.addMP(svidOf({1, 0, 1}), {}, 0);
    sut.addMP(svidOf({1, 0, 2}), {}, 0);
    EXPECT_TRUE(sut.removeStructure({{device, {}}, {svidOf({1, 0, 2}), {}}}));

    EXPECT_EQ("FF FF FF FF FF FF FF FF FF FF FF FF 02 00 00 00 FF FF FF FF", linksOf(0));
    EXPECT_EQ("FF FF FF FF FF FF FF FF FF FF FF FF FF FF FF FF FF FF FF FF", linksOf(1));
    EXPECT_EQ("FF FF FF FF FF FF FF FF FF FF FF FF FF FF FF FF 00 00 00 00", linksOf(2));
}

TEST_F(ReferenceWriterTest, AddStructure_SkipsTheRoot_AndThrowsWithoutParentOrSlot) {
    EXPECT_EQ(Outcome::Nothing,
              sut.addStructure({{reference::rootSvid, {key::voltage}},
                                {reference::rootSvid | key::differentialCurrentAc, {key::voltage}}}));
    EXPECT_EQ(Outcome::Thrown, sut.addStructure({{svidOf({1, 0, 1}), {}}}));
    for (int i = 0; i < 800; ++i) {
        ASSERT_EQ(static_cast<std::uint32_t>(i), sut.addMP(svidOf({1, 3, i % 100, i / 100}), {}, rawNone));
    }
    EXPECT_EQ(Outcome::Thrown, sut.addStructure({{svidOf({2, 0}), {}}}));
}

TEST_F(ReferenceWriterTest, ModifyStructure_AddsFirst_AndKeysOfThePointsStateNeedNoValue) {
    sut.modifyStructure({device | key::voltage});
    EXPECT_EQ(Outcome::Changed,
              sut.modifyStructure({svidOf({2, 0}) | key::fuseState, svidOf({2, 0}) | key::peakVoltage}));

    ASSERT_EQ(1U, sut.known().size());
    EXPECT_EQ(1U, sut.known().at(svidOf({2, 0})).pos);
    EXPECT_EQ((std::map<std::uint16_t, std::uint32_t>{{key::peakVoltage, 1}}),
              sut.known().at(svidOf({2, 0})).values);
    EXPECT_EQ(0U, sut.freePoints().back());
}

TEST_F(ReferenceWriterTest, AddedLater_ValueIsChainedBehindTheHighestPosition) {
    sut.addMP(device, {key::voltage, key::peakVoltage}, rawNone);
    sut.addMP(svidOf({2, 0}), {key::voltage}, rawNone);
    // Of a known point the key in the id is ignored.
    sut.addMP(device | key::neutralCurrent, {key::peakVoltage, 3}, rawNone);

    EXPECT_EQ("03 00 00 00", bytes(rawValue(1) + field::valueNext, 4));
    EXPECT_EQ("03 00", bytes(rawValue(3) + field::valueKey, 2));
}

TEST_F(ReferenceWriterTest, InjectTypes_StoresTheLowByte) {
    sut.addMP(device, {}, rawNone);
    EXPECT_THAT(sut.injectTypes({{device | key::voltage, -2}, {svidOf({2, 0}), 3}}),
                ElementsAre(device | key::voltage));

    EXPECT_EQ("FE", bytes(field::pointType, 1));
}

TEST_F(ReferenceWriterTest, UpdateMV_StoresTimeStateAndNumber) {
    sut.addMP(device, {key::voltage, key::apparentEnergy}, rawNone);

    EXPECT_TRUE(sut.updateMV(device | key::voltage, 230.1, 0x1122334455667788, 3));
    EXPECT_TRUE(sut.updateMV(device | key::apparentEnergy, 1500.0, 1, 0)); // stored as 1.5
    EXPECT_EQ("33 33 33 33 33 C3 6C 40 88 77 66 55 44 33 22 11 03 00 00 00 01 00 00 00",
              bytes(rawValue(0), 24));
    EXPECT_EQ("00 00 00 00 00 00 F8 3F 01 00 00 00 00 00 00 00 00 00 00 00 FF FF FF FF",
              bytes(rawValue(1), 24));

    EXPECT_FALSE(sut.updateMV(device | key::voltage, std::nullopt, 2, 4)); // a text leaves its time and state
    EXPECT_EQ("33 33 33 33 33 C3 6C 40 02 00 00 00 00 00 00 00 04 00 00 00", bytes(rawValue(0), 20));
}

TEST_F(ReferenceWriterTest, UpdateMV_OfThePointsState_GoesToThePoint) {
    sut.addMP(device, {key::fuseState}, rawNone);
    auto const value = valueBytes(0);

    EXPECT_TRUE(sut.updateMV(device | key::fuseState, 9.0, 0x0102, 18));

    EXPECT_EQ("02 01 00 00 00 00 00 00 12 00 00 00", bytes(field::pointAt, 12));
    EXPECT_EQ(value, valueBytes(0));
}

TEST_F(ReferenceWriterTest, UpdateMV_OfWhatIsUnknown_StoresNothing) {
    sut.addMP(device, {key::voltage}, rawNone);
    auto const before = sut.image();

    EXPECT_FALSE(sut.updateMV(device | key::peakVoltage, 1.0, 1, 1));
    EXPECT_FALSE(sut.updateMV(svidOf({2, 0}) | key::voltage, 1.0, 1, 1));
    EXPECT_EQ(before, sut.image());
}

TEST_F(ReferenceWriterTest, PropagateStates_CarriesAnAlarmUp) {
    auto const circuit = svidOf({1, 0, 1, 1, 1});
    sut.addStructure({{device, {}},
                      {svidOf({1, 0, 1}), {key::voltage}},
                      {svidOf({1, 0, 1, 1}), {}},
                      {circuit, {key::voltage}}});
    sut.updateMV(circuit | key::voltage, 1.0, 1, 2);

    sut.propagateStates();

    EXPECT_EQ(9, stateOf(3));
    EXPECT_EQ(23, stateOf(2));
    EXPECT_EQ(23, stateOf(0));
    EXPECT_EQ(23, globalState());

    sut.updateMV(circuit | key::voltage, 1.0, 1, 0);
    sut.updateMV(circuit | key::fuseState, 1.0, 1, 18); // switched off
    sut.propagateStates();

    EXPECT_EQ(18, stateOf(3));
    EXPECT_EQ(23, stateOf(2));

    sut.updateMV(circuit | key::fuseState, 1.0, 1, 17);
    sut.updateMV(svidOf({1, 0, 1}) | key::voltage, 1.0, 1, 3);
    sut.propagateStates();

    EXPECT_EQ(13, stateOf(1));
    EXPECT_EQ(24, stateOf(0));
    EXPECT_EQ(24, globalState());
}

} // namespace qel::test
