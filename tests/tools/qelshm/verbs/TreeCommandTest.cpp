// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tools/qelshm/verbs/TreeCommand.h"

#include "tests/tools/qelshm/ImageFolder.h"
#include "tests/tools/qelshm/QelshmRun.h"
#include "tests/tools/qelshm/SampleImages.h"

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

#include <algorithm>

namespace qel::test {

namespace {

class TreeCommandTest : public testing::Test {
protected:
    QelshmOutcome tree(std::vector<std::string> arguments, std::string const& sample = "healthy") {
        auto const file = folder_.add(sample);
        arguments.insert(arguments.begin(),
                         {"tree", "--image", file, "--now", std::to_string(sampleTime + 5000)});
        return runQelshm(arguments);
    }

    ImageFolder const folder_;
};

long linesIn(std::string const& text) {
    return std::count(text.begin(), text.end(), '\n');
}

} // namespace

TEST_F(TreeCommandTest, Points_AreIndentedLines) {
    auto const outcome = tree({"--depth", "3"});
    EXPECT_EQ(0, outcome.status);
    EXPECT_EQ("unit1                      unit     Master                           On\n"
              "  unit1/inlet1             inlet    1P                               On\n"
              "    unit1/inlet1/circuit1  circuit  16A;C                            On\n"
              "  unit1/sensor1.1          sensor   I2C Temperature-Humidity Sensor  On\n"
              "group1                     group    SG                               On\n",
              outcome.output);
}

TEST_F(TreeCommandTest, Values_StandBelowTheirPoints) {
    auto const outcome = tree({"--values", "--depth", "2"});
    EXPECT_THAT(outcome.output, testing::HasSubstr("  unit1/inlet1     inlet   1P"));
    EXPECT_THAT(outcome.output, testing::HasSubstr("\n    Voltage        230.1 V   No Error  5.0 s\n"));
}

TEST_F(TreeCommandTest, Depth_LeavesDeeperLevelsOut) {
    EXPECT_EQ("unit1\ngroup1\n", tree({"--paths", "--depth", "1"}).output);
    EXPECT_EQ("unit1\nunit1/inlet1\nunit1/sensor1.1\ngroup1\n", tree({"--paths", "--depth", "2"}).output);
}

TEST_F(TreeCommandTest, Names_LeaveOnlyWhatTheySelect) {
    EXPECT_EQ("unit1/inlet1/circuit1/socket1\nunit1/inlet1/circuit1/socket2\nunit1/inlet1/circuit1/socket3\n",
              tree({"--paths", "unit1/**/socket*"}).output);
    EXPECT_EQ("  unit1/sensor1.1  sensor  I2C Temperature-Humidity Sensor  On\n"
              "    Humidity  40.0 %  No Error  5.0 s\n",
              tree({"--values", "unit1/sensor1.1:humidity"}).output);
    EXPECT_EQ(1U, nlohmann::json::parse(tree({"--json", "group1"}).output).at("points").size());
    EXPECT_EQ(1, tree({"unit9"}).status);
}

TEST_F(TreeCommandTest, Paths_ArePrintedAlone) {
    EXPECT_EQ("unit1\nunit1/inlet1\nunit1/inlet1/circuit1\nunit1/inlet1/circuit1/socket1\n"
              "unit1/inlet1/circuit1/socket2\nunit1/inlet1/circuit1/socket3\nunit1/sensor1.1\ngroup1\n",
              tree({"--paths"}).output);
}

TEST_F(TreeCommandTest, FullRegion_ShowsEveryPointAndValue) {
    EXPECT_EQ(800, linesIn(tree({}, "full").output));
    EXPECT_EQ(9600, linesIn(tree({"--values"}, "full").output));
    auto const document = nlohmann::json::parse(tree({"--values", "--json"}, "full").output);
    EXPECT_EQ(800U, document.at("points").size());
    EXPECT_EQ(11U, document.at("points").back().at("values").size());
}

TEST_F(TreeCommandTest, Json_HasValuesOnDemandOnly) {
    auto const without = nlohmann::json::parse(tree({"--json"}).output);
    EXPECT_FALSE(without.at("points").at(1).contains("values"));
    auto const with = nlohmann::json::parse(tree({"--json", "--values"}).output);
    EXPECT_EQ(3U, with.at("points").at(1).at("values").size());
    EXPECT_EQ("unit1", with.at("points").at(1).at("parent"));
    EXPECT_TRUE(with.at("points").at(0).at("parent").is_null());
}

TEST_F(TreeCommandTest, InactiveRegion_IsShownWithAWarning) {
    auto const outcome = tree({"--paths"}, "inactive");
    EXPECT_EQ(1, outcome.status);
    EXPECT_EQ(8, linesIn(outcome.output));
    EXPECT_EQ("qelshm: warning: the region is not active: its version is 255, not 32\n", outcome.errors);
}

TEST_F(TreeCommandTest, Color_MarksStates) {
    auto const outcome = tree({"--values", "--color", "always"}, "alarm");
    EXPECT_THAT(outcome.output, testing::HasSubstr("\x1b[31mOn, Alarm\x1b[0m\n"));
    EXPECT_THAT(outcome.output, testing::ContainsRegex("\x1b\\[31mHigh Alarm\x1b\\[0m +5.0 s\n"));
}

} // namespace qel::test
