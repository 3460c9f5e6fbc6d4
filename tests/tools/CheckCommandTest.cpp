#include "tools/qelshm/CheckCommand.h"

#include "tests/tools/ImageFolder.h"
#include "tests/tools/QelshmRun.h"

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

namespace qel::test {

TEST(CheckCommandTest, SoundRegion_HasNothing) {
    ImageFolder const folder;
    auto const outcome = runQelshm({"check", "--image", folder.add("recycled")});
    EXPECT_EQ(0, outcome.status);
    EXPECT_EQ("Nothing: the region is sound\n", outcome.output);
}

TEST(CheckCommandTest, Damage_IsNamedWithItsPlaceAndMeaning) {
    ImageFolder const folder;
    auto const file = folder.add("wrong-position");
    auto const outcome = runQelshm({"check", "--image", file});
    EXPECT_EQ(1, outcome.status);
    EXPECT_EQ("damage  pos-mismatch  point 2  pos  found 7  expected 2  byte 96\n"
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

TEST(CheckCommandTest, NothingThere_IsAFailure) {
    EXPECT_EQ(1, runQelshm({"check"}).status);
}

} // namespace qel::test
