// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

// Where a point is linked: the order of siblings, lists of the root, and parents.

#include "writer/QelSharedMemoryWriter.h"

#include "region/Exceptions.h"
#include "tests/model/ReferenceSvid.h"
#include "tests/model/ReferenceWriter.h"
#include "tests/model/WriterCalls.h"
#include "tests/writer/WriterFixture.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <iterator>
#include <random>
#include <string>
#include <utility>
#include <vector>

namespace qel::test {

namespace {

using log4cpp::Priority;
using testing::ElementsAre;

std::vector<long long> combinations(std::vector<int> const& devices, std::vector<int> const& kinds,
                                    std::vector<int> const& inlets, std::vector<int> const& phases,
                                    std::vector<int> const& circuits, std::vector<int> const& sockets) {
    std::vector<std::vector<int>> const choices{devices, kinds, inlets, phases, circuits, sockets};
    std::vector<std::uint64_t> ids{0};
    for (auto const& levels : choices) {
        std::vector<std::uint64_t> longer;
        for (auto const id : ids) {
            for (int const level : levels) {
                longer.push_back((id << 8U) | (static_cast<unsigned int>(level) & 0xFFU));
            }
        }
        ids = longer;
    }
    std::vector<long long> svids;
    std::transform(ids.begin(), ids.end(), std::back_inserter(svids), [](std::uint64_t id) {
        id <<= 16U;
        return static_cast<long long>(id);
    });
    return svids;
}

template <typename Action>
std::string invalidIdText(Action const& action) {
    try {
        action();
    } catch (ex::InvalidSensorIdException const& failure) {
        return failure.what();
    }
    return "no such exception";
}

} // namespace

class QelSharedMemoryWriterLinksTest : public WriterTest {};

// connectMP: lists

TEST_F(QelSharedMemoryWriterLinksTest, TopLevel_DeviceAndGroupHaveTheirOwnLists) {
    sut.addMP(pointId(1, 2), {}, rawNone);
    sut.addMP(pointId(1, 0), {}, rawNone);

    EXPECT_EQ(1U, raw.u32(field::devices));
    EXPECT_EQ(0U, raw.u32(field::groups));
    EXPECT_EQ(rawNone, pointField(0, field::next));
    EXPECT_EQ(rawNone, pointField(1, field::prev));
}

TEST_F(QelSharedMemoryWriterLinksTest, TopLevel_AnyOtherKind_IsLoggedAndLinkedNowhere) {
    std::vector<std::pair<int, std::string>> const kinds{{1, "I2C"},        {3, "Reserved"},
                                                         {4, "RCM"},        {5, "SensorType(5)"},
                                                         {-1, "Undefined"}, {-128, "SensorType(-128)"}};
    std::uint32_t pos = 0;
    for (auto const& [kind, name] : kinds) {
        WriterLog const log(Priority::WARN);

        EXPECT_EQ(pos, sut.addMP(pointId(1, kind), {}, rawNone));

        EXPECT_THAT(log.entries(),
                    ElementsAre(writerLine(Priority::WARN, "operator(): cannot handle measurement points of "
                                                           "type " +
                                                               name)));
        EXPECT_EQ(rawNone, pointField(pos, field::next));
        EXPECT_EQ(rawNone, pointField(pos, field::prev));
        ++pos;
    }
    EXPECT_EQ(0U, sut.root().dvcCnt());
    EXPECT_EQ(0U, sut.root().grpCnt());
    EXPECT_EQ(rawNone, raw.u32(field::devices));
    EXPECT_EQ(rawNone, raw.u32(field::groups));
}

TEST_F(QelSharedMemoryWriterLinksTest, ParentPositionOutOfRange_CountsAsTopLevel) {
    sut.addMP(pointId(1, 0), {}, 800);

    EXPECT_THAT(devices(), ElementsAre(0));
    EXPECT_EQ(800U, pointField(0, field::parent));
}

TEST_F(QelSharedMemoryWriterLinksTest, FirstChild_BecomesTheHeadOfItsParentsList) {
    sut.addMP(pointId(1, 0), {}, rawNone);
    sut.addMP(pointId(1, 1, 1), {}, 0);

    EXPECT_EQ(1U, pointField(0, field::children));
    EXPECT_EQ(0U, pointField(1, field::parent));
    EXPECT_THAT(devices(), ElementsAre(0));
}

TEST_F(QelSharedMemoryWriterLinksTest, NewHeadMiddleAndTail_AreLinkedBothWays) {
    for (int const device : {20, 40, 10, 30, 50}) {
        sut.addMP(pointId(device, 0), {}, rawNone);
    }

    EXPECT_THAT(devices(), ElementsAre(2, 0, 3, 1, 4)); // checks prev as well
}

TEST_F(QelSharedMemoryWriterLinksTest, SvidsAreComparedSigned) {
    sut.addMP(pointId(1, 0), {}, rawNone);
    sut.addMP(pointId(0x80, 0), {}, rawNone);

    EXPECT_THAT(devices(), ElementsAre(1, 0));
}

// connectMP: log lines

TEST_F(QelSharedMemoryWriterLinksTest, Before_IsLoggedWithBothSvids) {
    sut.addMP(pointId(2, 0), {}, rawNone);
    WriterLog const log;

    sut.addMP(pointId(1, 0), {}, rawNone);

    EXPECT_THAT(
        log.entries(),
        ElementsAre(
            writerLine(Priority::INFO, "addMP: svid = 0x100ffffffff0000, ppos = 0xffffffff"),
            writerLine(Priority::DEBUG, "initMP: pos = 0x1, guid = 0x100ffffffff0000, ppos = 0xffffffff"),
            writerLine(Priority::DEBUG, "connectMP: pos = 0x1, stype = Electrical, ppos = 0xffffffff"),
            writerLine(Priority::DEBUG, "connectMP: curpos = 0"),
            writerLine(Priority::INFO, "connectMP: 0x100ffffffff0000 < 0x200ffffffff0000")));
}

TEST_F(QelSharedMemoryWriterLinksTest, Behind_LogsNoComparison) {
    sut.addMP(pointId(1, 0), {}, rawNone);
    sut.addMP(pointId(1, 0, 1), {}, 0);
    WriterLog const log;

    sut.addMP(pointId(1, 4, 1), {}, 0);

    EXPECT_THAT(
        log.entries(),
        ElementsAre(writerLine(Priority::INFO, "addMP: svid = 0x10401ffffff0000, ppos = 0"),
                    writerLine(Priority::DEBUG, "initMP: pos = 0x2, guid = 0x10401ffffff0000, ppos = 0"),
                    writerLine(Priority::DEBUG, "connectMP: pos = 0x2, stype = RCM, ppos = 0"),
                    writerLine(Priority::DEBUG, "connectMP: curpos = 0x1")));
}

TEST_F(QelSharedMemoryWriterLinksTest, ElectricalBeforeAnotherKind_Logs1t) {
    sut.addMP(pointId(1, 0), {}, rawNone);
    for (int const kind : {1, 2, 3, 4, 5}) {
        auto const parent = sut.addMP(pointId(10 + kind, 0), {}, rawNone);
        sut.addMP(pointId(1, kind, 1), {}, parent);
        WriterLog const log(Priority::INFO);

        auto const svid = pointId(1, 0, kind);
        sut.addMP(svid, {}, parent);

        EXPECT_THAT(log.entries(), ElementsAre(writerLine(Priority::INFO, "addMP: svid = " + hex(svid) +
                                                                              ", ppos = " + hex(parent)),
                                               writerLine(Priority::INFO, "operator(): 1t"),
                                               writerLine(Priority::INFO, "connectMP: " + hex(svid) + " < " +
                                                                              hex(pointId(1, kind, 1)))));
    }
}

TEST_F(QelSharedMemoryWriterLinksTest, ElectricalBesideElectrical_DoesNotLog1t) {
    sut.addMP(pointId(1, 0), {}, rawNone);
    WriterLog const log;

    sut.addMP(pointId(2, 0), {}, rawNone);

    EXPECT_FALSE(log.contains(writerLine(Priority::INFO, "operator(): 1t")));
}

// connectMP: order of siblings

TEST_F(QelSharedMemoryWriterLinksTest, I2CSensors_AreOrderedByByte3WhateverTheirSvids) {
    sut.addMP(pointId(1, 0), {}, rawNone);
    sut.addMP(pointId(1, 1, 1, 9, 1), {}, 0);
    sut.addMP(pointId(9, 1, 9, 3, 9), {}, 0);
    sut.addMP(pointId(5, 1, 5, -4, 9), {}, 0);

    EXPECT_THAT(children(0), ElementsAre(3, 2, 1));
}

TEST_F(QelSharedMemoryWriterLinksTest, I2CSensors_OfEqualByte3_AreOrderedByByte4) {
    sut.addMP(pointId(1, 0), {}, rawNone);
    sut.addMP(pointId(1, 1, 1, 3, 7), {}, 0);
    sut.addMP(pointId(9, 1, 9, 3, 2), {}, 0);
    sut.addMP(pointId(0, 1, 9, 3, 7), {}, 0); // both equal: behind

    EXPECT_THAT(children(0), ElementsAre(2, 1, 3));
}

// Of every kind beside every kind, with the deciding bytes smaller, equal and greater.
TEST_F(QelSharedMemoryWriterLinksTest, EveryPairOfKinds_StandsAsTheRulesSay) {
    for (auto const added :
         combinations({1, 2, 3}, {-1, 0, 1, 2, 3, 4, 5}, {1}, {1, 2, 3}, {-1, 2, 3}, {1})) {
        for (auto const present : combinations({2}, {-1, 0, 1, 2, 3, 4, 5}, {1}, {2}, {2}, {-1})) {
            // Linked by hand, so that slots serve again.
            sut.initMP(0, pointId(1, 0), rawNone);
            sut.connectMP(sut.initMP(1, present, 0));
            sut.connectMP(sut.initMP(2, added, 0));

            std::vector<std::uint32_t> const expected = reference::standsBefore(added, present)
                                                            ? std::vector<std::uint32_t>{2, 1}
                                                            : std::vector<std::uint32_t>{1, 2};
            ASSERT_EQ(expected, children(0)) << hex(added) << " beside " << hex(present);
        }
    }
}

TEST_F(QelSharedMemoryWriterLinksTest, RandomChildren_AreLinkedAsByTheReference) {
    auto random = randomNumbers(7);
    auto const number = [&](int low, int high) {
        return std::uniform_int_distribution<int>(low, high)(random);
    };
    ReferenceWriter expected;
    for (int parent = 0; parent < 10; ++parent) {
        expected.addMP(pointId(parent, 0), {}, rawNone);
        sut.addMP(pointId(parent, 0), {}, rawNone);
    }
    for (int i = 0; i < 700; ++i) {
        auto const parent = static_cast<std::uint32_t>(number(0, 9));
        auto const svid =
            pointId(number(-128, 127), number(0, 5), i / 100, number(-2, 3), number(-2, 3), i % 100);
        ASSERT_EQ(expected.addMP(svid, {}, parent), sut.addMP(svid, {}, parent));

        ASSERT_TRUE(holdsBytesOf(expected, raw.bytes())) << "after " << hex(svid);
    }
}

TEST_F(QelSharedMemoryWriterLinksTest, RandomTopLevelPoints_AreLinkedAsByTheReference) {
    auto random = randomNumbers(8);
    auto const number = [&](int low, int high) {
        return std::uniform_int_distribution<int>(low, high)(random);
    };
    ReferenceWriter expected;
    for (int i = 0; i < 600; ++i) {
        auto const kind = number(0, 5);
        auto const svid = pointId(number(-128, 127), kind, number(-2, 3), number(-2, 3), i / 100, i % 100);
        expected.addMP(svid, {}, rawNone);
        sut.addMP(svid, {}, rawNone);

        ASSERT_TRUE(holdsBytesOf(expected, raw.bytes())) << "after " << hex(svid);
    }
}

// parentOf, bailout

TEST_F(QelSharedMemoryWriterLinksTest, ParentOf_TopLevel_IsNone) {
    for (auto const svid :
         {pointId(-1, 0, 1, 1), pointId(1, 0), pointId(1, 2, -1, 5, 5, 5), pointId(-1, -1)}) {
        auto const parent = sut.parentOf(svid);

        EXPECT_EQ(-1, parent.svid) << hex(svid);
        EXPECT_EQ(rawNone, parent.pos) << hex(svid);
    }
}

TEST_F(QelSharedMemoryWriterLinksTest, ParentOf_EachLevelOfAUnit) {
    sut.addMP(pointId(1, 0), {}, rawNone);
    sut.addMP(pointId(1, 0, 2), {}, 0);
    sut.addMP(pointId(1, 0, 2, 3), {}, 1);
    sut.addMP(pointId(1, 0, 2, 3, 4), {}, 2);
    std::vector<std::pair<long long, std::uint32_t>> const expected{
        {pointId(1, 0, 2), 0},          {pointId(1, 0, 2, 3), 1},       {pointId(1, 0, 2, 3, 4), 2},
        {pointId(1, 0, 2, 3, 4, 5), 3}, {pointId(1, 0, 2, 3, 0, 5), 2}, // no fuse of its own
        {pointId(1, 1, 2, 3, 4, 5), 0},                                 // an I2C sensor
        {pointId(1, 4, 2, 3, 4), 2},                                    // an RCM of a circuit
        {pointId(1, 0, 2, -1, 4), 1}                                    // one level in between is not used
    };
    for (auto const& [svid, pos] : expected) {
        EXPECT_EQ(pos, sut.parentOf(svid).pos) << hex(svid);
        EXPECT_EQ(raw.get<std::int64_t>(rawPoint(pos) + field::guid), sut.parentOf(svid).svid) << hex(svid);
    }
}

// Every combination of used and unused levels and kinds, against no, some and all possible parents.
TEST_F(QelSharedMemoryWriterLinksTest, ParentOf_EveryCombinationOfLevels) {
    std::vector<int> const levels{-1, 0, 3};
    auto random = randomNumbers(9);
    std::map<long long, std::uint32_t> known;
    for (unsigned int const percent : {0U, 50U, 100U}) {
        for (auto const svid : combinations(levels, {0}, levels, levels, levels, {-1})) {
            if (random() % 100 < percent) {
                known[svid] = sut.addMP(svid, {}, rawNone);
            }
        }
        for (auto const child :
             combinations(levels, {-1, 0, 1, 2, 3, 4, 5}, levels, levels, levels, levels)) {
            SCOPED_TRACE(hex(child));
            auto const candidates = reference::parentCandidates(child);
            auto const found = std::find_if(candidates.begin(), candidates.end(),
                                            [&](auto id) { return known.count(id) != 0; });
            WriterLog const log;
            if (candidates.empty()) {
                EXPECT_EQ(-1, sut.parentOf(child).svid);
                EXPECT_EQ(rawNone, sut.parentOf(child).pos);
            } else if (found != candidates.end()) {
                EXPECT_EQ(*found, sut.parentOf(child).svid);
                EXPECT_EQ(known.at(*found), sut.parentOf(child).pos);
            } else {
                EXPECT_THROW(sut.parentOf(child), ex::InvalidSensorIdException);
                EXPECT_THAT(log.entries(),
                            ElementsAre(writerLine(Priority::ERROR, "bailout: failed to find parent MP " +
                                                                        hex(candidates.back()) + " of MP " +
                                                                        hex(child))));
            }
        }
    }
    EXPECT_EQ(81U, known.size());
}

TEST_F(QelSharedMemoryWriterLinksTest, Bailout_LogsAndThrowsForTheSvid) {
    WriterLog const log;
    auto const svid = pointId(1, 0, 2);

    EXPECT_EQ("The sensor identifier " + SensorIdentifier::explain(svid) + " is invalid",
              invalidIdText([&] { sut.bailout(svid); }));

    EXPECT_THAT(log.entries(),
                ElementsAre(writerLine(Priority::ERROR, "bailout: failed to handle MP 0x10002ffffff0000")));
}

TEST_F(QelSharedMemoryWriterLinksTest, Bailout_WithParent_LogsBoth_AndThrowsForTheChild) {
    WriterLog const log;
    auto const svid = pointId(1, 0, 2);

    EXPECT_EQ("The sensor identifier " + SensorIdentifier::explain(svid) + " is invalid",
              invalidIdText([&] { sut.bailout(svid, pointId(1, 0)); }));

    EXPECT_THAT(log.entries(),
                ElementsAre(writerLine(Priority::ERROR, "bailout: failed to find parent MP "
                                                        "0x100ffffffff0000 of MP 0x10002ffffff0000")));
}

} // namespace qel::test
