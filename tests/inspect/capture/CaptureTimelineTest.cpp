// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "inspect/capture/CaptureTimeline.h"

#include "inspect/capture/CaptureWriter.h"

#include "tests/inspect/capture/CaptureFixture.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <limits>
#include <vector>

namespace qel::inspect {

namespace {

using From = CaptureMoment::From;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Optional;

constexpr std::uint64_t start = 1'700'000'000'000;

class CaptureTimelineTest : public test::CaptureTest {
protected:
    /// Samples at these times after the start.
    void record(std::vector<std::uint64_t> const& times) {
        images_ = test::randomImages(times.size(), 4);
        CaptureWriter writer(path(), start);
        for (std::size_t index = 0; index < times.size(); ++index) {
            writer.append(times[index], images_[index]);
        }
    }

    std::vector<Image> images_;
};

} // namespace

TEST_F(CaptureTimelineTest, FirstAndLast_AreTimesOfSamples) {
    record({40, 1040, 5000});
    CaptureTimeline const sut(path());
    EXPECT_EQ(start + 40, sut.first());
    EXPECT_EQ(start + 5000, sut.last());
    EXPECT_EQ(3U, sut.samples());
    EXPECT_EQ("", sut.damage());
}

TEST_F(CaptureTimelineTest, At_IsTheLastSampleUpToATime) {
    record({0, 1000, 1000, 2500, 9000});
    CaptureTimeline const sut(path());
    std::vector<std::size_t> const expected{0, 0, 2, 2, 3, 4};
    std::vector<std::uint64_t> const times{0, 999, 1000, 2499, 8999, 9000};
    for (std::size_t index = 0; index < times.size(); ++index) {
        auto const sample = sut.at(start + times[index]);
        test::expectSame(images_[expected[index]], sample.image);
        EXPECT_LE(sample.time, start + times[index]);
    }
    EXPECT_EQ(start + 2500, sut.at(start + 8999).time);
}

TEST_F(CaptureTimelineTest, TimeOf_CountsFromClockStartAndEnd) {
    record({100, 60100});
    CaptureTimeline const sut(path());
    EXPECT_THAT(sut.timeOf({From::Clock, start + 100}), Optional(start + 100));
    EXPECT_THAT(sut.timeOf({From::Start, 60000}), Optional(start + 60100));
    EXPECT_THAT(sut.timeOf({From::End, 10000}), Optional(start + 50100));
    EXPECT_THAT(sut.timeOf({}), Optional(start + 60100)) << "the last sample";
}

TEST_F(CaptureTimelineTest, TimeOf_MomentOutsideIsNone) {
    record({100, 60100});
    CaptureTimeline const sut(path());
    for (auto const& moment :
         {CaptureMoment{From::Clock, start + 99}, CaptureMoment{From::Clock, start + 60101},
          CaptureMoment{From::Start, 60001}, CaptureMoment{From::End, 60001}}) {
        EXPECT_EQ(std::nullopt, sut.timeOf(moment));
    }
}

TEST_F(CaptureTimelineTest, UnboundedTimeOf_GoesBeyondTheSamples) {
    record({100, 60100});
    CaptureTimeline const sut(path());
    constexpr auto greatest = std::numeric_limits<std::uint64_t>::max();
    EXPECT_EQ(7U, sut.unboundedTimeOf({From::Clock, 7}));
    EXPECT_EQ(start + 90100, sut.unboundedTimeOf({From::Start, 90000}));
    EXPECT_EQ(start - 29900, sut.unboundedTimeOf({From::End, 90000}));
    EXPECT_EQ(greatest, sut.unboundedTimeOf({From::Start, greatest}));
    EXPECT_EQ(0U, sut.unboundedTimeOf({From::End, greatest}));
}

TEST_F(CaptureTimelineTest, CutOff_EndsWithTheLastCompleteSample) {
    record({0, 1000, 2000});
    auto const whole = content(path());
    fill(path(), whole.substr(0, whole.size() - 1));
    CaptureTimeline const sut(path());
    EXPECT_EQ(2U, sut.samples());
    EXPECT_EQ(start + 1000, sut.last());
    EXPECT_THAT(sut.damage(), HasSubstr("is cut off; 2 samples before it are complete"));
    test::expectSame(images_[1], sut.at(sut.last()).image);
    std::vector<std::uint64_t> times;
    forEachSample(sut, sut.first(), sut.last(),
                  [&](CaptureReader const& reader, auto /*next*/) { times.push_back(reader.time()); });
    EXPECT_THAT(times, ElementsAre(0, 1000));
}

TEST_F(CaptureTimelineTest, WithoutSamples_IsRefused) {
    record({});
    EXPECT_EQ("cannot read " + path() + ": the capture holds no sample",
              problemOf([&] { CaptureTimeline const sut(path()); }));
    fill(path(), captureHeader(0) + "rest");
    EXPECT_THAT(problemOf([&] { CaptureTimeline const sut(path()); }), HasSubstr("is cut off; 0 samples"));
}

TEST_F(CaptureTimelineTest, Interval_IsTheUsualOne) {
    record({0, 1000, 2001, 2999, 4000, 100000, 101000});
    CaptureTimeline const sut(path());
    EXPECT_NEAR(1000.0, static_cast<double>(sut.interval()), 5.0);
    EXPECT_NEAR(4000.0, static_cast<double>(sut.longestPause()), 20.0);
}

TEST_F(CaptureTimelineTest, SingleSample_HasNoInterval) {
    record({7});
    CaptureTimeline const sut(path());
    EXPECT_EQ(0U, sut.interval());
    EXPECT_EQ(1000U, sut.longestPause());
}

TEST_F(CaptureTimelineTest, ForEachSample_BeginsWithTheSampleThatHolds) {
    record({0, 1000, 2000, 3000, 4000});
    CaptureTimeline const sut(path());
    std::vector<std::uint64_t> times;
    std::vector<std::optional<std::uint64_t>> nexts;
    forEachSample(sut, start + 1500, start + 3000,
                  [&](CaptureReader const& reader, std::optional<std::uint64_t> next) {
                      times.push_back(reader.time());
                      nexts.push_back(next);
                  });
    EXPECT_THAT(times, ElementsAre(1000, 2000, 3000));
    EXPECT_THAT(nexts, ElementsAre(Optional(start + 2000), Optional(start + 3000), std::nullopt));
}

TEST_F(CaptureTimelineTest, ReplacedWhileItIsRead_StaysTheSameCapture) {
    record({0, 1000, 2000});
    CaptureTimeline const sut(path());
    auto const images = images_;
    std::filesystem::rename(path(), path("older"));
    record({500, 700});
    std::vector<std::uint64_t> times;
    forEachSample(sut, sut.first(), sut.last(),
                  [&](CaptureReader const& reader, auto /*next*/) { times.push_back(reader.time()); });
    EXPECT_THAT(times, ElementsAre(0, 1000, 2000));
    test::expectSame(images[1], sut.at(start + 1500).image);
}

TEST_F(CaptureTimelineTest, TimesBeyondAllBounds_EndAtTheGreatestNumber) {
    constexpr auto greatest = std::numeric_limits<std::uint64_t>::max();
    fill(path(),
         captureHeader(greatest - 5) + frameOf(2, Image(), Image()) + frameOf(1000, Image(), Image()));
    CaptureTimeline const sut(path());
    EXPECT_EQ(greatest - 3, sut.first());
    EXPECT_EQ(greatest, sut.last());
    EXPECT_EQ(greatest, sut.at(greatest).time);
}

} // namespace qel::inspect
