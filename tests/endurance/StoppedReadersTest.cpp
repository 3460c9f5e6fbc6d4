// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

// Readers that are stopped or killed in the middle of a walk: nothing of the writer's depends on them.

#include "tests/endurance/Walker.h"
#include "tests/support/Eventually.h"
#include "tests/support/ProcessResources.h"
#include "tests/support/ProgressPage.h"
#include "tests/support/RandomNumbers.h"
#include "tests/support/RawRegion.h"
#include "tests/support/Rounds.h"
#include "tests/support/TempFile.h"
#include "tests/system/Peers.h"

#include <gtest/gtest.h>

#include <sys/wait.h>

#include <array>
#include <chrono>
#include <csignal>
#include <cstdint>
#include <iostream>
#include <memory>
#include <random>
#include <string>
#include <vector>

namespace qel::test {

namespace {

constexpr std::uint64_t stepsPerStorm = 200;

/// A reader, and where it is in its walk.
struct WatchedWalker {
    WatchedWalker() {
        EXPECT_EQ("active", reader.ask("wait"));
        reader.walk(file.path());
    }

    bool isWithinVisit() const { return page.marked() == 1; }

    // Returns when the process stands still.
    void stop() {
        reader.process().signal(SIGSTOP);
        siginfo_t info{};
        EXPECT_EQ(0, ::waitid(P_PID, static_cast<id_t>(reader.process().pid()), &info, WSTOPPED));
    }
    void goOn() { reader.process().signal(SIGCONT); }

    // Visits are a good part of the walk, so a few attempts do.
    void stopWithinVisit() {
        EXPECT_TRUE(eventually([&] {
            stop();
            bool const within = isWithinVisit();
            if (!within) {
                goOn();
            }
            return within;
        }));
    }

    void kill() {
        reader.process().signal(SIGKILL);
        EXPECT_EQ(128 + SIGKILL, reader.process().wait());
    }

    TempFile file{""};
    ProgressPage page{file.path()};
    Walker reader;
};

std::string stormCommand(int storm, std::string const& page) {
    return "storm " + std::to_string(storm) + ' ' + std::to_string(stepsPerStorm) + ' ' + page;
}

/// What the region holds after so many storms without any reader.
std::vector<std::uint8_t> contentWithoutReaders(int storms) {
    TempFile const page("");
    Writer writer;
    for (int storm = 0; storm < storms; ++storm) {
        EXPECT_EQ("done", writer.ask(stormCommand(storm, page.path())));
    }
    return RawRegion().copy();
}

/// Runs storms of a writer, each with a sequence of its own, and readers beside them.
class StoppedReaders : public testing::Test {
protected:
    void startStorm(int storm) { writer_.process().writeLine(stormCommand(storm, file_.path())); }
    void endStorm() { EXPECT_EQ("done", writer_.process().readLine()); }

    void startReaders() {
        for (auto& walker : walkers_) {
            walker = std::make_unique<WatchedWalker>();
        }
    }

    // Every reader stands still within a visit while the writer does a whole storm; then it is killed or goes on.
    void disturbedStorms(int storm) {
        startStorm(storm);
        std::vector<std::uint64_t> visits;
        for (auto& walker : walkers_) {
            walker->stopWithinVisit();
            visits.push_back(walker->page.counted());
        }
        endStorm();

        auto const before = page_.counted();
        startStorm(storm + 1);
        endStorm();
        EXPECT_EQ(before + stepsPerStorm, page_.counted());

        for (std::size_t i = 0; i < walkers_.size(); ++i) {
            auto& walker = walkers_.at(i);
            EXPECT_TRUE(walker->isWithinVisit());
            EXPECT_EQ(visits.at(i), walker->page.counted());
            if (random_() % 2 == 0) {
                walker->kill();
                walker = std::make_unique<WatchedWalker>();
                ++kills_;
            } else {
                walker->goOn();
                EXPECT_TRUE(eventually([&] { return walker->page.counted() > visits.at(i); }));
                ++continuations_;
            }
        }
    }

    void endReaders() {
        for (auto& walker : walkers_) {
            EXPECT_EQ("active", walker->reader.interrupt("mapped"));
            walker->reader.process().writeLine("quit");
            EXPECT_EQ(0, walker->reader.process().wait());
        }
    }

    std::mt19937 random_ = randomNumbers(1);
    TempFile file_{""};
    ProgressPage page_{file_.path()};
    Writer writer_;
    std::array<std::unique_ptr<WatchedWalker>, 3> walkers_;
    int kills_ = 0;
    int continuations_ = 0;
};

TEST_F(StoppedReaders, WithinAVisit_WriterDoesTheSameWithTheSameOutcome) {
    int const disturbances = rounds(4, 300);
    startStorm(0);
    endStorm();
    EXPECT_EQ("done", writer_.ask("answer 1"));
    startReaders();
    for (int i = 0; i < disturbances; ++i) {
        disturbedStorms(1 + 2 * i);
    }
    auto const content = RawRegion().copy();
    endReaders();
    writer_.process().writeLine("quit");
    EXPECT_EQ(0, writer_.process().wait());
    EXPECT_GT(kills_, 0);
    EXPECT_GT(continuations_, 0);
    std::cout << kills_ << " readers killed, " << continuations_ << " continued\n";
    EXPECT_FALSE(hasChildren());

    EXPECT_TRUE(content == contentWithoutReaders(1 + 2 * disturbances));
}

} // namespace

} // namespace qel::test
