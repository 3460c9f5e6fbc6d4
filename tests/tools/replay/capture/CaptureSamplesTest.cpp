// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tools/replay/capture/CaptureSamples.h"

#include "tests/inspect/capture/CaptureFixture.h"
#include "tests/tools/replay/CaptureFile.h"

#include <gtest/gtest.h>

#include <vector>

namespace qel::tools {

namespace {

constexpr auto interval = test::CaptureFile::interval;
constexpr auto recorded0 = test::CaptureFile::startTime + test::CaptureFile::firstTime;

class CaptureSamplesTest : public testing::Test {
protected:
    static std::vector<inspect::Image> wholeImages(std::size_t count) {
        std::vector<inspect::Image> images;
        for (auto const& image : test::randomImages(count, 81)) {
            images.emplace_back(&image.region(), test::rawRegionSize);
        }
        return images;
    }

    SampleSelection selection() const {
        SampleSelection selection;
        selection.file = file_.path();
        selection.samples = file_.images().size();
        return selection;
    }

    test::CaptureFile const file_{wholeImages(3)};
};

} // namespace

TEST_F(CaptureSamplesTest, Samples_ComeInTurnWithTheirTimes) {
    CaptureSamples sut(selection());
    for (std::size_t index = 0; index < 3; ++index) {
        EXPECT_EQ(index * interval, sut.due());
        auto const sample = sut.next();
        EXPECT_EQ(recorded0 + index * interval, sample.moment.recorded);
        EXPECT_EQ(index * interval, sample.moment.due);
        EXPECT_EQ(0U, sample.shift);
        test::expectSame(file_.images()[index], sample.image);
    }
    EXPECT_EQ(std::nullopt, sut.due());
    EXPECT_FALSE(sut.isStopped());
}

TEST_F(CaptureSamplesTest, Loop_GoesOnOneStepLater) {
    auto chosen = selection();
    chosen.isEndless = true;
    CaptureSamples sut(chosen);
    for (std::size_t index = 0; index < 11; ++index) {
        EXPECT_EQ(index * interval, sut.due());
        auto const sample = sut.next();
        EXPECT_EQ(recorded0 + index * interval, sample.moment.recorded);
        EXPECT_EQ(index / 3 * 3 * interval, sample.shift);
        test::expectSame(file_.images()[index % 3], sample.image);
    }
}

TEST_F(CaptureSamplesTest, LoopOfOneSample_RepeatsItEverySecond) {
    auto chosen = selection();
    chosen.samples = 1;
    chosen.isEndless = true;
    CaptureSamples sut(chosen);
    for (std::uint64_t second = 0; second < 4; ++second) {
        EXPECT_EQ(second * 1000, sut.due());
        sut.next();
    }
}

TEST_F(CaptureSamplesTest, Limit_CountsOverAllRepetitions) {
    auto chosen = selection();
    chosen.isEndless = true;
    chosen.limit = 5;
    CaptureSamples sut(chosen);
    for (int sample = 0; sample < 5; ++sample) {
        ASSERT_TRUE(sut.due());
        EXPECT_FALSE(sut.isStopped());
        sut.next();
    }
    EXPECT_EQ(std::nullopt, sut.due());
    EXPECT_TRUE(sut.isStopped());
}

TEST_F(CaptureSamplesTest, LimitAtTheLastSample_StopsNothing) {
    auto chosen = selection();
    chosen.limit = 3;
    CaptureSamples sut(chosen);
    while (sut.due()) {
        sut.next();
    }
    EXPECT_FALSE(sut.isStopped());
}

} // namespace qel::tools
