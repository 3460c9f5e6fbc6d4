// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

// A writer that is killed at any moment and started again, under readers that walk all the time.

#include "tests/endurance/Walker.h"
#include "tests/support/ChildProcess.h"
#include "tests/support/Eventually.h"
#include "tests/support/ProcessResources.h"
#include "tests/support/ProgressPage.h"
#include "tests/support/RandomNumbers.h"
#include "tests/support/RawRegion.h"
#include "tests/support/Rounds.h"
#include "tests/support/TempFile.h"
#include "tests/system/Peers.h"
#include "tests/system/Storm.h"

#include <gtest/gtest.h>

#include <array>
#include <chrono>
#include <csignal>
#include <filesystem>
#include <iostream>
#include <memory>
#include <random>
#include <string>
#include <thread>

namespace qel::test {

namespace {

constexpr int killedStatus = 128 + SIGKILL;

void pauseFor(std::chrono::microseconds time) {
    auto const end = std::chrono::steady_clock::now() + time;
    while (std::chrono::steady_clock::now() < end) {
    }
}

class WriterKilled : public testing::Test {
protected:
    int upTo(int most) { return std::uniform_int_distribution<int>(0, most)(random_); }

    void startReaders() {
        for (auto& reader : readers_) {
            reader = std::make_unique<Walker>();
        }
        for (auto& reader : readers_) {
            ASSERT_TRUE(eventually([&] { return reader->ask("mapped") == "inactive"; }));
            reader->walk();
        }
    }

    // Every reader answers, sees this, and walks on.
    void expectSeen(std::string const& condition) {
        for (auto& reader : readers_) {
            EXPECT_EQ(condition, reader->interrupt("mapped"));
            reader->walk();
        }
    }

    // Kills the writer in the step that it was to be killed in, or a little later.
    void killDuring(Writer& writer, StormStep step) {
        EXPECT_TRUE(eventually([&] { return page_.marked() == static_cast<std::uint32_t>(step); },
                               std::chrono::seconds(30)));
        pauseFor(std::chrono::microseconds(upTo(100)));
        writer.process().signal(SIGKILL);
        EXPECT_EQ(killedStatus, writer.process().wait());
        ++kills_.at(page_.marked());
    }

    // A writer that does not even get ready.
    void killWhileItStarts() {
        ChildProcess starting(Writer::command());
        std::this_thread::sleep_for(std::chrono::microseconds(upTo(20000)));
        starting.signal(SIGKILL);
        EXPECT_EQ(killedStatus, starting.wait());
    }

    void expectSameObject() const {
        EXPECT_EQ(inode_, rawRegionInode());
        EXPECT_EQ(320032, rawRegionSizeNow());
    }

    std::mt19937 random_ = randomNumbers(1);
    TempFile file_{""};
    ProgressPage page_{file_.path()};
    std::array<std::unique_ptr<Walker>, 4> readers_;
    std::array<int, stormStepNames.size()> kills_{};
    std::uint64_t inode_ = 0;
};

TEST_F(WriterKilled, AtAnyMoment_IsFollowedByOneThatReusesTheObject_UnderWalkingReaders) {
    int const kills = rounds(4, 500);
    auto const before = ownResources();
    for (int round = 0; round < kills; ++round) {
        Writer writer;
        writer.ask("answer 1");
        if (round == 0) {
            inode_ = rawRegionInode();
            startReaders();
        }
        expectSameObject();
        expectSeen("inactive");

        page_.mark(0);
        auto const done = page_.counted();
        writer.process().writeLine("storm " + std::to_string(round) + " 0 " + file_.path());
        auto const step = static_cast<StormStep>(1 + upTo(5));
        bool const duringFirstLayout = step == StormStep::LayOut && upTo(1) == 0;
        if (!duringFirstLayout) {
            ASSERT_TRUE(eventually([&] { return page_.counted() > done; }));
            expectSeen("active");
        }
        killDuring(writer, step);
        if (upTo(3) == 0) {
            killWhileItStarts();
        }
        expectSameObject();
        ASSERT_FALSE(HasFailure()) << "round " << round;
    }
    for (std::size_t step = 1; step < kills_.size(); ++step) {
        RecordProperty(stormStepNames.at(step), kills_.at(step));
        std::cout << stormStepNames.at(step) << ": " << kills_.at(step) << " kills\n";
        EXPECT_TRUE(kills < 100 || kills_.at(step) > 0) << stormStepNames.at(step);
    }

    {
        Writer last;
        expectSeen("inactive");
        last.ask("answer 1");
        EXPECT_EQ("changed", last.ask("whole"));
        last.ask("active");
        last.ask("signal");
        expectSameObject();
        auto const laidOut = last.ask("tree");
        for (auto& reader : readers_) {
            EXPECT_EQ("settled", reader->interrupt("settle 100"));
            EXPECT_EQ(laidOut, reader->ask("tree"));
            EXPECT_GT(reader->points(), 0U);
            reader->process().writeLine("quit");
            EXPECT_EQ(0, reader->process().wait());
            reader.reset();
        }
        last.process().writeLine("quit");
        EXPECT_EQ(0, last.process().wait());
    }
    EXPECT_TRUE(std::filesystem::is_empty("/dev/shm"));
    EXPECT_FALSE(hasChildren());
    EXPECT_EQ(before, ownResources());
}

} // namespace

} // namespace qel::test
