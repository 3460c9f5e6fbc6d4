// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tools/qelshm/app/RegionInput.h"

#include "tools/qelshm/app/CaptureTime.h"

#include "tests/support/ForgedRegion.h"
#include "tests/tools/qelshm/ImageFolder.h"
#include "tests/tools/qelshm/SampleCapture.h"
#include "tests/tools/qelshm/SampleImages.h"

#include "inspect/image/FileDescriptor.h"
#include "inspect/image/ImageFile.h"
#include "inspect/naming/StateClass.h"

#include <gmock/gmock.h>

#include <unistd.h>

#include <filesystem>
#include <functional>
#include <memory>

namespace qel::tools {

namespace {

using inspect::Condition;
using testing::ElementsAre;
using testing::IsEmpty;

std::string problemOf(Condition condition) {
    inspect::RegionStatus status;
    status.condition = condition;
    status.size = 4096;
    return conditionProblem(status);
}

class RegionInputWaitTest : public testing::Test {
protected:
    RegionInput open(unsigned wait) {
        QelshmOptions options;
        options.wait = wait;
        return openInput(options, [&](std::string const& text) {
            told.push_back(text);
            onTold();
        });
    }

    std::vector<std::string> told;
    std::function<void()> onTold = [] {
    };
};

} // namespace

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

TEST(RegionInputTest, Capture_IsReadAtItsLastSample) {
    test::ImageFolder const folder;
    auto const input = fileInput(test::sampleCapture());
    ASSERT_TRUE(input.capture);
    EXPECT_EQ(test::captureStart + 60000, input.capture->time);
    EXPECT_EQ(input.capture->time, input.now) << "ages count from there";
    EXPECT_EQ(test::captureStart, input.capture->first);
    EXPECT_EQ(51U, input.capture->samples);
    EXPECT_EQ("capture night.rec at 2023-11-14T22:14:20Z", sourceText(input));
}

TEST(RegionInputTest, CaptureWithAnyName_IsReadAtAMoment) {
    test::ImageFolder const folder;
    std::filesystem::rename(test::sampleCapture(), "saved.img");
    EXPECT_EQ("capture saved.img at 2023-11-14T22:13:45Z", sourceText(fileInput("saved.img", "+25s")));
    EXPECT_EQ(inspect::StateClass::Alarm,
              inspect::classOf(fileInput("saved.img", "-35s").image.root().state));
    EXPECT_EQ(inspect::StateClass::Good, inspect::classOf(fileInput("saved.img", "+5s").image.root().state));
    EXPECT_EQ(test::captureStart + 39000, fileInput("saved.img", "2023-11-14T22:14:05Z").now)
        << "within the gap";
    EXPECT_THROW(fileInput("saved.img", "-2h"), CaptureTimeError);
}

TEST(RegionInputTest, MomentOfAnImage_IsAnError) {
    test::ImageFolder const folder;
    try {
        fileInput(folder.add("healthy"), "-10m");
        FAIL() << "no error";
    } catch (CaptureTimeError const& error) {
        EXPECT_STREQ("--at needs a capture of record; healthy.img is an image of a single moment",
                     error.what());
    }
}

TEST(RegionInputTest, DamagedCapture_IsToldAndShown) {
    test::ImageFolder const folder;
    test::sampleCapture();
    std::filesystem::resize_file("night.rec", std::filesystem::file_size("night.rec") - 1);
    QelshmOptions options;
    options.image = "night.rec";
    std::vector<std::string> told;
    auto const input = openInput(options, [&](std::string const& text) { told.push_back(text); });
    EXPECT_EQ(50U, input.capture->samples);
    EXPECT_THAT(told,
                ElementsAre(testing::ContainsRegex("^warning: cannot read night.rec: the sample at byte "
                                                   "[0-9]+ is cut off; 50 samples before it are complete$")));
}

TEST(RegionInputTest, CaptureInAPipe_IsAnError) {
    int ends[2] = {-1, -1};
    ASSERT_EQ(0, ::pipe(ends));
    inspect::FileDescriptor const output(ends[0]);
    {
        inspect::FileDescriptor const input(ends[1]);
        EXPECT_EQ(0, inspect::writeAll(input.number(), "QELSHREC and more"));
    }
    auto const name = "/dev/fd/" + std::to_string(output.number());
    try {
        fileInput(name);
        FAIL() << "no error";
    } catch (CaptureTimeError const& error) {
        EXPECT_EQ(name + " is a capture in a pipe; save it to a file first", error.what());
    }
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
    EXPECT_EQ("the region is too short: 100000 of 320032 bytes",
              conditionProblem({test::sampleImage("truncated"), {}, "x", 1}));
    EXPECT_EQ("the region is not active: its version is 255, not 32",
              conditionProblem({test::sampleImage("wiped"), {}, "x", 1}));
    inspect::RegionSource replaced;
    replaced.isReplaced = true;
    EXPECT_EQ("the shared-memory object QelSharedMemory was replaced or removed during the read",
              conditionProblem({test::sampleImage("healthy"), replaced, "", 1}));
    inspect::RegionSource refused;
    refused.opening = inspect::Opening::Unreadable;
    refused.error = EACCES;
    EXPECT_EQ("cannot read the shared-memory object QelSharedMemory: Permission denied",
              conditionProblem({{}, refused, "", 1}));
}

TEST(RegionInputTest, ConditionProblemOfAStatus_IsTheSame) {
    EXPECT_EQ("there is no shared-memory object QelSharedMemory", problemOf(Condition::Absent));
    EXPECT_EQ("the region is too short: 4096 of 320032 bytes", problemOf(Condition::TooShort));
    EXPECT_EQ("the region is not active: its version is 255, not 32", problemOf(Condition::Inactive));
}

TEST(RegionInputTest, ConditionProblemOfAReadableRegion_IsNone) {
    EXPECT_EQ("", problemOf(Condition::Active));
    EXPECT_EQ("", problemOf(Condition::Silent));
}

TEST_F(RegionInputWaitTest, ActiveRegion_IsOpenedAtOnce) {
    test::ForgedRegion const region;
    region.activate();
    EXPECT_EQ("", conditionProblem(open(600)));
    EXPECT_THAT(told, IsEmpty());
}

TEST_F(RegionInputWaitTest, WithoutTime_TakesWhatThereIs) {
    EXPECT_EQ(inspect::Opening::Absent, open(0).source.opening);
    EXPECT_THAT(told, IsEmpty());
}

TEST_F(RegionInputWaitTest, LongerWait_IsToldOnce) {
    EXPECT_EQ(inspect::Opening::Absent, open(1).source.opening);
    EXPECT_THAT(told, ElementsAre("waiting: there is no shared-memory object QelSharedMemory"));
}

TEST_F(RegionInputWaitTest, RegionThatComesAndBecomesActive_IsOpened) {
    std::unique_ptr<test::ForgedRegion> region;
    onTold = [&] {
        if (!region) {
            region = std::make_unique<test::ForgedRegion>();
        } else {
            region->activate();
        }
    };
    EXPECT_EQ("", conditionProblem(open(60)));
    EXPECT_THAT(told, ElementsAre("waiting: there is no shared-memory object QelSharedMemory",
                                  "waiting: the region is not active: its version is 255, not 32"));
}

TEST(RegionInputTest, TreeProblems_NameLinksThatWereNotFollowed) {
    auto const image = test::sampleImage("cyclic");
    EXPECT_THAT(
        treeProblems(image, inspect::PointTree(image)),
        ElementsAre(
            "value slot 1: next links to value slot 0, which is linked elsewhere already; link ignored",
            "point slot 5: next links to point slot 3, which is linked elsewhere already; link ignored"));
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
    EXPECT_EQ("and 789 more problems", problems.back());
}

} // namespace qel::tools
