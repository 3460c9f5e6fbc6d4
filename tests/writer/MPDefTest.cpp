// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "writer/MPDef.h"

#include "format/ValueKeys.h"
#include "region/LogLine.h"
#include "tests/support/LogCapture.h"
#include "tests/support/ScarceMemory.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <sstream>
#include <string>
#include <utility>

namespace qel::test {

namespace {

namespace key = shm::key;
using shm::MPDef;

std::string print(MPDef const& definition) {
    std::ostringstream out;
    out << definition;
    return out.str();
}

bool isUnlocked(MPDef const& definition) {
    bool const locked = definition.mutex.try_lock();
    if (locked) {
        definition.mutex.unlock();
    }
    return locked;
}

} // namespace

TEST(MPDefTest, Default_HasNoSlotAndNoValues) {
    MPDef const sut;

    EXPECT_EQ(0xFFFFFFFFU, sut.pos);
    EXPECT_TRUE(sut.mvs.empty());
    EXPECT_TRUE(isUnlocked(sut));
}

TEST(MPDefTest, Print_WithoutValues) {
    EXPECT_EQ("MPDef {pos = 7, mvs = []}", print(MPDef(7, {})));
}

TEST(MPDefTest, Print_OneValue) {
    EXPECT_EQ("MPDef {pos = 0, mvs = [<GUID;3>]}", print(MPDef(0, {{key::guid, 3}})));
}

TEST(MPDefTest, Print_ValuesInAscendingKeyOrder) {
    MPDef const sut(7, {{key::current, 12}, {key::voltage, 10}, {key::voltageMeasuredAtSocketLevel, 11}});

    EXPECT_EQ("MPDef {pos = 7, mvs = [<Voltage;10>, <Current;12>, <Voltage measured at socket level;11>]}",
              print(sut));
}

TEST(MPDefTest, Print_NumbersInTheStreamsBase) {
    std::ostringstream out;

    out << std::hex << std::showbase << MPDef(0xFFFFFFFF, {{key::voltage, 31}}) << std::dec << std::noshowbase
        << MPDef(31, {});

    EXPECT_EQ("MPDef {pos = 0xffffffff, mvs = [<Voltage;0x1f>]}MPDef {pos = 31, mvs = []}", out.str());
}

TEST(MPDefTest, Print_KeyWithoutAName) {
    EXPECT_EQ("MPDef {pos = 1, mvs = [<KEY_IDX_0x3;2>]}", print(MPDef(1, {{3, 2}})));
}

TEST(MPDefTest, Copy_OfALockedDefinition_IsUnlocked) {
    MPDef const original(7, {{key::voltage, 2}});
    std::lock_guard<std::mutex> const lock(original.mutex);

    MPDef const sut(original);

    EXPECT_EQ(7U, sut.pos);
    EXPECT_EQ(original.mvs, sut.mvs);
    EXPECT_TRUE(isUnlocked(sut));
}

TEST(MPDefTest, Move_OfALockedDefinition_IsUnlocked) {
    MPDef original(7, {{key::voltage, 2}});
    std::lock_guard<std::mutex> const lock(original.mutex);

    MPDef const sut(std::move(original));

    EXPECT_EQ(7U, sut.pos);
    EXPECT_EQ((std::map<unsigned short, unsigned int>{{key::voltage, 2}}), sut.mvs);
    EXPECT_TRUE(isUnlocked(sut));
}

TEST(MPDefTest, Assignment_TakesSlotAndValues_KeepsItsMutex) {
    MPDef const original(7, {{key::voltage, 2}});
    MPDef sut(8, {{3, 4}});
    {
        std::lock_guard<std::mutex> const lock(original.mutex);
        sut = original;
    }
    EXPECT_EQ(7U, sut.pos);
    EXPECT_EQ(original.mvs, sut.mvs);
    EXPECT_TRUE(isUnlocked(sut));
    EXPECT_TRUE(isUnlocked(original));
}

TEST(MPDefTest, AssignmentToItself_ChangesNothing) {
    MPDef sut(7, {{key::voltage, 2}});
    auto& same = sut;

    sut = same;
    sut = std::move(same);

    EXPECT_EQ(7U, sut.pos);
    EXPECT_EQ((std::map<unsigned short, unsigned int>{{key::voltage, 2}}), sut.mvs);
}

TEST(MPDefTest, MoveAssignment_TakesSlotAndValues) {
    MPDef original(7, {{key::voltage, 2}});
    MPDef sut(8, {{3, 4}});

    sut = std::move(original);

    EXPECT_EQ(7U, sut.pos);
    EXPECT_EQ((std::map<unsigned short, unsigned int>{{key::voltage, 2}}), sut.mvs);
    EXPECT_TRUE(isUnlocked(sut));
}

TEST(MPDefTest, InALineOfTheLog_WhenMemoryEnds_TheLineIsWholeOrNotThere) {
    QEL_SKIP_WITHOUT_SCARCE_MEMORY();
    MPDef sut(7, {});
    std::string const whole = "op: MPDef {pos = 0x7, mvs = [";
    for (unsigned short key = 0x203; key < 0x20A; ++key) { // names too long to be kept without memory
        sut.mvs[key] = key;
    }
    LogCapture log;
    ASSERT_NE(nullptr, shm::writerLog.get()); // looked up now: log4cpp leaks a category if memory runs out
    std::size_t allowed = 0;
    std::size_t failures = 0;
    do {
        {
            auto const memory = ScarceMemory::onceAfterAllocations(allowed);
            shm::LogLine(shm::writerLog, log4cpp::Priority::DEBUG, "op") << sut;
            failures = memory.failures();
        }
        for (auto const& entry : log.take()) {
            EXPECT_EQ(entry.text.substr(0, whole.size()), whole);
            EXPECT_EQ(entry.text.substr(entry.text.size() - 9), ";0x209>]}") << "memory for " << allowed;
        }
        ++allowed;
    } while (failures != 0);
    EXPECT_GT(allowed, 10U) << "places where memory ended";
}

} // namespace qel::test
