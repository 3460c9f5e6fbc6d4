// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "states/LedChannels.h"

#include "tests/support/LedFiles.h"
#include "tests/support/LogCapture.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <locale>
#include <string>

namespace {

using qel::test::ledContents;
using qel::test::LogCapture;
using qel::test::LogEntry;
using shm::LedLevels;
using shm::ledTables;
using ::testing::ElementsAre;

constexpr char const* category = "qel.shm.access.states";

class LedChannelsTest : public ::testing::Test {
protected:
    LedChannelsTest() {
        qel::test::restoreLedFiles();
        qel::test::markLedFiles();
    }
    ~LedChannelsTest() override { qel::test::restoreLedFiles(); }

    LedLevels stored{0, 1, 0};
    LogCapture log;
};

TEST_F(LedChannelsTest, WriteLevels_OnlyChangedChannelsAreWritten) {
    shm::writeLevels(ledTables, stored, {10, 1, 0}, false);
    EXPECT_EQ(ledContents(), "10/untouched/untouched");
    EXPECT_EQ(stored, (LedLevels{10, 1, 0}));
    EXPECT_THAT(log.entries(), ElementsAre(LogEntry{category, log4cpp::Priority::DEBUG,
                                                    "update: color = 0, old = 0, new = 0xa"}));
}

TEST_F(LedChannelsTest, WriteLevels_UnchangedLevelsWriteAndLogNothing) {
    shm::writeLevels(ledTables, stored, stored, false);
    EXPECT_EQ(ledContents(), "untouched/untouched/untouched");
    EXPECT_TRUE(log.entries().empty());
}

TEST_F(LedChannelsTest, WriteLevels_ForceWritesEveryChannelInOrder) {
    shm::writeLevels(ledTables, stored, stored, true);
    EXPECT_EQ(ledContents(), "0/1/0");
    EXPECT_THAT(
        log.entries(),
        ElementsAre(LogEntry{category, log4cpp::Priority::DEBUG, "update: color = 0, old = 0, new = 0"},
                    LogEntry{category, log4cpp::Priority::DEBUG, "update: color = 0x1, old = 0x1, new = 0x1"},
                    LogEntry{category, log4cpp::Priority::DEBUG, "update: color = 0x2, old = 0, new = 0"}));
}

TEST_F(LedChannelsTest, WriteLevels_LongerContentIsReplacedWhole) {
    shm::writeLevels(ledTables, stored, {65535, 0, 7}, false);
    EXPECT_EQ(ledContents(), "65535/0/7");
}

TEST_F(LedChannelsTest, WriteLevels_ChannelWithoutAFileIsReportedAndTheOthersAreWritten) {
    auto edited = ledTables;
    edited.channels[2].code = 3;
    shm::writeLevels(edited, stored, {4, 5, 6}, false);
    EXPECT_EQ(ledContents(), "4/5/untouched");
    EXPECT_EQ(stored, (LedLevels{4, 5, 6}));
    EXPECT_THAT(
        log.entries(),
        ElementsAre(LogEntry{category, log4cpp::Priority::DEBUG, "update: color = 0, old = 0, new = 0x4"},
                    LogEntry{category, log4cpp::Priority::DEBUG, "update: color = 0x1, old = 0x1, new = 0x5"},
                    LogEntry{category, log4cpp::Priority::DEBUG, "update: color = 0x2, old = 0, new = 0x6"},
                    LogEntry{category, log4cpp::Priority::ERROR, "update: Invalid color 0x2 provided"}));
}

TEST_F(LedChannelsTest, WriteLevels_FailureWhileClosingIsNotReportedAndTheOthersAreWritten) {
    std::filesystem::remove(qel::test::ledFile("red"));
    std::filesystem::create_symlink("/dev/full", qel::test::ledFile("red"));
    shm::writeLevels(ledTables, stored, {4, 5, 6}, false);
    std::filesystem::remove(qel::test::ledFile("red"));
    EXPECT_EQ(ledContents(), "(none)/5/6");
    EXPECT_EQ(stored, (LedLevels{4, 5, 6}));
    EXPECT_EQ(log.entries().size(), 3U) << "one line per channel, of the change";
}

class GroupedDigits : public std::numpunct<char> {
protected:
    char do_thousands_sep() const override { return ','; }
    std::string do_grouping() const override { return "\1"; }
};

TEST_F(LedChannelsTest, WriteLevels_TheLocaleOfTheProcessDoesNotShow) {
    auto const former = std::locale::global(std::locale(std::locale::classic(), new GroupedDigits));
    shm::writeLevels(ledTables, stored, {255, 1, 0}, false);
    std::locale::global(former);
    EXPECT_EQ(qel::test::contentOf(qel::test::ledFile("red")), "255");
}

} // namespace
