// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tools/qelshm/verbs/DiffCommand.h"

#include "tests/support/ForgedRegion.h"
#include "tests/tools/qelshm/ImageFolder.h"
#include "tests/tools/qelshm/QelshmRun.h"
#include "tests/tools/qelshm/SampleImages.h"

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

namespace qel::test {

TEST(DiffCommandTest, SameImage_HasNoDifference) {
    ImageFolder const folder;
    auto const file = folder.add("healthy");
    auto const outcome = runQelshm({"diff", file, file});
    EXPECT_EQ(0, outcome.status);
    EXPECT_EQ("", outcome.output);
}

TEST(DiffCommandTest, Differences_AreLines) {
    ImageFolder const folder;
    auto const outcome = runQelshm({"diff", folder.add("healthy"), folder.add("alarm")});
    EXPECT_EQ(1, outcome.status);
    EXPECT_THAT(outcome.output, testing::ContainsRegex("^global state +On +Child Alarm\n"));
    EXPECT_THAT(outcome.output,
                testing::ContainsRegex(
                    "\nvalue state +unit1/inlet1/circuit1/socket2 +Active Power +No Error +High Alarm\n"));
}

TEST(DiffCommandTest, PointsThatCameOrWent_AreToldWithTheirSlots) {
    ImageFolder const folder;
    auto const outcome = runQelshm({"diff", folder.add("healthy"), folder.add("recycled")});
    EXPECT_THAT(outcome.output, testing::ContainsRegex("point removed +group1 +slot [0-9]+ +-\n"));
}

TEST(DiffCommandTest, NumbersThatLookTheSame_AreToldApart) {
    ImageFolder const folder;
    auto const image = sampleImage("healthy");
    auto region = std::make_unique<shm::record::Region>(image.region());
    region->values[0].value += 0.001;
    auto const other = folder.add("other.img", inspect::Image(std::move(region), image.size()));
    auto const outcome = runQelshm({"diff", folder.add("healthy"), other});
    EXPECT_THAT(outcome.output, testing::ContainsRegex("^number  unit1/inlet1  Voltage  230.1  230.101"));
}

TEST(DiffCommandTest, LiveObject_IsASide) {
    ImageFolder const folder;
    auto const file = folder.add("wiped");
    EXPECT_EQ(1, runQelshm({"diff", file, "live"}).status) << "there is none";
    ForgedRegion const region;
    EXPECT_EQ(0, runQelshm({"diff", file, "live"}).status);
    region.activate();
    auto const document = nlohmann::json::parse(runQelshm({"diff", "--json", file, "live"}).output);
    EXPECT_EQ("live", document.at("after").at("kind"));
    EXPECT_EQ("active", document.at("differences").at(0).at("kind"));
    EXPECT_EQ(true, document.at("differences").at(0).at("after").at("value"));
}

} // namespace qel::test
