// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tests/tools/qelshm/SampleImages.h"

#include "tests/support/RawRegion.h"

#include "inspect/image/LiveRegion.h"
#include "inspect/image/PointTree.h"
#include "inspect/image/RegionStatus.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace qel::test {

class SampleImagesTest : public testing::TestWithParam<SampleImage> {};

TEST_P(SampleImagesTest, Image_IsWhatItsDescriptionSays) {
    auto const image = GetParam().build();
    auto const status = inspect::regionStatus({}, image, sampleTime, std::nullopt);
    EXPECT_EQ(GetParam().isActive, status.condition == inspect::Condition::Active);
    if (GetParam().isSound) {
        EXPECT_TRUE(inspect::PointTree(image).skippedLinks().empty());
    }
}

TEST_P(SampleImagesTest, Image_IsTheSameEveryTime) {
    EXPECT_EQ(GetParam().build().bytes(), GetParam().build().bytes());
}

TEST_P(SampleImagesTest, Building_LeavesNoObjectBehind) {
    GetParam().build();
    EXPECT_FALSE(rawRegionExists());
}

INSTANTIATE_TEST_SUITE_P(All, SampleImagesTest, testing::ValuesIn(sampleImages()),
                         [](testing::TestParamInfo<SampleImage> const& tested) {
                             std::string name = tested.param.name;
                             std::replace(name.begin(), name.end(), '-', '_');
                             return name;
                         });

TEST(SampleImagesSlotsTest, FullImage_UsesEverySlot) {
    inspect::PointTree const tree(sampleImage("full"));
    EXPECT_EQ(shm::MP_COUNT, tree.nodes().size());
    EXPECT_EQ(shm::MV_COUNT, tree.values().size());
}

TEST(SampleImagesSlotsTest, RecycledImage_HoldsAPointInASlotThatWasFreed) {
    auto const image = sampleImage("recycled");
    inspect::PointTree const tree(image);
    ASSERT_EQ(sample::sensor, image.region().points[tree.nodes().back().pos].guid);
    EXPECT_LT(tree.nodes().back().pos, tree.nodes().front().pos + 20)
        << "one of the slots that were used first";
}

} // namespace qel::test
