// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "states/LedSequence.h"

#include "region/Exceptions.h"
#include "tests/support/LogCapture.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

using qel::test::LogCapture;
using qel::test::LogEntry;
using shm::LedLevels;
using shm::ledTables;
using shm::StateColor;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

constexpr char const* category = "qel.shm.access.states";

constexpr LedLevels off{0, 0, 0};
constexpr LedLevels red{1, 0, 0};
constexpr LedLevels green{0, 1, 0};
constexpr LedLevels orange{10, 5, 0};
constexpr LedLevels magenta{1, 0, 1};

/// What a tick shows; nothing when it leaves the LED alone.
std::vector<LedLevels> shown(LedLevels const* levels) {
    return levels == nullptr ? std::vector<LedLevels>{} : std::vector<LedLevels>{*levels};
}

class LedSequenceTest : public ::testing::Test {
protected:
    std::vector<LedLevels> tick(shm::LedSequence& sut, eStatus_Bits requested) {
        return shown(sut.tick(requested, state));
    }

    eStatus_Bits state = eStatus_On;
    LogCapture log;
};

TEST_F(LedSequenceTest, Tick_FirstTickShowsTheFirstColor) {
    shm::LedSequence sut(ledTables, state);
    EXPECT_THAT(tick(sut, eStatus_On), ElementsAre(green));
    EXPECT_THAT(log.entries(), IsEmpty());
}

TEST_F(LedSequenceTest, Tick_OneColorIsShownOnce) {
    shm::LedSequence sut(ledTables, state);
    tick(sut, eStatus_On);
    for (int again = 0; again < 5; ++again) {
        EXPECT_THAT(tick(sut, eStatus_On), IsEmpty());
    }
}

TEST_F(LedSequenceTest, Tick_AColorThatWasNotSurelyShown_IsShownUntilItWas) {
    shm::LedSequence sut(ledTables, state);
    tick(sut, eStatus_On);
    EXPECT_TRUE(sut.isSurelyShown());
    sut.markShown(false);
    EXPECT_FALSE(sut.isSurelyShown());
    EXPECT_THAT(tick(sut, eStatus_On), ElementsAre(green));
    EXPECT_THAT(tick(sut, eStatus_On), ElementsAre(green));
    sut.markShown(true);
    EXPECT_THAT(tick(sut, eStatus_On), IsEmpty());
}

TEST_F(LedSequenceTest, Tick_AfterALostColorOfSeveral_TheNextOneFollows) {
    shm::LedSequence sut(ledTables, state);
    EXPECT_THAT(tick(sut, eStatus_DeviceIsUpdating), ElementsAre(magenta));
    sut.markShown(false);
    EXPECT_THAT(tick(sut, eStatus_DeviceIsUpdating), ElementsAre(off));
}

TEST_F(LedSequenceTest, Tick_TwoColorsAlternate) {
    shm::LedSequence sut(ledTables, state);
    for (int round = 0; round < 3; ++round) {
        EXPECT_THAT(tick(sut, eStatus_DeviceIsUpdating), ElementsAre(magenta));
        EXPECT_THAT(tick(sut, eStatus_DeviceIsUpdating), ElementsAre(off));
    }
}

TEST_F(LedSequenceTest, Tick_FourColorsFollowEachOtherInOrder) {
    shm::LedSequence sut(ledTables, state);
    for (int round = 0; round < 3; ++round) {
        EXPECT_THAT(tick(sut, eStatus_DeviceUpdateError), ElementsAre(magenta));
        EXPECT_THAT(tick(sut, eStatus_DeviceUpdateError), ElementsAre(off));
        EXPECT_THAT(tick(sut, eStatus_DeviceUpdateError), ElementsAre(red));
        EXPECT_THAT(tick(sut, eStatus_DeviceUpdateError), ElementsAre(off));
    }
}

TEST_F(LedSequenceTest, Tick_ChangeShowsTheFirstColorWithinTheSameTick) {
    shm::LedSequence sut(ledTables, state);
    tick(sut, eStatus_On);
    EXPECT_THAT(tick(sut, eStatus_DeviceUpdateError), ElementsAre(magenta));
    tick(sut, eStatus_DeviceUpdateError);
    EXPECT_THAT(tick(sut, eStatus_ChildWarning), ElementsAre(orange));
    EXPECT_EQ(state, eStatus_ChildWarning);
    EXPECT_THAT(tick(sut, eStatus_DeviceUpdateError), ElementsAre(magenta))
        << "from the beginning, not where it was";
}

TEST_F(LedSequenceTest, Tick_ChangeToTheSameColorIsShownAgain) {
    shm::LedSequence sut(ledTables, state);
    EXPECT_THAT(tick(sut, eStatus_ChildAlarm), ElementsAre(red));
    EXPECT_THAT(tick(sut, eStatus_LostChild), ElementsAre(red));
}

TEST_F(LedSequenceTest, Tick_UndefinedStateIsDark) {
    shm::LedSequence sut(ledTables, state);
    EXPECT_THAT(tick(sut, eStatus_UndefinedValue), ElementsAre(off));
}

TEST_F(LedSequenceTest, Tick_ChangeIsLoggedOnce) {
    shm::LedSequence sut(ledTables, state);
    tick(sut, eStatus_ChildAlarm);
    tick(sut, eStatus_ChildAlarm);
    EXPECT_THAT(log.entries(), ElementsAre(LogEntry{category, log4cpp::Priority::INFO,
                                                    "run: state change On => Child Alarm"}));
}

TEST_F(LedSequenceTest, Tick_StateWithoutColorsIsLoggedEachTick) {
    shm::LedSequence sut(ledTables, state);
    LogEntry const change{category, log4cpp::Priority::INFO, "run: state change On => High Alarm"};
    LogEntry const warning{category, log4cpp::Priority::WARN,
                           "run: State High Alarm has no color assigned to it"};
    tick(sut, eStatus_HighAlarm);
    EXPECT_THAT(log.take(), ElementsAre(change, warning));
    tick(sut, eStatus_HighAlarm);
    EXPECT_THAT(log.take(), ElementsAre(change, warning));
}

TEST_F(LedSequenceTest, Tick_StateWithoutColorsKeepsTheSequencePlaying) {
    shm::LedSequence sut(ledTables, state);
    tick(sut, eStatus_DeviceIsUpdating);
    EXPECT_THAT(tick(sut, eStatus_HighAlarm), ElementsAre(off));
    EXPECT_THAT(tick(sut, eStatus_HighAlarm), ElementsAre(magenta));
    EXPECT_EQ(state, eStatus_DeviceIsUpdating);
}

TEST_F(LedSequenceTest, Tick_UnknownNumberHasNoColors) {
    shm::LedSequence sut(ledTables, state);
    tick(sut, static_cast<eStatus_Bits>(100));
    EXPECT_TRUE(log.contains(
        {category, log4cpp::Priority::WARN, "run: State UNKNOWN STATE has no color assigned to it"}));
    EXPECT_EQ(state, eStatus_On);
}

TEST_F(LedSequenceTest, Tick_EveryStateButSevenHasNoColors) {
    for (int number = -3; number <= 44; ++number) {
        shm::LedSequence sut(ledTables, eStatus_On);
        state = eStatus_On;
        tick(sut, static_cast<eStatus_Bits>(number));
        bool const colored =
            number == -1 || number == 17 || (number >= 23 && number <= 25) || number == 34 || number == 35;
        EXPECT_EQ(state, colored ? number : 17) << number;
    }
}

TEST_F(LedSequenceTest, Tick_ColorWithoutLevelsIsSkippedSilently) {
    auto edited = ledTables;
    edited.colors[7].code = static_cast<StateColor>(8);
    edited.states[5].sequence = shm::ColorSequence(StateColor::Red, StateColor::White, StateColor::Green);
    shm::LedSequence sut(edited, state);
    EXPECT_THAT(tick(sut, eStatus_DeviceIsUpdating), ElementsAre(red));
    log.take();
    EXPECT_THAT(tick(sut, eStatus_DeviceIsUpdating), IsEmpty());
    EXPECT_THAT(tick(sut, eStatus_DeviceIsUpdating), ElementsAre(green));
    EXPECT_THAT(log.entries(), IsEmpty());
}

TEST_F(LedSequenceTest, Construction_StateWithoutColorsIsLoggedAndThrown) {
    auto edited = ledTables;
    edited.states[1].code = eStatus_NoError;
    try {
        shm::LedSequence const sut(edited, eStatus_On);
        FAIL() << "nothing was thrown";
    } catch (ex::TAVSimpleException const& error) {
        EXPECT_STREQ(error.what(), "The default state has no color assigned to it");
    }
    EXPECT_THAT(log.entries(),
                ElementsAre(LogEntry{category, log4cpp::Priority::ERROR, "run: Invalid default state On"}));
}

} // namespace
