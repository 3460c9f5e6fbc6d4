// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tools/qelshm/verbs/FindCommand.h"

#include "tests/tools/qelshm/ImageFolder.h"
#include "tests/tools/qelshm/QelshmRun.h"
#include "tests/tools/qelshm/SampleImages.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

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

TEST_F(FindCommandTest, TextThatOccursNowhere_IsStatusOne) {
    auto const outcome = find({"nowhere"});
    EXPECT_EQ(1, outcome.status);
    EXPECT_EQ("", outcome.output);
    EXPECT_TRUE(nlohmann::json::parse(find({"--json", "nowhere"}).output).at("matches").empty());
}

} // namespace qel::test
