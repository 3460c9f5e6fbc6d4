// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

// A structure that is removed wholly and laid out anew, over and over, under visiting readers.

#include "tests/endurance/Walker.h"
#include "tests/support/ChangingUnit.h"
#include "tests/support/Rounds.h"
#include "tests/system/Peers.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <chrono>
#include <iostream>
#include <memory>
#include <string>

namespace qel::test {

namespace {

using testing::StartsWith;

TEST(Rebuild, WholeStructureAgainAndAgain_ReadersEndWithWholeTrees) {
    int const rebuilds = rounds(50, 10000);
    Writer writer;
    ASSERT_EQ("changed", writer.ask("whole"));
    writer.ask("active");
    writer.ask("answer 1");
    auto const laidOut = writer.ask("tree");
    ASSERT_THAT(laidOut, StartsWith(std::to_string(changingUnit::points) + " "));
    std::array<std::unique_ptr<Walker>, 4> readers;
    for (auto& reader : readers) {
        reader = std::make_unique<Walker>();
        ASSERT_EQ("active", reader->ask("wait"));
        reader->walk();
    }

    EXPECT_EQ("done", writer.ask("rebuild " + std::to_string(rebuilds), std::chrono::minutes(50)));

    EXPECT_EQ(laidOut, writer.ask("tree"));
    for (auto& reader : readers) {
        EXPECT_EQ("settled", reader->interrupt("settle 200"));
        EXPECT_EQ(laidOut, reader->ask("tree"));
        EXPECT_GT(reader->points(), 0U);
        RecordProperty("visits", static_cast<int>(reader->visits()));
        std::cout << reader->visits() << " visits, " << reader->points() << " points seen\n";
        reader->process().writeLine("quit");
        EXPECT_EQ(0, reader->process().wait());
    }
}

} // namespace

} // namespace qel::test
