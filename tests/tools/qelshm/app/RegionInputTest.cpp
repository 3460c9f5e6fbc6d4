// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tools/qelshm/app/RegionInput.h"

#include "tests/support/ForgedRegion.h"
#include "tests/tools/qelshm/ImageFolder.h"
#include "tests/tools/qelshm/SampleImages.h"

#include "inspect/image/ImageFile.h"

#include <gmock/gmock.h>

#include <thread>

namespace qel::tools {

using std::chrono::seconds;
using testing::ElementsAre;
using testing::IsEmpty;

TEST(RegionInputTest, File_IsRead) {
    test::ImageFolder const folder;
    auto const input = fileInput(folder.add("healthy"));
    EXPECT_EQ("healthy.img", input.file);
    EXPECT_EQ("", conditionProblem(input));
    EXPECT_NO_THROW(requireOpened(input));
    EXPECT_GT(input.now, test::sampleTime);
}

TEST(RegionInputTest, FileThatIsNotThere_IsAnError) {
    EXPECT_THROW(fileInput("/nowhere"), inspect::ImageFileError);
}

TEST(RegionInputTest, NoLiveObject_IsTold) {
    auto const input = liveInput();
    EXPECT_EQ("there is no shared-memory object QelSharedMemory", conditionProblem(input));
    EXPECT_THROW(requireOpened(input), NothingThereError);
}

TEST(RegionInputTest, LiveObject_IsCopied) {
    test::ForgedRegion const region;
    region.activate();
    auto const input = liveInput();
    EXPECT_EQ("", conditionProblem(input));
    region.raw().fill(0);
    EXPECT_TRUE(input.image.isActive()) << "the copy stays";
}

TEST(RegionInputTest, ConditionProblem_IsASentence) {
    EXPECT_EQ("only 100000 of 320032 bytes are there",
              conditionProblem({test::sampleImage("truncated"), {}, "x", 1}));
    EXPECT_EQ("the region is not active: its version is 255, not 32",
              conditionProblem({test::sampleImage("wiped"), {}, "x", 1}));
    inspect::RegionSource replaced;
    replaced.isReplaced = true;
    EXPECT_EQ("the object was replaced or removed while it was read; this is what was left in it",
              conditionProblem({test::sampleImage("healthy"), replaced, "", 1}));
    inspect::RegionSource refused;
    refused.opening = inspect::Opening::Unreadable;
    refused.error = EACCES;
    EXPECT_EQ("the shared-memory object QelSharedMemory cannot be read: Permission denied",
              conditionProblem({{}, refused, "", 1}));
}

TEST(RegionInputTest, Await_ReturnsAnActiveRegionAtOnce) {
    test::ForgedRegion const region;
    region.activate();
    std::vector<std::string> told;
    auto const input = awaitActive(seconds(600), [&](std::string const& text) { told.push_back(text); });
    EXPECT_EQ("", conditionProblem(input));
    EXPECT_THAT(told, IsEmpty());
}

TEST(RegionInputTest, AwaitWithoutTime_TakesWhatThereIs) {
    std::vector<std::string> told;
    auto const input = awaitActive(seconds(0), [&](std::string const& text) { told.push_back(text); });
    EXPECT_EQ(inspect::Opening::Absent, input.source.opening);
    EXPECT_THAT(told, IsEmpty());
}

TEST(RegionInputTest, Await_TellsWhatItWaitsForOnce) {
    std::vector<std::string> told;
    auto const input = awaitActive(seconds(1), [&](std::string const& text) { told.push_back(text); });
    EXPECT_EQ(inspect::Opening::Absent, input.source.opening);
    EXPECT_THAT(told, ElementsAre("waiting, there is no shared-memory object QelSharedMemory"));
}

TEST(RegionInputTest, Await_FollowsARegionThatComesAndBecomesActive) {
    std::vector<std::string> told;
    std::unique_ptr<test::ForgedRegion> region;
    auto const input = awaitActive(seconds(60), [&](std::string const& text) {
        told.push_back(text);
        if (!region) {
            region = std::make_unique<test::ForgedRegion>();
        } else {
            region->activate();
        }
    });
    EXPECT_EQ("", conditionProblem(input));
    EXPECT_THAT(told, ElementsAre("waiting, there is no shared-memory object QelSharedMemory",
                                  "waiting, the region is not active: its version is 255, not 32"));
}

TEST(RegionInputTest, TreeProblems_NameLinksThatWereNotFollowed) {
    auto const image = test::sampleImage("cyclic");
    EXPECT_THAT(
        treeProblems(image, inspect::PointTree(image)),
        ElementsAre(
            "value slot 1: next leads to value slot 0, which stands elsewhere already; not followed",
            "point slot 5: next leads to point slot 3, which stands elsewhere already; not followed"));
}

TEST(RegionInputTest, TreeProblems_OfASoundTreeAreNone) {
    auto const image = test::sampleImage("recycled");
    EXPECT_THAT(treeProblems(image, inspect::PointTree(image)), IsEmpty());
}

TEST(RegionInputTest, ManyTreeProblems_EndInACount) {
    auto const sample = test::sampleImage("full");
    auto region = std::make_unique<shm::record::Region>(sample.region());
    for (auto& point : region->points) {
        point.pos = 0;
    }
    inspect::Image const image(std::move(region), shm::REGION_SIZE);
    auto const problems = treeProblems(image, inspect::PointTree(image));
    ASSERT_EQ(11U, problems.size());
    EXPECT_EQ("and 789 more of the kind", problems.back());
}

} // namespace qel::tools
