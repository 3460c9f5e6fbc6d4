// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tools/qelshm/verbs/ListCommand.h"

#include "tests/tools/qelshm/ImageFolder.h"
#include "tests/tools/qelshm/QelshmRun.h"
#include "tests/tools/qelshm/SampleImages.h"

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

#include <algorithm>

namespace qel::test {

namespace {

std::string const now = std::to_string(sampleTime + 5000);

class ListCommandGetTest : public testing::Test {
protected:
    QelshmOutcome get(std::vector<std::string> arguments) const {
        arguments.insert(arguments.begin(), {"get", "--image", file_, "--now", now});
        return runQelshm(arguments);
    }

    ImageFolder const folder_;
    std::string const file_ = folder_.add("healthy");
};

} // namespace

TEST(ListCommandTest, Points_AreFollowedByTheirValues) {
    ImageFolder const folder;
    auto const outcome = runQelshm({"list", "--image", folder.add("healthy"), "--now", now});
    EXPECT_EQ(0, outcome.status);
    EXPECT_THAT(
        outcome.output,
        testing::StartsWith(
            "0x0100ffffffff0000  unit1                          Master                           On\n"
            "0x010001ffffff0000  unit1/inlet1                   1P                               On\n"
            "  0x010001ffffff0001  Voltage        230.1 V   No Error        2023-11-14T22:13:20Z  5.0 s\n"
            "  0x010001ffffff0013  Active Power   1234.5 W  No Error        2023-11-14T22:13:20Z  5.0 s\n"
            "  0x010001ffffff0024  Active Energy  4.6 kWh   No Error        2023-11-14T22:13:20Z  5.0 s\n"
            "0x010001ff01ff0000  unit1/inlet1/circuit1"));
    EXPECT_THAT(outcome.output,
                testing::HasSubstr("  0x010001ff01030001  Voltage        n/a       Expected Value  "
                                   "-                     -\n"));
}

TEST(ListCommandTest, Json_HoldsTheSame) {
    ImageFolder const folder;
    auto const outcome = runQelshm({"list", "--json", "--image", folder.add("healthy"), "--now", now});
    EXPECT_EQ(0, outcome.status);
    auto const document = nlohmann::json::parse(outcome.output);
    EXPECT_EQ("list", document.at("verb"));
    ASSERT_EQ(8U, document.at("points").size());
    EXPECT_EQ("0x010001ffffff0013", document.at("points").at(1).at("values").at(1).at("svid"));
}

TEST(ListCommandTest, PointLine_HasIdPathTypeAndState) {
    ImageFolder const folder;
    auto const file = folder.add("alarm");
    EXPECT_THAT(
        runQelshm({"list", "--image", file}).output,
        testing::ContainsRegex("\n0x010001ff01020000  unit1/inlet1/circuit1/socket2  Schuko  +On, Alarm\n"));
    EXPECT_THAT(runQelshm({"list", "--color", "always", "--image", file}).output,
                testing::ContainsRegex("/socket2  Schuko  +\x1b\\[31mOn, Alarm\x1b\\[0m\n"));
}

TEST(ListCommandTest, ValueLine_HasIdNameNumberStateTimeAndAge) {
    ImageFolder const folder;
    auto const outcome =
        runQelshm({"list", "--color", "always", "--now", now, "--image", folder.add("warning")});
    EXPECT_THAT(outcome.output,
                testing::ContainsRegex("\n  0x010001ff01020013  Active Power   \x1b\\[33m1234.5 W\x1b\\[0m  "
                                       "\x1b\\[33mLow Warning\x1b\\[0m +2023-11-14T22:13:20Z  5.0 s\n"));
}

TEST(ListCommandTest, Lines_AreThoseOfAllPointsAndValues) {
    ImageFolder const folder;
    auto const text = runQelshm({"list", "--image", folder.add("recycled")}).output;
    auto const document =
        nlohmann::json::parse(runQelshm({"list", "--json", "--image", folder.add("recycled")}).output);
    std::size_t lines = 0;
    for (auto const& point : document.at("points")) {
        lines += 1 + point.at("values").size();
    }
    EXPECT_EQ(lines, std::count(text.begin(), text.end(), '\n'));
}

TEST(ListCommandTest, Names_LeaveOnlyWhatTheySelect) {
    ImageFolder const folder;
    auto const file = folder.add("healthy");
    EXPECT_EQ("0x0100ffffffff0000  unit1            Master                           On\n"
              "0x01010101ffff0000  unit1/sensor1.1  I2C Temperature-Humidity Sensor  On\n"
              "  0x01010101ffff0101  Humidity  40.0 %  No Error  2023-11-14T22:13:20Z  5.0 s\n",
              runQelshm({"list", "unit1", "unit1/*:hum*", "--image", file, "--now", now}).output);
    EXPECT_EQ(1, runQelshm({"list", "unit1", "unit2", "--image", file}).status);
}

TEST(ListCommandTest, NothingThere_IsAFailure) {
    auto const outcome = runQelshm({"list"});
    EXPECT_EQ(1, outcome.status);
    EXPECT_EQ("", outcome.output);
    EXPECT_EQ("qelshm: there is no shared-memory object QelSharedMemory\n", outcome.errors);
}

TEST_F(ListCommandGetTest, Point_IsShownWithItsValues) {
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

TEST_F(ListCommandGetTest, Value_IsOneLine) {
    std::string const line = "2023-11-14T22:13:20Z  unit1/sensor1.1  Humidity  40.0 %  No Error  5.0 s\n";
    for (std::vector<std::string> const& arguments :
         std::vector<std::vector<std::string>>{{"unit1/sensor1.1", "humidity"},
                                               {"unit1/sensor1.1", "0x101"},
                                               {"unit1/sensor1.1", "257"},
                                               {"0x01010101ffff0000", "Humidity"},
                                               {"unit1/sensor1.1:humidity"},
                                               {"UNIT1/sensor1.1:0x101"},
                                               {"0x01010101ffff0000:humidity"},
                                               {"unit1/sensor*:h*"},
                                               {"0x01010101ffff0101"}}) {
        auto const outcome = get(arguments);
        EXPECT_EQ(0, outcome.status);
        EXPECT_EQ(line, outcome.output);
    }
}

TEST_F(ListCommandGetTest, KeyGivenBesideTheIdOfAValue_Wins) {
    EXPECT_EQ(get({"unit1/sensor1.1", "temperature"}).output,
              get({"0x01010101ffff0101", "temperature"}).output);
}

TEST_F(ListCommandGetTest, UnknownPoint_NamesTheNearestOne) {
    auto const outcome = get({"unit1/sensor1.2"});
    EXPECT_EQ(1, outcome.status);
    EXPECT_EQ("", outcome.output);
    EXPECT_EQ("qelshm: there is no point \"unit1/sensor1.2\"; the nearest one is unit1/sensor1.1\n",
              outcome.errors);
}

TEST_F(ListCommandGetTest, UnknownId_HasNoNearestOne) {
    EXPECT_EQ("qelshm: there is no point \"0x01010101fffe0000\"\n", get({"0x01010101fffe0000"}).errors);
}

TEST_F(ListCommandGetTest, KeyOfAnId_IsHexadecimalInErrors) {
    EXPECT_EQ("qelshm: unit1/sensor1.1 has no value \"0x0013\"; it has Temperature, Humidity\n",
              get({"0x01010101ffff0013"}).errors);
}

TEST_F(ListCommandGetTest, Wildcards_SelectSeveralValues) {
    auto const outcome = get({"unit1/**:active-power"});
    EXPECT_EQ(0, outcome.status);
    EXPECT_EQ(
        "2023-11-14T22:13:20Z  unit1/inlet1                   Active Power  1234.5 W  No Error        5.0 s\n"
        "2023-11-14T22:13:20Z  unit1/inlet1/circuit1/socket1  Active Power  1234.5 W  No Error        5.0 s\n"
        "2023-11-14T22:13:20Z  unit1/inlet1/circuit1/socket2  Active Power  1234.5 W  No Error        5.0 s\n"
        "-                     unit1/inlet1/circuit1/socket3  Active Power  n/a       Expected Value  -\n",
        outcome.output);
    EXPECT_EQ(outcome.output, get({"unit1/**", "active power"}).output);
    auto const document = nlohmann::json::parse(get({"--json", "unit1/**:active-power"}).output);
    EXPECT_TRUE(document.at("point").is_null());
    ASSERT_EQ(4U, document.at("points").size());
    EXPECT_EQ(1U, document.at("points").at(3).at("values").size());
}

TEST_F(ListCommandGetTest, Wildcards_SelectSeveralPoints) {
    auto const outcome = get({"unit1/inlet1/circuit1/socket[12]"});
    EXPECT_THAT(outcome.output,
                testing::StartsWith("0x010001ff01010000  unit1/inlet1/circuit1/socket1  Schuko  On\n"));
    EXPECT_EQ(8, std::count(outcome.output.begin(), outcome.output.end(), '\n'));
}

TEST_F(ListCommandGetTest, WildcardsThatMatchNothing_NameTheNearestName) {
    auto const points = get({"unit1/inlt*"});
    EXPECT_EQ(1, points.status);
    EXPECT_EQ("qelshm: nothing matches \"unit1/inlt*\"; the nearest name is unit1/inlet1\n", points.errors);
    EXPECT_EQ(
        "qelshm: nothing matches \"unit1/sensor*:humi\"; the nearest name is unit1/sensor1.1:humidity\n",
        get({"unit1/sensor*:humi"}).errors);
    EXPECT_EQ("qelshm: unit1/sensor1.1 has no value \"humid\"; it has Temperature, Humidity\n",
              get({"unit1/sensor1.1:humid"}).errors);
    EXPECT_EQ("qelshm: \"unit1:state\" names a value already; \"1\" is one too many\n",
              get({"unit1:state", "1"}).errors);
}

TEST_F(ListCommandGetTest, UnknownKey_NamesTheOnesThatAreThere) {
    for (std::vector<std::string> const& arguments :
         std::vector<std::vector<std::string>>{{"unit1/sensor1.1", "volt"}, {"0x01010101ffff0001"}}) {
        auto const outcome = get(arguments);
        EXPECT_EQ(1, outcome.status);
        EXPECT_EQ("", outcome.output);
        EXPECT_NE(std::string::npos, outcome.errors.find("; it has Temperature, Humidity\n"))
            << outcome.errors;
    }
}

TEST_F(ListCommandGetTest, Json_HoldsTheValuesThatWereAskedFor) {
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
