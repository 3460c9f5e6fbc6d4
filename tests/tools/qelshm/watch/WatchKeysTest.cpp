// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tools/qelshm/watch/WatchKeys.h"

#include "tests/tools/qelshm/watch/TestUnit.h"

#include <gtest/gtest.h>

#include <curses.h>

#include <string>

namespace qel::watch {

namespace {

class WatchKeysTest : public testing::Test {
protected:
    WatchKeysTest() {
        sut.setPage(100);
        sut.update(unit.snapshot(0));
    }

    void press(std::string const& keys) {
        for (char const key : keys) {
            handleKey(sut, key);
        }
    }

    test::SmallUnit unit;
    WatchModel sut{WatchedNames({}), std::chrono::milliseconds(250)};
};

} // namespace

TEST_F(WatchKeysTest, EachKey_HasItsAction) {
    struct Case {
        int key;
        Action action;
    };
    for (auto const& current :
         {Case{KEY_UP, Action::Up},      Case{'k', Action::Up},           Case{KEY_DOWN, Action::Down},
          Case{'j', Action::Down},       Case{KEY_PPAGE, Action::PageUp}, Case{KEY_NPAGE, Action::PageDown},
          Case{KEY_HOME, Action::First}, Case{'g', Action::First},        Case{KEY_END, Action::Last},
          Case{'G', Action::Last},       Case{'\n', Action::Toggle},      Case{' ', Action::Toggle},
          Case{KEY_RIGHT, Action::Open}, Case{'l', Action::Open},         Case{KEY_LEFT, Action::Close},
          Case{'h', Action::Close},      Case{'e', Action::OpenAll},      Case{'c', Action::CloseAll},
          Case{'s', Action::Sort},       Case{'/', Action::Filter},       Case{27, Action::Clear},
          Case{'f', Action::Follow},     Case{'n', Action::NextAlarm},    Case{'N', Action::PreviousAlarm},
          Case{'p', Action::Pause},      Case{'x', Action::Statistics},   Case{'r', Action::Restart},
          Case{'m', Action::Mark},       Case{'+', Action::LongerSpan},   Case{'-', Action::ShorterSpan},
          Case{'w', Action::Why},        Case{'v', Action::Events},       Case{'[', Action::PaneUp},
          Case{']', Action::PaneDown},   Case{'?', Action::Help},         Case{'q', Action::Quit}}) {
        EXPECT_EQ(current.action, actionOf(current.key)) << current.key;
    }
    for (int const key : {int{'y'}, int{KEY_RESIZE}, int{KEY_F(5)}, 0, -1}) {
        EXPECT_FALSE(actionOf(key)) << key;
    }
}

TEST_F(WatchKeysTest, KeysOfTheFilter_AreNoActions) {
    press("/q s");
    EXPECT_EQ("q s", sut.filterText());
    EXPECT_FALSE(sut.isDone());
    EXPECT_EQ(SortOrder::Tree, sut.order());
    for (int const key : {KEY_BACKSPACE, 127, 8}) {
        handleKey(sut, key);
    }
    EXPECT_EQ("", sut.filterText());
    press("volt\n");
    EXPECT_EQ("volt", sut.filterText());
    EXPECT_FALSE(sut.isTyping());
    press("s");
    EXPECT_EQ("volt", sut.filterText());
    EXPECT_EQ(SortOrder::State, sut.order());
}

TEST_F(WatchKeysTest, EscWhileTyping_RemovesTheFilter) {
    press("/volt\x1b");
    EXPECT_EQ("", sut.filterText());
    EXPECT_FALSE(sut.isTyping());
}

TEST_F(WatchKeysTest, TabWhileTyping_CompletesNames) {
    press("/unit1/inlet1:v\t");
    EXPECT_EQ("unit1/inlet1:voltage", sut.filterText());
    EXPECT_TRUE(sut.isTyping());
    press("\n\t");
    EXPECT_EQ("unit1/inlet1:voltage", sut.filterText()) << "only while it is typed";
}

TEST_F(WatchKeysTest, ArrowsWhileTyping_MoveTheCursor) {
    press("/volt");
    handleKey(sut, KEY_DOWN);
    EXPECT_EQ(1U, sut.selected());
    EXPECT_TRUE(sut.isTyping());
}

TEST_F(WatchKeysTest, CharactersThatAreNotAscii_AreLeftOutOfTheFilter) {
    press("/");
    for (int const key : {0xC3, 0xA4, 1, 255}) {
        handleKey(sut, key);
    }
    EXPECT_EQ("", sut.filterText());
}

TEST_F(WatchKeysTest, AnyKey_ClosesTheHelp) {
    for (int const key : {int{'q'}, int{'x'}, int{KEY_F(5)}}) {
        press("?");
        EXPECT_TRUE(sut.isHelp());
        handleKey(sut, key);
        EXPECT_FALSE(sut.isHelp()) << key;
    }
    EXPECT_FALSE(sut.isDone());
}

TEST_F(WatchKeysTest, ChangedSize_IsNoKey) {
    press("?");
    handleKey(sut, KEY_RESIZE);
    EXPECT_TRUE(sut.isHelp());
}

} // namespace qel::watch
