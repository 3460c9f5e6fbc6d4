// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tools/qelshm/watch/WatchScreen.h"

#include "tests/tools/qelshm/watch/Tmux.h"
#include "tests/tools/replay/QelReplayProcess.h"

#include <gmock/gmock.h>

#include <csignal>
#include <memory>
#include <sstream>
#include <string>

namespace qel::test {

namespace {

using testing::HasSubstr;
using testing::Not;

bool has(std::string const& text, std::string const& part) {
    return text.find(part) != std::string::npos;
}

std::string lineOf(std::string const& screen, std::size_t number) {
    std::istringstream lines(screen);
    std::string line;
    for (std::size_t index = 0; index <= number; ++index) {
        line.clear();
        std::getline(lines, line);
    }
    return line;
}

/// `qelshm watch` in a shell in a terminal, on a unit of an inlet, three circuits and ten sockets whose values change.
class WatchScreenTest : public testing::Test {
protected:
    WatchScreenTest() { startUnit(); }

    void startUnit() {
        std::string const recording = QEL_DATA_DIR "/outlets_1s.csv";
        unit_ = std::make_unique<QelReplayProcess>(std::vector<std::string>{
            "--speed", "10", "--loop", "--limit", "inlet1_voltage_V:high-alarm=100", recording});
        ASSERT_TRUE(unit_->readUntil("region active"));
    }

    /// Has the terminal's settings noted before and after, and its exit status told.
    void startWatch(std::string const& arguments = "", std::string const& before = "") {
        tmux_.type("clear; was=$(stty -g); " + before + " " QELSHM " watch " + arguments +
                   "; echo \"status $? $([ \"$(stty -g)\" = \"$was\" ] && echo same)\"");
        tmux_.press({"Enter"});
    }

    void startTable(std::string const& arguments = "") {
        startWatch(arguments);
        ASSERT_TRUE(tmux_.shows("? help")) << tmux_.screen();
        ASSERT_TRUE(tmux_.shows("inlet1")) << tmux_.screen();
    }

    void expectShellAgain(std::string const& status = "status 0 same") {
        EXPECT_TRUE(tmux_.shows(status)) << tmux_.screen();
        EXPECT_EQ("0", tmux_.fact("alternate_on")) << "the primary screen is back";
        EXPECT_EQ("1", tmux_.fact("cursor_flag")) << "the cursor is visible";
        EXPECT_THAT(tmux_.screen(), Not(HasSubstr("qelshm watch   ")));
    }

    /// Sends a signal to the program that runs in the terminal; it has noted its number.
    void signalWatch(char const* name) {
        ChildProcess kill({"sh", "-c", std::string("kill -") + name + " $(cat /dev/shm/watch-pid)"});
        EXPECT_EQ(0, kill.wait());
    }

    Tmux tmux_{100, 30};
    std::unique_ptr<QelReplayProcess> unit_;
};

} // namespace

TEST_F(WatchScreenTest, Table_ShowsHeaderTitlesTreeDetailsAndKeys) {
    startTable();
    ASSERT_TRUE(tmux_.shows("last delivery 0s ago"));
    auto const screen = tmux_.screen();
    EXPECT_THAT(lineOf(screen, 0),
                testing::MatchesRegex(" qelshm watch   active +Child Alarm   LED red +20[0-9T:-]+Z"));
    EXPECT_THAT(lineOf(screen, 1), HasSubstr(" points 15/800   values 102/8800   structure changes 0"));
    EXPECT_THAT(lineOf(screen, 2),
                testing::MatchesRegex(" 1 alarm   0 warning   0 lost   0 never delivered   0 stale"));
    EXPECT_THAT(lineOf(screen, 3), testing::MatchesRegex(" Point, value \\(by tree\\) +Value +State +Age"));
    EXPECT_THAT(lineOf(screen, 4), testing::MatchesRegex(" ▾ unit1  Master +Child Alarm"));
    EXPECT_THAT(lineOf(screen, 5), testing::MatchesRegex("   ▾ inlet1  1P +On, Alarm"));
    EXPECT_THAT(lineOf(screen, 6), testing::MatchesRegex(" +Voltage +2[0-9.]+ V +High Alarm +>?[0-9]+s"));
    EXPECT_THAT(screen, HasSubstr("       ▸ socket3  Schuko"));
    EXPECT_THAT(lineOf(screen, 21), testing::MatchesRegex(" unit1  0x0100ffffffff0000  Master +Child Alarm"));
    EXPECT_THAT(lineOf(screen, 29),
                testing::MatchesRegex(" s sort   / filter   n alarm   w why   v events   x more   p pause   "
                                      "\\? help   q quit +1/27"));
    EXPECT_EQ("1", tmux_.fact("alternate_on"));
    EXPECT_EQ("0", tmux_.fact("cursor_flag"));
}

TEST_F(WatchScreenTest, Arrows_SelectAndFold) {
    startTable();
    tmux_.press({"Down", "Down"});
    ASSERT_TRUE(tmux_.shows(" 3/27"));
    ASSERT_TRUE(tmux_.shows(" unit1/inlet1  0x010001ffffff0000  1P"));
    ASSERT_TRUE(tmux_.shows(" >Voltage"));
    ASSERT_TRUE(tmux_.shows("Voltage, delivered 20"));
    EXPECT_TRUE(tmux_.becomes([](std::string const& screen) { return has(screen, "▄") || has(screen, "█"); }))
        << "a graph";
    tmux_.press({"Left", "Left"});
    ASSERT_TRUE(tmux_.shows("   ▸ inlet1")) << "to the point, and folded";
    ASSERT_TRUE(tmux_.shows(" 2/2"));
    EXPECT_THAT(tmux_.screen(), Not(HasSubstr("socket3")));
    tmux_.press({"Enter"});
    ASSERT_TRUE(tmux_.shows(" 2/27"));
    tmux_.press({"End", "Right"});
    ASSERT_TRUE(tmux_.shows("       ▾ socket10"));
}

TEST_F(WatchScreenTest, Filter_ShowsWhatFits) {
    startTable();
    tmux_.press({"/"});
    tmux_.type("socket6 apparent power");
    ASSERT_TRUE(tmux_.shows("/socket6 apparent power_   Enter keeps it, Tab completes, Esc removes it"));
    tmux_.press({"Enter"});
    ASSERT_TRUE(tmux_.shows("(by tree) /socket6 apparent power"));
    auto const screen = tmux_.screen();
    EXPECT_THAT(lineOf(screen, 7), HasSubstr("▾ socket6  Schuko"));
    EXPECT_THAT(lineOf(screen, 8),
                testing::MatchesRegex(" +Apparent Power +[0-9.]+ VA +No Error +>?[0-9]+s"));
    EXPECT_EQ("", lineOf(screen, 9));
    tmux_.press({"/"});
    tmux_.type("xyz");
    EXPECT_TRUE(tmux_.shows("Nothing to show"));
    tmux_.press({"Escape"});
    EXPECT_TRUE(tmux_.shows("/27"));
}

TEST_F(WatchScreenTest, Sort_ShowsValuesAlone) {
    startTable();
    tmux_.press({"s"});
    ASSERT_TRUE(tmux_.shows("(by state)"));
    EXPECT_THAT(lineOf(tmux_.screen(), 4),
                testing::MatchesRegex("   unit1/inlet1  Voltage +2[0-9.]+ V +High Alarm +>?[0-9]+s"));
    tmux_.press({"s"});
    ASSERT_TRUE(tmux_.shows("(by name)"));
    EXPECT_THAT(lineOf(tmux_.screen(), 4), HasSubstr("unit1/inlet1  Active Energy"));
    tmux_.press({"s"});
    ASSERT_TRUE(tmux_.shows("(by age)"));
}

TEST_F(WatchScreenTest, Help_NamesTheKeysUntilAKeyIsPressed) {
    startTable();
    tmux_.press({"?"});
    ASSERT_TRUE(tmux_.shows(" qelshm watch: keys"));
    auto const screen = tmux_.screen();
    EXPECT_THAT(screen,
                HasSubstr("Enter, space        fold or unfold; in a flat order, show the value in the tree"));
    EXPECT_THAT(screen, HasSubstr("q, Ctrl-C           quit; Ctrl-Z suspends"));
    tmux_.press({"q"});
    EXPECT_TRUE(tmux_.shows("? help")) << "q ends the help alone";
}

TEST_F(WatchScreenTest, ChangedSize_IsFollowed) {
    startTable();
    tmux_.resize(70, 12);
    ASSERT_TRUE(tmux_.becomes([](std::string const& screen) {
        return has(lineOf(screen, 11), "q quit") && has(lineOf(screen, 11), " 1/27");
    })) << tmux_.screen();
    EXPECT_THAT(lineOf(tmux_.screen(), 10), Not(HasSubstr("unit1  0x"))) << "no room for the details";
    tmux_.resize(120, 40);
    ASSERT_TRUE(tmux_.becomes([](std::string const& screen) {
        return has(lineOf(screen, 39), " 1/27") && has(lineOf(screen, 30), " unit1  0x0100ffffffff0000");
    })) << tmux_.screen();
    tmux_.resize(10, 3);
    tmux_.resize(1, 1);
    tmux_.resize(100, 30);
    ASSERT_TRUE(tmux_.shows("? help"));
    tmux_.press({"q"});
    expectShellAgain();
}

TEST_F(WatchScreenTest, Quit_RestoresTheTerminal) {
    startTable();
    tmux_.press({"q"});
    expectShellAgain();
}

TEST_F(WatchScreenTest, CtrlBackslash_RestoresTheTerminal) {
    startTable();
    tmux_.press({"C-\\"});
    EXPECT_TRUE(tmux_.shows("status 131 same")) << tmux_.screen();
    EXPECT_EQ("0", tmux_.fact("alternate_on"));
    EXPECT_EQ("1", tmux_.fact("cursor_flag"));
    EXPECT_EQ("0", tmux_.fact("mouse_any_flag"));
}

class WatchScreenCrashTest : public WatchScreenTest, public testing::WithParamInterface<char const*> {};

TEST_P(WatchScreenCrashTest, FatalSignal_RestoresTheTerminal) {
    startWatch("", "sh -c 'echo $$ >/dev/shm/watch-pid; exec \"$@\"' sh");
    ASSERT_TRUE(tmux_.shows("? help")) << tmux_.screen();
    signalWatch(GetParam());
    EXPECT_TRUE(tmux_.becomes([](std::string const& screen) {
        // 128 + n, or what a sanitizer makes of it
        return has(screen, " same") && has(screen, "status ") && !has(screen, "status 0");
    })) << tmux_.screen();
    EXPECT_EQ("0", tmux_.fact("alternate_on"));
    EXPECT_EQ("1", tmux_.fact("cursor_flag"));
    EXPECT_EQ("0", tmux_.fact("mouse_any_flag"));
}

INSTANTIATE_TEST_SUITE_P(All, WatchScreenCrashTest, testing::Values("SEGV", "ABRT", "BUS", "FPE", "ILL"),
                         [](auto const& parameter) { return std::string(parameter.param); });

class WatchScreenSignalTest : public WatchScreenTest, public testing::WithParamInterface<char const*> {};

TEST_P(WatchScreenSignalTest, Signal_RestoresTheTerminal) {
    startWatch("", "sh -c 'echo $$ >/dev/shm/watch-pid; exec \"$@\"' sh");
    ASSERT_TRUE(tmux_.shows("? help")) << tmux_.screen();
    signalWatch(GetParam());
    expectShellAgain();
}

INSTANTIATE_TEST_SUITE_P(All, WatchScreenSignalTest, testing::Values("TERM", "HUP", "INT"),
                         [](auto const& parameter) { return std::string(parameter.param); });

TEST_F(WatchScreenTest, CtrlC_RestoresTheTerminal) {
    startTable();
    tmux_.press({"C-c"});
    // The shell drops the rest of its line when Ctrl-C came during it.
    EXPECT_TRUE(tmux_.becomes(
        [](std::string const& screen) { return !has(screen, "qelshm watch   ") && has(screen, "shell>"); }));
    EXPECT_EQ("0", tmux_.fact("alternate_on"));
    EXPECT_EQ("1", tmux_.fact("cursor_flag"));
}

TEST_F(WatchScreenTest, Suspended_GivesTheTerminalBackAndComesAgain) {
    startTable();
    tmux_.press({"C-z"});
    ASSERT_TRUE(tmux_.shows("Stopped"));
    EXPECT_EQ("0", tmux_.fact("alternate_on"));
    EXPECT_EQ("0", tmux_.fact("mouse_any_flag"));
    EXPECT_EQ("1", tmux_.fact("cursor_flag"));
    tmux_.type("echo $((20 + 22)); fg");
    tmux_.press({"Enter"});
    ASSERT_TRUE(tmux_.shows("? help"));
    EXPECT_EQ("1", tmux_.fact("alternate_on"));
    tmux_.press({"Down"});
    ASSERT_TRUE(tmux_.shows(" 2/27"));
    tmux_.press({"q"});
    ASSERT_TRUE(tmux_.shows("42"));
    EXPECT_TRUE(tmux_.becomes([](std::string const& screen) { return !has(screen, "qelshm watch   "); }));
    EXPECT_EQ("1", tmux_.fact("cursor_flag"));
}

TEST_F(WatchScreenTest, UnitThatGoesAndComesBack_IsFollowed) {
    startTable();
    unit_.reset();
    ASSERT_TRUE(tmux_.shows("Waiting: there is no shared-memory object QelSharedMemory."));
    EXPECT_THAT(lineOf(tmux_.screen(), 0), HasSubstr(" qelshm watch   absent "));
    EXPECT_THAT(tmux_.screen(), Not(HasSubstr("inlet1")));
    startUnit();
    ASSERT_TRUE(tmux_.shows("new shared-memory object opened"));
    ASSERT_TRUE(tmux_.shows("inlet1"));
    EXPECT_THAT(lineOf(tmux_.screen(), 0), HasSubstr(" qelshm watch   active "));
    tmux_.press({"q"});
    expectShellAgain();
}

TEST_F(WatchScreenTest, NoUnitAtFirst_IsWaitedFor) {
    unit_.reset();
    startWatch();
    ASSERT_TRUE(tmux_.shows("Waiting: there is no shared-memory object"));
    tmux_.press({"Down", "Enter", "s", "Right"});
    ASSERT_TRUE(tmux_.shows("(by state)"));
    startUnit();
    ASSERT_TRUE(tmux_.shows("unit1/inlet1"));
}

TEST_F(WatchScreenTest, Names_LeaveTheRestOut) {
    startTable("unit1/inlet1/circuit1/socket6 0x010001ffffff0001");
    ASSERT_TRUE(tmux_.shows("socket6"));
    EXPECT_THAT(tmux_.screen(), Not(HasSubstr("socket3")));
    EXPECT_THAT(tmux_.screen(), Not(HasSubstr("Current")));
    EXPECT_THAT(lineOf(tmux_.screen(), 6), HasSubstr("Voltage"));
}

TEST_F(WatchScreenTest, WithoutUtf8_IsDrawnInAscii) {
    startWatch("", "LC_ALL=C");
    ASSERT_TRUE(tmux_.shows(" - unit1  Master"));
    EXPECT_THAT(tmux_.screen(), HasSubstr("       + socket3  Schuko"));
    tmux_.press({"Down"});
    ASSERT_TRUE(tmux_.becomes([](std::string const& screen) {
        return has(screen, "#") || has(screen, ":|");
    })) << "a graph";
    auto const screen = tmux_.screen();
    EXPECT_TRUE(std::all_of(screen.begin(), screen.end(), [](char byte) { return byte >= 0; })) << screen;
}

TEST_F(WatchScreenTest, TerminalThatCannotAddressItsCursor_GetsLines) {
    for (auto const* const name : {"dumb", "no-such-terminal"}) {
        startWatch("", std::string("TERM=") + name);
        ASSERT_TRUE(tmux_.becomes([](std::string const& screen) {
            return has(screen, "Z  unit1/inlet1") && has(screen, "No Error");
        })) << tmux_.screen();
        EXPECT_EQ("0", tmux_.fact("alternate_on"));
        tmux_.press({"C-c"});
        ASSERT_TRUE(tmux_.becomes([](std::string const& screen) { return has(screen, "shell>"); }));
    }
}

TEST_F(WatchScreenTest, Count_WritesLinesAlsoOnATerminal) {
    startWatch("--count 3 unit1/inlet1");
    ASSERT_TRUE(tmux_.shows("status 0 same"));
    auto const screen = tmux_.screen();
    EXPECT_EQ("0", tmux_.fact("alternate_on"));
    EXPECT_THAT(screen, testing::ContainsRegex("Z  unit1/inlet1 +[A-Z][A-Za-z ]+ +[0-9.]+ "));
}

TEST_F(WatchScreenTest, ColorOption_BeatsTheEnvironment) {
    struct Case {
        char const* environment;
        char const* option;
        bool isColoured;
    };
    for (auto const& current : {Case{"NO_COLOR=1", "--color always", true}, Case{"NO_COLOR=1", "", false},
                                Case{"NO_COLOR=", "--color never", false}, Case{"NO_COLOR=", "", true}}) {
        startWatch(current.option, current.environment);
        ASSERT_TRUE(tmux_.shows("inlet1")) << tmux_.screen();
        EXPECT_EQ(current.isColoured, has(tmux_.colouredScreen(), "\x1b[31m"))
            << current.environment << ' ' << current.option;
        tmux_.press({"q"});
        ASSERT_TRUE(tmux_.shows("status 0 same"));
    }
}

TEST_F(WatchScreenTest, SizeThatChangesWithoutASignal_IsFollowed) {
    startWatch("", "env --block-signal=WINCH");
    ASSERT_TRUE(tmux_.shows("q quit")) << tmux_.screen();
    tmux_.resize(60, 12);
    EXPECT_TRUE(tmux_.becomes([](std::string const& screen) { return has(lineOf(screen, 11), "q quit"); }))
        << tmux_.screen();
}

TEST_F(WatchScreenTest, NarrowScreen_ShowsNamesAndStatesButNoClock) {
    tmux_.resize(40, 24);
    startWatch();
    ASSERT_TRUE(tmux_.shows("q quit")) << tmux_.screen();
    auto const screen = tmux_.screen();
    EXPECT_EQ(" active   Child Alarm   LED red", lineOf(screen, 0));
    EXPECT_THAT(screen, testing::ContainsRegex("Power Factor +[0-9.]+ +No Error"));
    EXPECT_THAT(screen, testing::ContainsRegex("Activ~Energy +[0-9.]+ kWh"));
    EXPECT_THAT(screen, testing::ContainsRegex("Active Power +[0-9.]+ W"));
    EXPECT_THAT(screen, Not(HasSubstr("Age")));
}

TEST_F(WatchScreenTest, UsualScreen_TellsPowerFromEnergy) {
    tmux_.resize(80, 24);
    startTable();
    tmux_.press({"s", "s"});
    ASSERT_TRUE(tmux_.shows("(by name)"));
    tmux_.press({"End"});
    ASSERT_TRUE(tmux_.shows("/socket"));
    auto const screen = tmux_.screen();
    EXPECT_THAT(screen, HasSubstr("Apparent Power "));
    EXPECT_THAT(screen, HasSubstr("Apparent Energy "));
}

TEST_F(WatchScreenTest, KilledWriter_IsSaidToDeliverNothing) {
    startTable("--max-age 1");
    ASSERT_TRUE(tmux_.shows("last delivery 0s ago"));
    unit_->signal(SIGKILL);
    ASSERT_TRUE(tmux_.shows("nothing delivered for 2s")) << tmux_.screen();
    EXPECT_THAT(tmux_.colouredScreen(), HasSubstr("\x1b[31mnothing delivered for"));
    EXPECT_TRUE(tmux_.becomes([](std::string const& screen) { return has(screen, "   102 stale"); }));
    EXPECT_THAT(tmux_.screen(), testing::ContainsRegex("Voltage +2[0-9.]+ V +High Alarm +[0-9]+s!"));
    tmux_.press({"q"});
    expectShellAgain();
}

TEST_F(WatchScreenTest, Mouse_SelectsAndScrolls) {
    startTable();
    auto const use = [&](char button, char column, char line) {
        tmux_.type(std::string("\x1b[M") + button + static_cast<char>('!' + column) +
                   static_cast<char>('!' + line));
    };
    auto const click = [&](char line) {
        use(' ', 5, line);
        use('#', 5, line); // released
    };
    click(6);
    ASSERT_TRUE(tmux_.shows(" 3/27")) << tmux_.screen();
    use('a', 5, 6); // the wheel down
    EXPECT_TRUE(tmux_.becomes([](std::string const& screen) { return !has(screen, "▾ unit1"); }))
        << tmux_.screen();
    use('`', 5, 6);
    EXPECT_TRUE(tmux_.shows("▾ unit1"));
    click(5);
    ASSERT_TRUE(tmux_.shows(" 2/27")) << tmux_.screen();
    click(5);
    EXPECT_TRUE(tmux_.shows("▸ inlet1")) << tmux_.screen();
}

TEST_F(WatchScreenTest, Panes_ShowCausesAndEvents) {
    startTable();
    tmux_.press({"n", "w"});
    ASSERT_TRUE(tmux_.shows(" unit1/inlet1:voltage  2"));
    EXPECT_THAT(tmux_.screen(), HasSubstr("alarm of a value"));
    tmux_.press({"v"});
    ASSERT_TRUE(tmux_.shows("Nothing has happened yet."));
    unit_.reset();
    ASSERT_TRUE(tmux_.shows("region active => absent"));
    startUnit();
    ASSERT_TRUE(tmux_.shows("new shared-memory object opened: the writer has started anew"));
}

TEST_F(WatchScreenTest, Tab_OffersNames) {
    startTable();
    tmux_.press({"/"});
    tmux_.type("unit1/inlet1/c");
    tmux_.press({"Tab"});
    ASSERT_TRUE(tmux_.shows("/unit1/inlet1/circuit_")) << tmux_.screen();
    EXPECT_THAT(tmux_.screen(), HasSubstr("unit1/inlet1/circuit1 unit1/inlet1/circuit2"));
    tmux_.press({"Tab"});
    EXPECT_TRUE(tmux_.shows("/unit1/inlet1/circuit1_"));
}

TEST_F(WatchScreenTest, Settings_AreThereInTheNextRun) {
    startTable();
    tmux_.press({"s", "x"});
    ASSERT_TRUE(tmux_.shows("Minimum"));
    tmux_.press({"q"});
    expectShellAgain();
    startWatch();
    ASSERT_TRUE(tmux_.shows("(by state)")) << tmux_.screen();
    EXPECT_THAT(tmux_.screen(), HasSubstr("Minimum"));
    tmux_.press({"q"});
    expectShellAgain();
    startWatch("", "echo '{' >$XDG_CONFIG_HOME/qelshm/watch.json;");
    ASSERT_TRUE(tmux_.shows("(by tree)"));
    EXPECT_THAT(tmux_.screen(), HasSubstr("settings ignored: "));
    tmux_.press({"q"});
    ASSERT_TRUE(tmux_.shows("status 0 same"));
    EXPECT_THAT(tmux_.screen(), HasSubstr("qelshm: settings ignored: ")) << "also afterwards";
}

} // namespace qel::test
