// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "inspect/capture/RotatingCapture.h"

#include "inspect/capture/CaptureTimeline.h"

#include "tests/inspect/capture/CaptureFixture.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

namespace qel::inspect {

namespace {

using testing::ElementsAre;
using testing::HasSubstr;

using RotatingCaptureTest = test::CaptureTest;

/// Random images of a whole region, 100 ms apart, from 1000 on.
std::vector<Image> append(RotatingCapture& sut, std::size_t count) {
    auto images = test::randomImages(count, 12);
    for (std::size_t index = 0; index < count; ++index) {
        sut.append(1000 + index * 100, images[index]);
    }
    return images;
}

} // namespace

TEST_F(RotatingCaptureTest, WithoutBounds_IsOneFile) {
    RotatingCapture sut(path("x.rec"), {});
    append(sut, 10);
    sut.close();
    EXPECT_THAT(sut.files(), ElementsAre(path("x.rec")));
    CaptureTimeline const timeline(path("x.rec"));
    EXPECT_EQ(10U, timeline.samples());
    EXPECT_EQ(1000U, timeline.first());
    EXPECT_EQ(1900U, timeline.last());
    EXPECT_EQ(std::filesystem::file_size(path("x.rec")), sut.bytes());
}

TEST_F(RotatingCaptureTest, EveryFile_IsAWholeCaptureWithinItsBound) {
    constexpr std::uint64_t most = 6000;
    RotatingCapture sut(path("x.rec"), {most, 1000});
    auto const images = append(sut, 40);
    sut.close();
    ASSERT_GT(sut.files().size(), 3U);
    std::uint64_t next = 1000;
    for (auto const& file : sut.files()) {
        CaptureTimeline const timeline(file);
        EXPECT_EQ("", timeline.damage());
        EXPECT_EQ(next, timeline.first()) << file;
        EXPECT_TRUE(std::filesystem::file_size(file) <= most || timeline.samples() == 1);
        forEachSample(
            timeline, timeline.first(), timeline.last(), [&](CaptureReader const& reader, auto /*next*/) {
                test::expectSame(images.at(static_cast<std::size_t>((reader.moment() - 1000) / 100)),
                                 reader.region().image());
            });
        next = timeline.last() + 100;
    }
    EXPECT_EQ(1000U + 40 * 100, next) << "every sample is in a file";
    EXPECT_EQ(40U, sut.samples());
}

TEST_F(RotatingCaptureTest, OldestFile_IsRemoved) {
    RotatingCapture sut(path("x.rec"), {6000, 3});
    append(sut, 60);
    EXPECT_THAT(sut.files(), ElementsAre(path("x.2.rec"), path("x.1.rec"), path("x.rec")));
    EXPECT_FALSE(std::filesystem::exists(path("x.3.rec")));
    EXPECT_EQ(6900U, CaptureTimeline(path("x.rec")).last());
}

TEST_F(RotatingCaptureTest, SingleFile_BeginsAnew) {
    RotatingCapture sut(path("x.rec"), {6000, 1});
    append(sut, 60);
    EXPECT_THAT(sut.files(), ElementsAre(path("x.rec")));
    EXPECT_EQ(6900U, CaptureTimeline(path("x.rec")).last());
}

TEST_F(RotatingCaptureTest, FileThatExists_IsRefused) {
    fill(path("x.1.rec"), "somebody's");
    EXPECT_EQ("cannot record to " + path("x.1.rec") + ": File exists", problemOf([&] {
                  RotatingCapture(path("x.rec"), {6000, 3});
              }));
    EXPECT_EQ("(none)", problemOf([&] { RotatingCapture(path("x.rec"), {6000, 1}); }));
}

TEST_F(RotatingCaptureTest, FileThatComesLater_IsNotOverwritten) {
    RotatingCapture sut(path("x.rec"), {6000, 5});
    fill(path("x.1.rec"), "somebody's");
    EXPECT_EQ("cannot record to " + path("x.1.rec") + ": File exists", problemOf([&] { append(sut, 40); }));
    EXPECT_EQ("somebody's", content(path("x.1.rec")));
    EXPECT_EQ("", CaptureTimeline(path("x.rec")).damage());
}

TEST_F(RotatingCaptureTest, FileThatWasTakenAway_IsNotMissed) {
    RotatingCapture sut(path("x.rec"), {6000, 3});
    append(sut, 20);
    std::filesystem::remove(path("x.1.rec"));
    auto const images = test::randomImages(40, 1);
    for (std::size_t index = 0; index < images.size(); ++index) {
        sut.append(10000 + index * 100, images[index]);
    }
    sut.close();
    EXPECT_EQ(13900U, CaptureTimeline(path("x.rec")).last());
}

TEST_F(RotatingCaptureTest, FullDisk_LeavesWhatWasWritten) {
    RotatingCapture sut(path("x.rec"), {});
    {
        test::SizeLimit const limit(8000);
        EXPECT_THAT(problemOf([&] { append(sut, 40); }),
                    HasSubstr("cannot record to " + path("x.rec") + ": "));
    }
    CaptureTimeline const timeline(path("x.rec"));
    EXPECT_EQ("", timeline.damage());
    EXPECT_EQ(sut.samples(), timeline.samples());
    EXPECT_GT(sut.samples(), 0U);
}

TEST(CaptureNameTest, Part_StandsBeforeTheExtension) {
    EXPECT_EQ("x.3.rec", captureName("x.rec", "3"));
    EXPECT_EQ("/var/log/unit.a.1.rec", captureName("/var/log/unit.a.rec", "1"));
    EXPECT_EQ("dir.d/x.1", captureName("dir.d/x", "1"));
}

} // namespace qel::inspect
