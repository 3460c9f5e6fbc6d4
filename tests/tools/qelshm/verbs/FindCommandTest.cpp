// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tools/qelshm/verbs/FindCommand.h"

#include "tests/tools/qelshm/ImageFolder.h"
#include "tests/tools/qelshm/QelshmRun.h"
#include "tests/tools/qelshm/SampleImages.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <memory>
#include <utility>

namespace qel::test {

namespace {

class FindCommandTest : public testing::Test {
protected:
    QelshmOutcome find(std::vector<std::string> arguments) const {
        arguments.insert(arguments.begin(), {"find", "--image", file_});
        return runQelshm(arguments);
    }

    /// Which fields the text was found in, by the id of the point or value.
    std::vector<std::pair<std::string, std::string>> places(std::string const& text) const {
        std::vector<std::pair<std::string, std::string>> places;
        auto const document = nlohmann::json::parse(find({"--json", text}).output);
        for (auto const& match : document.at("matches")) {
            auto const& place = match.at("value").is_null() ? match.at("point") : match.at("value");
            for (auto const& field : match.at("in")) {
                places.emplace_back(place.at("svid"), field);
            }
        }
        return places;
    }

    ImageFolder const folder_;
    std::string const file_ = folder_.add("alarm");
};

using Places = std::vector<std::pair<std::string, std::string>>;

} // namespace

TEST_F(FindCommandTest, Text_IsFoundInEveryField) {
    EXPECT_EQ((Places{{"0x01010101ffff0000", "path"}, {"0x01010101ffff0000", "type"}}), places("SENSOR"));
    EXPECT_EQ((Places{{"0x01010101ffff0101", "svid"}}), places("ffff0101"));
    EXPECT_EQ((Places{{"0x010001ff01020000", "state"}}), places("on, alarm"));
    EXPECT_EQ((Places{{"0x010001ff01020013", "state"}}), places("high alarm"));
    EXPECT_EQ((Places{{"0x01010101ffff0000", "type"}, {"0x01010101ffff0100", "name"}}),
              places("temperature"));
}

TEST_F(FindCommandTest, Matches_AreLines) {
    auto const outcome = find({"high"});
    EXPECT_EQ(0, outcome.status);
    EXPECT_EQ("0x010001ff01020013  unit1/inlet1/circuit1/socket2  Active Power  1234.5 W  High Alarm\n",
              outcome.output);
}

TEST_F(FindCommandTest, NameWithWildcardsOrAKey_SelectsPointsAndValues) {
    EXPECT_EQ((Places{{"0x010001ff01020013", "name"}}), places("unit1/inlet1/circuit1/socket2:active-power"));
    EXPECT_EQ((Places{{"0x010001ff01010001", "name"},
                      {"0x010001ff01020001", "name"},
                      {"0x010001ff01030001", "name"}}),
              places("unit1/**/socket*:voltage"));
    EXPECT_EQ((Places{{"0x01010101ffff0000", "path"},
                      {"0x01010101ffff0100", "name"},
                      {"0x01010101ffff0101", "name"}}),
              places("unit1/s*"));
    auto const outcome = find({"unit1/**:voltag"});
    EXPECT_EQ(1, outcome.status);
    EXPECT_EQ("qelshm: nothing matches \"unit1/**:voltag\"; the nearest name is unit1/inlet1:voltage\n",
              outcome.errors);
}

TEST_F(FindCommandTest, OlderThan_LeavesOnlyOldValues) {
    auto const image = sampleImage("alarm");
    auto region = std::make_unique<shm::record::Region>(image.region());
    region->values[0].at -= 18000000;
    auto const file = folder_.add("old.img", inspect::Image(std::move(region), image.size()));
    auto const now = std::to_string(sampleTime + 10000);
    std::string const line = "0x010001ffffff0001  unit1/inlet1  Voltage  230.1 V  No Error  5 h 0 min\n";
    for (auto const* const age : {"10s", "10", "5m", "2h", "4.9h"}) {
        auto const outcome = runQelshm({"find", "--older-than", age, "--image", file, "--now", now});
        EXPECT_EQ(0, outcome.status) << age;
        EXPECT_EQ(line, outcome.output) << age;
    }
    EXPECT_EQ(1, runQelshm({"find", "--older-than", "6h", "--image", file, "--now", now}).status);
    EXPECT_EQ(1, runQelshm({"find", "humidity", "--older-than", "1m", "--image", file, "--now", now}).status);
    EXPECT_EQ(line,
              runQelshm({"find", "unit1/**:v*", "--older-than", "1m", "--image", file, "--now", now}).output);
    auto const document = nlohmann::json::parse(
        runQelshm({"find", "--older-than", "1m", "--json", "--image", file, "--now", now}).output);
    EXPECT_EQ(nlohmann::json({"age"}), document.at("matches").at(0).at("in"));
}

TEST_F(FindCommandTest, TextThatOccursNowhere_IsStatusOne) {
    auto const outcome = find({"nowhere"});
    EXPECT_EQ(1, outcome.status);
    EXPECT_EQ("", outcome.output);
    EXPECT_TRUE(nlohmann::json::parse(find({"--json", "nowhere"}).output).at("matches").empty());
}

} // namespace qel::test
