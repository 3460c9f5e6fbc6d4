// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

// A writer that changes the structure thousands of times while readers look points up and visit.

#include "tests/system/Peers.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <memory>
#include <sstream>
#include <string>

namespace qel::test {

namespace {

TEST(StructureStorm, Readers_SurviveAndEndWithTheWritersStructure) {
    constexpr int rounds = 5000;
    Writer writer;
    std::array<std::unique_ptr<Reader>, 3> readers;
    for (auto& reader : readers) {
        reader = std::make_unique<Reader>();
    }
    writer.ask("churn 1 1");
    writer.ask("active");
    writer.ask("answer 1");
    for (auto& reader : readers) {
        ASSERT_EQ("active", reader->ask("wait"));
        reader->process().writeLine("hammer");
    }

    EXPECT_EQ("done", writer.ask("churn " + std::to_string(rounds) + " 2", std::chrono::minutes(4)));

    auto const expected = writer.ask("ids");
    for (auto& reader : readers) {
        reader->process().writeLine("settle 300");
        auto const seen = reader->process().readLine().value_or("");
        std::istringstream numbers(seen);
        unsigned long visits = 0;
        unsigned long points = 0;
        unsigned long lookups = 0;
        numbers >> visits >> points >> lookups;
        EXPECT_GT(visits, 0U) << seen;
        EXPECT_GT(points, 0U) << seen;
        EXPECT_GT(lookups, 0U) << seen;

        EXPECT_EQ("settled", reader->process().readLine());
        EXPECT_EQ(expected, reader->ask("ids"));
        EXPECT_EQ("0", reader->ask("modifications"));
    }
}

} // namespace

} // namespace qel::test
