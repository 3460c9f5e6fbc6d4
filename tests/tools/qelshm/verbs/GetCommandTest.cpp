// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tools/qelshm/verbs/GetCommand.h"

#include "tests/tools/qelshm/ImageFolder.h"
#include "tests/tools/qelshm/QelshmRun.h"
#include "tests/tools/qelshm/SampleImages.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

namespace qel::test {

namespace {

class GetCommandTest : public testing::Test {
protected:
    QelshmOutcome get(std::vector<std::string> arguments) const {
        arguments.insert(arguments.begin(),
                         {"get", "--image", file_, "--now", std::to_string(sampleTime + 5000)});
        return runQelshm(arguments);
    }

    ImageFolder const folder_;
    std::string const file_ = folder_.add("healthy");
};

} // namespace

TEST_F(GetCommandTest, Point_IsShownWithItsValues) {
    for (auto const* const name :
         {"unit1/sensor1.1", "UNIT1/Sensor1.1", "0x01010101ffff0000", "72340177116135424"}) {
        auto const outcome = get({name});
        EXPECT_EQ(0, outcome.status);
        EXPECT_EQ("0x01010101ffff0000  unit1/sensor1.1  I2C Temperature-Humidity Sensor  On\n"
                  "  0x01010101ffff0100  Temperature  21.5 \u00B0C  No Error  2023-11-14T22:13:20Z  5.0 s\n"
                  "  0x01010101ffff0101  Humidity     40.0 %   No Error  2023-11-14T22:13:20Z  5.0 s\n",
                  outcome.output);
    }
}

TEST_F(GetCommandTest, Value_IsOneLine) {
    std::string const line = "2023-11-14T22:13:20Z  unit1/sensor1.1  Humidity  40.0 %  No Error  5.0 s\n";
    for (std::vector<std::string> const& arguments :
         std::vector<std::vector<std::string>>{{"unit1/sensor1.1", "humidity"},
                                               {"unit1/sensor1.1", "0x101"},
                                               {"unit1/sensor1.1", "257"},
                                               {"0x01010101ffff0000", "Humidity"},
                                               {"0x01010101ffff0101"}}) {
        auto const outcome = get(arguments);
        EXPECT_EQ(0, outcome.status);
        EXPECT_EQ(line, outcome.output);
    }
}

TEST_F(GetCommandTest, KeyGivenBesideTheIdOfAValue_Wins) {
    EXPECT_EQ(get({"unit1/sensor1.1", "temperature"}).output,
              get({"0x01010101ffff0101", "temperature"}).output);
}

TEST_F(GetCommandTest, UnknownPoint_NamesTheNearestOne) {
    auto const outcome = get({"unit1/sensor1.2"});
    EXPECT_EQ(1, outcome.status);
    EXPECT_EQ("", outcome.output);
    EXPECT_EQ("qelshm: there is no point \"unit1/sensor1.2\"; the nearest one is unit1/sensor1.1\n",
              outcome.errors);
}

TEST_F(GetCommandTest, UnknownKey_NamesTheOnesThatAreThere) {
    for (std::vector<std::string> const& arguments :
         std::vector<std::vector<std::string>>{{"unit1/sensor1.1", "volt"}, {"0x01010101ffff0001"}}) {
        auto const outcome = get(arguments);
        EXPECT_EQ(1, outcome.status);
        EXPECT_EQ("", outcome.output);
        EXPECT_NE(std::string::npos, outcome.errors.find("; it has Temperature, Humidity\n"))
            << outcome.errors;
    }
}

TEST_F(GetCommandTest, Json_HoldsTheValuesThatWereAskedFor) {
    auto const point = nlohmann::json::parse(get({"--json", "unit1/sensor1.1"}).output).at("point");
    EXPECT_EQ("unit1/sensor1.1", point.at("path"));
    EXPECT_EQ(2U, point.at("values").size());
    auto const value =
        nlohmann::json::parse(get({"--json", "unit1/sensor1.1", "humidity"}).output).at("point");
    ASSERT_EQ(1U, value.at("values").size());
    EXPECT_EQ(40.0, value.at("values").at(0).at("number"));
    EXPECT_EQ("%", value.at("values").at(0).at("unit"));
}

} // namespace qel::test
