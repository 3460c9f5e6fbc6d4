// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "inspect/capture/AlarmCaptures.h"

#include "inspect/capture/CaptureTimeline.h"

#include "tests/inspect/capture/CaptureFixture.h"
#include "tests/inspect/capture/CapturedUnit.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <string>

namespace qel::inspect {

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class AlarmCapturesTest : public test::CaptureTest {
protected:
    AlarmCaptures capturesOf(std::chrono::seconds before, std::chrono::seconds after, CaptureBounds bounds) {
        return {[this](std::uint64_t time) { return path("at" + std::to_string(time)); }, before, after,
                bounds};
    }

    /// A sample each second; in alarm at these.
    static void record(AlarmCaptures& sut, std::uint64_t seconds, std::vector<std::uint64_t> const& alarms) {
        for (std::uint64_t second = 0; second < seconds; ++second) {
            bool const isAlarm = std::find(alarms.begin(), alarms.end(), second) != alarms.end();
            sut.append(second * 1000, test::unitWith(5, static_cast<double>(second),
                                                     isAlarm ? eStatus_HighAlarm : eStatus_NoError));
        }
    }

    /// First and last second.
    std::pair<std::uint64_t, std::uint64_t> rangeOf(std::string const& name) const {
        CaptureTimeline const timeline(path(name));
        EXPECT_EQ("", timeline.damage());
        EXPECT_EQ((timeline.last() - timeline.first()) / 1000 + 1, timeline.samples());
        EXPECT_EQ(static_cast<double>(timeline.last()) / 1000,
                  timeline.at(timeline.last()).image.value(5)->value);
        return {timeline.first() / 1000, timeline.last() / 1000};
    }
};

} // namespace

TEST_F(AlarmCapturesTest, WithoutAlarm_WritesNothing) {
    auto sut = capturesOf(std::chrono::seconds(5), std::chrono::seconds(5), {0, 0});
    record(sut, 20, {});
    sut.close();
    EXPECT_THAT(sut.files(), IsEmpty());
    EXPECT_TRUE(std::filesystem::is_empty(path("")));
    EXPECT_EQ(0U, sut.samples());
}

TEST_F(AlarmCapturesTest, EachAlarm_HasAFileWithTheTimeAround) {
    auto sut = capturesOf(std::chrono::seconds(5), std::chrono::seconds(3), {0, 0});
    record(sut, 60, {20, 40});
    EXPECT_THAT(sut.files(), ElementsAre(path("at20000"), path("at40000")));
    EXPECT_EQ(std::pair(std::uint64_t{15}, std::uint64_t{23}), rangeOf("at20000"));
    EXPECT_EQ(std::pair(std::uint64_t{35}, std::uint64_t{43}), rangeOf("at40000"));
    EXPECT_EQ(18U, sut.samples());
    EXPECT_EQ(std::filesystem::file_size(path("at20000")) + std::filesystem::file_size(path("at40000")),
              sut.bytes());
}

TEST_F(AlarmCapturesTest, AlarmAtTheStart_HasNothingBefore) {
    auto sut = capturesOf(std::chrono::seconds(5), std::chrono::seconds(3), {0, 0});
    record(sut, 20, {0});
    EXPECT_EQ(std::pair(std::uint64_t{0}, std::uint64_t{3}), rangeOf("at0"));
}

TEST_F(AlarmCapturesTest, NextAlarmInTime_MakesTheFileLonger) {
    auto sut = capturesOf(std::chrono::seconds(2), std::chrono::seconds(3), {0, 0});
    record(sut, 60, {20, 22});
    EXPECT_THAT(sut.files(), ElementsAre(path("at20000")));
    EXPECT_EQ(std::pair(std::uint64_t{18}, std::uint64_t{25}), rangeOf("at20000"));
}

TEST_F(AlarmCapturesTest, Bounds_LimitSizeAndNumber) {
    auto sut = capturesOf(std::chrono::seconds(0), std::chrono::seconds(5), {5000, 2});
    record(sut, 60, {10, 20, 30});
    EXPECT_THAT(sut.files(), ElementsAre(path("at20000"), path("at30000")));
    EXPECT_FALSE(std::filesystem::exists(path("at10000")));
    EXPECT_LE(std::filesystem::file_size(path("at30000")), 5000U);
    EXPECT_EQ(30U, rangeOf("at30000").first);
}

TEST_F(AlarmCapturesTest, MoreBeforeThanTheBound_KeepsTheAlarm) {
    auto whole = capturesOf(std::chrono::seconds(20), std::chrono::seconds(0), {0, 0});
    record(whole, 31, {30});
    auto const size = whole.bytes();
    std::filesystem::remove(path("at30000"));
    auto sut = capturesOf(std::chrono::seconds(20), std::chrono::seconds(0), {size - 1, 0});
    record(sut, 31, {30});
    sut.close();
    EXPECT_THAT(sut.files(), ElementsAre(path("at30000")));
    auto const [first, last] = rangeOf("at30000");
    EXPECT_EQ(30U, last);
    EXPECT_GT(first, 10U);
    EXPECT_LT(first, 15U) << "no more is dropped than needed";
    EXPECT_LT(std::filesystem::file_size(path("at30000")), size);
}

TEST_F(AlarmCapturesTest, BoundBelowOneSample_StillKeepsTheAlarm) {
    auto sut = capturesOf(std::chrono::seconds(20), std::chrono::seconds(5), {1, 0});
    record(sut, 33, {30});
    EXPECT_THAT(sut.files(), ElementsAre(path("at30000")));
    EXPECT_EQ(std::pair(std::uint64_t{30}, std::uint64_t{30}), rangeOf("at30000"));
}

TEST_F(AlarmCapturesTest, AlarmThatReachesTheBound_HasAFileOfItsOwn) {
    auto whole = capturesOf(std::chrono::seconds(0), std::chrono::seconds(100), {0, 0});
    record(whole, 25, {20});
    auto const size = whole.bytes();
    std::filesystem::remove(path("at20000"));
    auto sut = capturesOf(std::chrono::seconds(0), std::chrono::seconds(100), {size, 0});
    record(sut, 28, {20, 25});
    EXPECT_THAT(sut.files(), ElementsAre(path("at20000"), path("at25000")));
    EXPECT_EQ(std::pair(std::uint64_t{20}, std::uint64_t{24}), rangeOf("at20000"));
    EXPECT_EQ(std::pair(std::uint64_t{25}, std::uint64_t{27}), rangeOf("at25000"));
}

} // namespace qel::inspect
