// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tools/qelshm/verbs/ImageCommand.h"

#include "tests/support/ForgedRegion.h"
#include "tests/tools/qelshm/ImageFolder.h"
#include "tests/tools/qelshm/QelshmRun.h"
#include "tests/tools/qelshm/SampleImages.h"

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

namespace qel::test {

TEST(ImageCommandTest, Warnings_AreToldAndMakeStatusOne) {
    ImageFolder const folder;
    auto const outcome = runQelshm({"tree", "--paths", "--image", folder.add("wrong-position")});
    EXPECT_EQ(1, outcome.status);
    EXPECT_THAT(outcome.output, testing::EndsWith("group1\n"));
    EXPECT_EQ("qelshm: warning: point slot 2: pos of unit1/inlet1/circuit1 is 7\n", outcome.errors);
}

TEST(ImageCommandTest, Warnings_StandInTheDocumentToo) {
    ImageFolder const folder;
    auto const outcome = runQelshm({"tree", "--json", "--image", folder.add("bad-version")});
    EXPECT_EQ(1, outcome.status);
    auto const document = nlohmann::json::parse(outcome.output);
    EXPECT_EQ((std::vector<std::string>{"the region is not active: its version is 33, not 32"}),
              document.at("warnings").get<std::vector<std::string>>());
    EXPECT_EQ("inactive", document.at("source").at("condition"));
}

TEST(ImageCommandTest, ShortImage_IsShownAsFarAsItGoes) {
    ImageFolder const folder;
    auto const outcome = runQelshm({"list", "--image", folder.add("truncated")});
    EXPECT_EQ(1, outcome.status);
    EXPECT_EQ("qelshm: warning: the region is too short: 100000 of 320032 bytes\n", outcome.errors);
}

TEST(ImageCommandTest, NoSuchFile_IsAFailure) {
    auto const outcome = runQelshm({"list", "--image", "/nowhere/saved.img"});
    EXPECT_EQ(1, outcome.status);
    EXPECT_EQ("qelshm: cannot read /nowhere/saved.img: No such file or directory\n", outcome.errors);
}

TEST(ImageCommandTest, Now_ReplacesTheClock) {
    ImageFolder const folder;
    auto const outcome = runQelshm({"tree", "--json", "--image", folder.add("one-device"), "--now", "12345"});
    EXPECT_EQ(12345, nlohmann::json::parse(outcome.output).at("now"));
}

TEST(ImageCommandTest, LiveObject_IsTheSource) {
    ForgedRegion const region;
    region.point(0, sample::unit);
    region.devices({0});
    region.activate();
    auto const outcome = runQelshm({"tree", "--json"});
    EXPECT_EQ(0, outcome.status);
    EXPECT_EQ(nlohmann::json::parse(R"({"kind": "live", "name": "QelSharedMemory", "condition": "active"})"),
              nlohmann::json::parse(outcome.output).at("source"));
}

} // namespace qel::test
