// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tools/qelshm/verbs/CheckCommand.h"

#include "tests/support/ForgedRegion.h"
#include "tests/tools/qelshm/ImageFolder.h"
#include "tests/tools/qelshm/NameOfNobody.h"
#include "tests/tools/qelshm/QelshmRun.h"
#include "tests/tools/qelshm/SampleImages.h"

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

#include <sys/stat.h>
#include <unistd.h>

#include <limits>
#include <memory>
#include <utility>

namespace qel::test {

namespace {

constexpr char const* objectFile = "/dev/shm/QelSharedMemory";
constexpr uid_t nobody = 65534;

} // namespace

TEST(CheckCommandTest, SoundRegion_HasNothing) {
    ImageFolder const folder;
    auto const outcome = runQelshm({"check", "--image", folder.add("recycled")});
    EXPECT_EQ(0, outcome.status);
    EXPECT_EQ("No damage or inconsistencies\n", outcome.output);
}

TEST(CheckCommandTest, Damage_IsNamedWithItsPlaceAndMeaning) {
    ImageFolder const folder;
    auto const file = folder.add("wrong-position");
    auto const outcome = runQelshm({"check", "--image", file});
    EXPECT_EQ(1, outcome.status);
    EXPECT_EQ("damage  pos-mismatch  point 2  pos  found slot 7  expected slot 2  byte 96\n"
              "pos-mismatch: a point's pos is not the position of its slot\n",
              outcome.output);
    auto const json = runQelshm({"check", "--json", "--image", file});
    EXPECT_EQ(1, json.status);
    auto const document = nlohmann::json::parse(json.output);
    ASSERT_EQ(1U, document.at("findings").size());
    EXPECT_EQ("pos-mismatch", document.at("findings").at(0).at("code"));
    EXPECT_EQ(7, document.at("findings").at(0).at("found").at("number"));
    EXPECT_EQ(96, document.at("findings").at(0).at("offset"));
}

TEST(CheckCommandTest, Note_IsNoDamage) {
    ImageFolder const folder;
    auto const outcome = runQelshm({"check", "--image", folder.add("unfolded")});
    EXPECT_EQ(0, outcome.status);
    EXPECT_THAT(outcome.output, testing::StartsWith("note  state-not-folded"));
}

TEST(CheckCommandTest, TimesThatCannotBe_AreFindings) {
    ImageFolder const folder;
    auto const image = sampleImage("healthy");
    auto region = std::make_unique<shm::record::Region>(image.region());
    region->values[0].at = std::numeric_limits<std::uint64_t>::max();
    region->values[1].at = sampleTime + 3600000;
    auto const file = folder.add("times.img", inspect::Image(std::move(region), image.size()));
    auto const outcome = runQelshm({"check", "--image", file, "--now", std::to_string(sampleTime)});
    EXPECT_EQ(1, outcome.status);
    EXPECT_THAT(outcome.output,
                testing::ContainsRegex(
                    "^damage  time-out-of-range  value 0 of point 1  at  found "
                    "18446744073709551615  expected ms since 1970, or 0 for never +byte 38408\n"
                    "note    time-ahead         value 1 of point 1  at  found "
                    "1700003600000 +expected ms since 1970 up to now, or 0 for never  byte 38440\n"));
    EXPECT_THAT(runQelshm({"check", "--image", file}).output, testing::Not(testing::HasSubstr("time-ahead")))
        << "by now it is over";
}

TEST(CheckCommandTest, LiveObjectOfAWriter_HasNothing) {
    ForgedRegion const region;
    auto const outcome = runQelshm({"check"});
    EXPECT_EQ(0, outcome.status);
    EXPECT_EQ("No damage or inconsistencies\n", outcome.output);
}

TEST(CheckCommandTest, LiveObjectOfSomebodyElse_IsNamedBeforeTheDamageOfTheRegion) {
    ForgedRegion const region;
    region.point(0, sample::unit);
    region.devices({0});
    region.raw().set<std::uint32_t>(field::pos, 7);
    ASSERT_EQ(0, ::chmod(objectFile, 0664));
    if (::chown(objectFile, 3999999999, 3999999999) != 0) {
        GTEST_SKIP() << "there is no other user";
    }
    auto const outcome = runQelshm({"check"});
    EXPECT_EQ(1, outcome.status);
    EXPECT_THAT(outcome.output, testing::ContainsRegex(
                                    "^damage  owner-not-expected  object   owner  found 3999999999 +expected "
                                    "root \\(0\\)\n"
                                    "damage  mode-too-loose +object   mode   found rw-rw-r-- +expected write "
                                    "permission for the owner only\n"
                                    "damage  pos-mismatch +point 0 "));
}

TEST(CheckCommandTest, LiveObjectOfTheHardwareManagersUser_HasNothing) {
    ForgedRegion const region;
    if (::chown(objectFile, nobody, nobody) != 0) {
        GTEST_SKIP() << "there is no other user";
    }
    EXPECT_EQ(1, runQelshm({"check"}).status) << "nobody owns the bus name";
    NameOfNobody const name;
    ASSERT_TRUE(name.isOwned());
    auto const outcome = runQelshm({"check"});
    EXPECT_EQ(0, outcome.status);
    EXPECT_EQ("No damage or inconsistencies\n", outcome.output);
    EXPECT_EQ(0, ::chown(objectFile, nobody - 1, nobody));
    EXPECT_THAT(runQelshm({"check"}).output,
                testing::HasSubstr("expected root or the hardware manager's user"));
}

TEST(CheckCommandTest, NothingThere_IsAFailure) {
    EXPECT_EQ(1, runQelshm({"check"}).status);
}

} // namespace qel::test
