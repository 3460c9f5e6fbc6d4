// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

// The live table of qelshm, used and disturbed at random.
#include "tests/support/ChangingUnit.h"
#include "tests/support/ProgressPage.h"
#include "tests/support/RandomNumbers.h"
#include "tests/support/Rounds.h"
#include "tests/support/Sanitizers.h"
#include "tests/support/TempFile.h"
#include "tests/system/Peers.h"
#include "tests/tools/qelshm/watch/Tmux.h"
#include "writer/QelSharedMemoryWriter.h"

#include <gtest/gtest.h>

#include <array>
#include <chrono>
#include <csignal>
#include <iostream>
#include <memory>
#include <random>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

namespace qel::test {

namespace {

using Clock = std::chrono::steady_clock;

// So many tables show the same unit at once: together a minute of use, an hour if the environment asks for endurance.
// Under a sanitizer 18 s, because everything is several times slower there.
constexpr int tables = 3;
constexpr bool underSanitizer = underAddressSanitizer || underThreadSanitizer;
constexpr int briefSeconds = underSanitizer ? 6 : 20;
constexpr int longSeconds = 1200;
constexpr std::chrono::seconds patience(60); // on a machine that is busy with other work

// By the multiplexer's names: all but those that end or suspend the program.
std::vector<std::string> const keys{
    "Up", "Down", "PPage", "NPage", "Home", "End",    "Left",   "Right", "Enter", "Space", "e",
    "c",  "s",    "/",     "/",     "Tab",  "n",      "N",      "f",     "w",     "v",     "[",
    "]",  "m",    "+",     "-",     "x",    "r",      "p",      "?",     "F1",    "F5",    "C-l",
    "1",  "z",    "o",     "u",     ":",    "BSpace", "Escape", "g",     "G"};

// What is typed into the filter.
std::vector<std::string> const words{"zzz",     "socket1", "alarm",   "unit1/inlet1/ci",
                                     "voltage", "lost",    "\xc3\xa4"};

struct Counts {
    unsigned keys = 0;
    unsigned words = 0;
    unsigned sizes = 0;
    unsigned structures = 0;
    unsigned ends = 0;
    unsigned kills = 0;
    unsigned updates = 0;
    unsigned screens = 0;
};

std::uint32_t pickFrom(std::mt19937& random, std::uint32_t count) {
    return std::uniform_int_distribution<std::uint32_t>(0, count - 1)(random);
}

/// A live table in a terminal of its own.
class Table {
public:
    Table(std::mt19937& random, Counts& counts) : random_(random), counts_(counts) {}

    void start() {
        tmux_.type("was=$(stty -g); " QELSHM " watch --interval 0.05 --max-age 1; "
                   "echo \"status $? $([ \"$(stty -g)\" = \"$was\" ] && echo same)\"");
        tmux_.press({"Enter"});
        ASSERT_TRUE(tmux_.shows("q quit")) << tmux_.screen();
    }

    void disturb() {
        switch (pick(10)) {
        case 0:
            columns_ = 1 + pick(pick(2) == 0 ? 12 : 180);
            lines_ = 1 + pick(pick(2) == 0 ? 8 : 60);
            tmux_.resize(static_cast<int>(columns_), static_cast<int>(lines_));
            ++counts_.sizes;
            break;
        case 1:
            tmux_.press({"/"});
            tmux_.type(words[pick(static_cast<std::uint32_t>(words.size()))]);
            ++counts_.words;
            break;
        case 2:
            useMouse();
            break;
        default:
            pressKeys();
        }
    }

    void expectScreen(std::string const& after) {
        std::string screen;
        auto const isValid = [&](std::string const& now) {
            screen = now;
            return objection(now).empty();
        };
        bool const isRight = tmux_.becomes(isValid, patience);
        ++counts_.screens;
        ASSERT_TRUE(isRight) << after << ": " << objection(screen) << " at " << columns_ << 'x' << lines_
                             << '\n'
                             << screen;
        ASSERT_EQ("1", tmux_.fact("alternate_on")) << after << '\n' << tmux_.screen();
    }

    void quit() {
        tmux_.resize(80, 24);
        for (char const* const key : {"Escape", "Escape", "q"}) {
            tmux_.press({key});
        }
        EXPECT_TRUE(tmux_.shows("status 0 same")) << tmux_.screen();
        EXPECT_EQ("0", tmux_.fact("alternate_on"));
        EXPECT_EQ("1", tmux_.fact("cursor_flag"));
        EXPECT_EQ("0", tmux_.fact("mouse_any_flag"));
    }

private:
    std::uint32_t pick(std::uint32_t count) { return pickFrom(random_, count); }

    void pressKeys() {
        std::vector<std::string> pressed;
        for (auto left = 1 + pick(10); left > 0; --left) {
            pressed.push_back(keys[pick(static_cast<std::uint32_t>(keys.size()))]);
            ++counts_.keys;
        }
        tmux_.press(pressed);
    }

    void useMouse() {
        static constexpr std::array<char, 5> buttons{' ', '#', '`', 'a', '"'};
        std::string text;
        for (int use = 0; use < 3; ++use) {
            text += std::string("\x1b[M") + buttons.at(pick(buttons.size())) +
                    static_cast<char>('!' + pick(60)) + static_cast<char>('!' + pick(40));
        }
        tmux_.type(text);
    }

    /// Why the screen is not one that the program draws; "" if it is.
    std::string objection(std::string const& screen) const {
        std::istringstream stream(screen);
        std::vector<std::string> lines;
        for (std::string line; std::getline(stream, line);) {
            lines.push_back(line);
        }
        if (lines.size() > lines_) {
            return "more lines than the screen has";
        }
        for (char const character : screen) {
            auto const byte = static_cast<unsigned char>(character);
            if (byte != '\n' && (byte < ' ' || byte == 0x7F)) {
                return "a control character";
            }
        }
        if (screen.find("\xEF\xBF\xBD") != std::string::npos) {
            return "a broken character";
        }
        if (columns_ < 50 || lines_ < 4 || lines.size() < lines_) {
            return lines.size() < lines_ ? "too few lines" : ""; // too small for words
        }
        auto const& last = lines.back();
        auto const& first = lines.front();
        if (first.find("qelshm watch: keys") != std::string::npos) {
            return "";
        }
        bool const hasCondition = first.find("active") != std::string::npos ||
                                  first.find("absent") != std::string::npos ||
                                  first.find("replaced") != std::string::npos;
        bool const hasPlace = last.find('/') != std::string::npos;
        return hasCondition && hasPlace ? "" : "no header or no footer";
    }

    std::mt19937& random_;
    Counts& counts_;
    Tmux tmux_{80, 24};
    unsigned columns_ = 80;
    unsigned lines_ = 24;
};

class WatchTest : public testing::Test {
protected:
    std::uint32_t pick(std::uint32_t count) { return pickFrom(random_, count); }

    void startWriter() {
        writer_ = std::make_unique<shm::QelSharedMemoryWriter>();
        writer_->modifyStructure(changingUnit::whole());
        writer_->setActive();
    }

    void update() {
        auto const values = changingUnit::whole();
        auto const first = values.begin();
        for (int count = 0; count < 20; ++count) {
            auto const svid =
                *std::next(first, static_cast<long>(pick(static_cast<std::uint32_t>(values.size()))));
            auto const state = static_cast<eStatus_Bits>(static_cast<int>(pick(46)) - 2);
            writer_->updateMV(svid,
                              std::make_unique<measval::MeasureValue>(pick(100000) / 100.0, ++now_, state));
        }
        writer_->propagateStates();
        ++counts_.updates;
    }

    // Another process writes without a pause and is killed at some moment. It leaves the region behind as it was then.
    void killWriter() {
        writer_.reset();
        Writer writer;
        ProgressPage const page(progress_.path());
        writer.process().writeLine("storm " + std::to_string(pick(1000000)) + " 0 " + progress_.path());
        std::this_thread::sleep_for(std::chrono::milliseconds(pick(60)));
        writer.process().signal(SIGKILL);
        ASSERT_EQ(128 + SIGKILL, writer.process().wait());
        ++counts_.kills;
    }

    // For some steps there is no writer: either no region, or one that nobody writes.
    void disturbUnit() {
        if (!writer_) {
            if (pick(4) == 0) {
                startWriter();
            }
            return;
        }
        switch (pick(16)) {
        case 0:
            writer_.reset();
            ++counts_.ends;
            break;
        case 1:
            killWriter();
            break;
        case 2:
        case 3:
            writer_->modifyStructure(changingUnit::part(random_));
            ++counts_.structures;
            break;
        case 4:
            writer_->removeStructure({});
            ++counts_.structures;
            break;
        case 5:
            writer_->modifyStructure(changingUnit::whole());
            ++counts_.structures;
            break;
        default:
            update();
        }
    }

    void startTables() {
        for (auto& table : tables_) {
            table = std::make_unique<Table>(random_, counts_);
            ASSERT_NO_FATAL_FAILURE(table->start());
        }
    }

    std::mt19937 random_ = randomNumbers(1);
    TempFile progress_{""};
    std::unique_ptr<shm::QelSharedMemoryWriter> writer_;
    std::array<std::unique_ptr<Table>, tables> tables_;
    std::uint64_t now_ = 0;
    Counts counts_;
};

} // namespace

TEST_F(WatchTest, AnyKeysSizesAndChangesOfTheUnit_LeaveAValidScreenAndTheTerminalInOrder) {
    auto const seed = static_cast<std::uint32_t>(rounds(1, static_cast<int>(std::random_device()() >> 1U)));
    random_ = randomNumbers(seed);
    SCOPED_TRACE("seed " + std::to_string(seed));
    startWriter();
    startTables();
    auto const end = Clock::now() + std::chrono::seconds(rounds(briefSeconds, longSeconds));
    for (int step = 0; Clock::now() < end && !HasFatalFailure(); ++step) {
        disturbUnit();
        for (auto const& table : tables_) {
            table->disturb();
        }
        if (step % 5 == 0) {
            tables_.at(pick(tables))->expectScreen("step " + std::to_string(step));
        }
    }
    for (auto const& table : tables_) {
        if (!HasFatalFailure()) {
            table->quit();
        }
    }
    std::cout << "seed " << seed << ": " << counts_.keys << " keys, " << counts_.words << " words, "
              << counts_.sizes << " sizes, " << counts_.updates << " batches of 20 updates, "
              << counts_.structures << " structure changes, " << counts_.ends << " ends and " << counts_.kills
              << " kills of the writer, " << counts_.screens << " screens\n";
}

} // namespace qel::test
