// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "inspect/capture/CaptureRing.h"

#include "inspect/capture/CaptureFormat.h"

#include "tests/inspect/capture/CaptureFixture.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <vector>

namespace qel::inspect {

namespace {

using testing::ElementsAre;

std::vector<std::uint64_t> timesIn(CaptureRing& sut, std::vector<Image> const& images) {
    std::vector<std::uint64_t> times;
    sut.drain([&](std::uint64_t time, Image const& image) {
        times.push_back(time);
        test::expectSame(images.at(static_cast<std::size_t>(time / 100)), image);
    });
    return times;
}

} // namespace

TEST(CaptureRingTest, Drain_GivesEverySampleAndForgetsThem) {
    auto const images = test::randomImages(6, 3);
    CaptureRing sut;
    for (std::size_t index = 0; index < images.size(); ++index) {
        sut.add(index * 100, images[index]);
    }
    EXPECT_EQ(6U, sut.samples());
    EXPECT_THAT(timesIn(sut, images), ElementsAre(0, 100, 200, 300, 400, 500));
    EXPECT_EQ(0U, sut.samples());
    EXPECT_EQ(0U, sut.bytes());
    sut.add(100, images[1]);
    EXPECT_THAT(timesIn(sut, images), ElementsAre(100));
}

TEST(CaptureRingTest, ForgetBefore_KeepsTheNewest) {
    auto const images = test::randomImages(5, 3);
    CaptureRing sut;
    for (std::size_t index = 0; index < images.size(); ++index) {
        sut.add(index * 100, images[index]);
    }
    sut.forgetBefore(150);
    EXPECT_EQ(3U, sut.samples());
    sut.forgetBefore(10000);
    EXPECT_THAT(timesIn(sut, images), ElementsAre(400));
}

TEST(CaptureRingTest, ForgetBeyond_KeepsWhatACaptureOfThatSizeHolds) {
    auto const images = test::randomImages(5, 3);
    CaptureRing sut;
    for (std::size_t index = 0; index < images.size(); ++index) {
        sut.add(index * 100, images[index]);
    }
    auto const whole = CAPTURE_HEADER_SIZE + frameOf(0, Image(), images[0]).size() + sut.bytes();
    sut.forgetBeyond(whole);
    EXPECT_EQ(5U, sut.samples());
    sut.forgetBeyond(whole - 1);
    EXPECT_LT(sut.samples(), 5U);
    sut.forgetBeyond(0);
    EXPECT_THAT(timesIn(sut, images), ElementsAre(400)) << "the newest stays";
}

TEST(CaptureRingTest, Memory_IsBounded) {
    auto const images = test::randomImages(40, 5);
    CaptureRing sut(20000);
    std::size_t most = 0;
    for (std::size_t index = 0; index < images.size(); ++index) {
        sut.add(index * 100, images[index]);
        EXPECT_LE(sut.bytes(), 20000U);
        most = std::max(most, sut.samples());
    }
    EXPECT_GT(most, 1U);
    EXPECT_THAT(timesIn(sut, images), testing::Contains(3900)) << "the newest stays";
}

} // namespace qel::inspect
