// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "inspect/capture/FrameRegion.h"

#include "tests/inspect/capture/CaptureFixture.h"
#include "tests/inspect/capture/CapturedUnit.h"

#include <gtest/gtest.h>

#include <string>

namespace qel::inspect {

namespace {

class FrameRegionTest : public testing::Test {
protected:
    void apply(Image const& image) {
        auto const frame = frameOf(1, last_, image);
        sut_.apply(checkedFrame(frame.substr(0, FRAME_HEAD_SIZE), content_ = frame.substr(FRAME_HEAD_SIZE)));
        last_ = image;
    }

    FrameRegion sut_;
    Image last_;
    std::string content_;
};

} // namespace

TEST_F(FrameRegionTest, Frames_LeadToEachImage) {
    for (auto const& image : test::randomImages(30, 99)) { // of several lengths
        apply(image);
        test::expectSame(image, sut_.image());
    }
}

TEST_F(FrameRegionTest, New_IsWipedAndNotActive) {
    test::expectSame(Image(), sut_.image());
    EXPECT_FALSE(sut_.isActive());
}

TEST_F(FrameRegionTest, NumbersAndTimes_AreNoChangedStates) {
    apply(test::unitWith(5, 1.0));
    EXPECT_TRUE(sut_.hasChangedStates());
    EXPECT_TRUE(sut_.isActive());
    apply(test::unitWith(5, 2.0, eStatus_NoError, 1700000000001));
    EXPECT_FALSE(sut_.hasChangedStates());
    EXPECT_FALSE(sut_.hasClearedTimes());
    apply(test::unitWith(5, 2.0, eStatus_HighAlarm, 1700000000001));
    EXPECT_TRUE(sut_.hasChangedStates());
    apply(test::unitWith(5, 2.0, eStatus_HighAlarm, 0));
    EXPECT_TRUE(sut_.hasClearedTimes());
}

TEST_F(FrameRegionTest, RootAndSize_AreChangedStates) {
    auto const unit = test::capturedUnit();
    apply(unit);
    apply(test::wipedUnit());
    EXPECT_TRUE(sut_.hasChangedStates());
    EXPECT_FALSE(sut_.isActive());
    apply(unit);
    apply(Image(unit.bytes().data(), 1000));
    EXPECT_TRUE(sut_.hasChangedStates());
    EXPECT_FALSE(sut_.isActive());
}

} // namespace qel::inspect
