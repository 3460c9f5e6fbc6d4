// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tools/qelshm/verbs/WhyCommand.h"

#include "tests/tools/qelshm/ImageFolder.h"
#include "tests/tools/qelshm/QelshmRun.h"
#include "tests/tools/qelshm/SampleImages.h"

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

#include <memory>
#include <utility>

namespace qel::test {

namespace {

std::string const now = std::to_string(sampleTime + 5000);

} // namespace

TEST(WhyCommandTest, UnitThatIsOn_HasNoCause) {
    ImageFolder const folder;
    auto const outcome = runQelshm({"why", "--image", folder.add("healthy")});
    EXPECT_EQ(0, outcome.status);
    EXPECT_EQ("the unit is On\n", outcome.output);
}

TEST(WhyCommandTest, LostValues_AreCountedAlthoughTheyAreNoCause) {
    ImageFolder const folder;
    auto const image = sampleImage("healthy");
    auto region = std::make_unique<shm::record::Region>(image.region());
    region->values[0].state = eStatus_Lost; // of the inlet
    auto const one =
        folder.add("one.img", inspect::Image(std::make_unique<shm::record::Region>(*region), image.size()));
    region->values[1].state = eStatus_Lost;
    auto const two = folder.add("two.img", inspect::Image(std::move(region), image.size()));
    auto const outcome = runQelshm({"why", "--image", two});
    EXPECT_EQ(0, outcome.status);
    EXPECT_EQ("the unit is On\n2 values are Lost, which does not count\n", outcome.output);
    EXPECT_EQ("unit1/inlet1 is On\n1 value is Lost, which does not count\n",
              runQelshm({"why", "unit1/inlet1", "--image", one}).output);
    EXPECT_EQ("unit1/sensor1.1 is On\n", runQelshm({"why", "unit1/sensor1.1", "--image", two}).output);
    EXPECT_EQ(2, nlohmann::json::parse(runQelshm({"why", "--json", "--image", two}).output).at("lostValues"));
}

TEST(WhyCommandTest, Alarm_IsShownWithItsWayUp) {
    ImageFolder const folder;
    auto const outcome = runQelshm({"why", "--now", now, "--image", folder.add("alarm")});
    EXPECT_EQ(1, outcome.status);
    EXPECT_EQ("the unit is Child Alarm\n"
              "unit1/inlet1/circuit1/socket2  Active Power  1234.5 W  High Alarm  5.0 s\n"
              "  unit1/inlet1/circuit1/socket2  On, Alarm    alarm of a value\n"
              "  unit1/inlet1/circuit1          Child Alarm  alarm of a child\n"
              "  unit1/inlet1                   Child Alarm  alarm of a child\n"
              "  unit1                          Child Alarm  alarm of a child\n"
              "  global                         Child Alarm  alarm of a child\n",
              outcome.output);
}

TEST(WhyCommandTest, Point_IsAskedForByItsPath) {
    ImageFolder const folder;
    auto const file = folder.add("alarm");
    EXPECT_EQ("unit1/sensor1.1 is On\n", runQelshm({"why", "unit1/sensor1.1", "--image", file}).output);
    auto const outcome = runQelshm({"why", "0x010001ff01020000", "--json", "--image", file});
    EXPECT_EQ(1, outcome.status);
    auto const document = nlohmann::json::parse(outcome.output);
    EXPECT_EQ("unit1/inlet1/circuit1/socket2", document.at("point"));
    ASSERT_EQ(1U, document.at("causes").size());
    EXPECT_EQ("value-alarm", document.at("causes").at(0).at("chain").at(0).at("rule"));
    EXPECT_EQ(1, runQelshm({"why", "unit9", "--image", file}).status);
}

TEST(WhyCommandTest, StateThatWasNotPropagated_IsTold) {
    ImageFolder const folder;
    EXPECT_THAT(runQelshm({"why", "--image", folder.add("unfolded")}).output,
                testing::HasSubstr("stored state On; propagation results in Child Alarm\n"));
}

} // namespace qel::test
