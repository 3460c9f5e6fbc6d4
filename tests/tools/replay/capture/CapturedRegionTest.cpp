// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tools/replay/capture/CapturedRegion.h"

#include "inspect/image/LiveRegion.h"

#include "tests/inspect/capture/CaptureFixture.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <vector>

namespace qel::tools {

TEST(CapturedRegionTest, New_IsInactiveAndEmpty) {
    CapturedRegion const sut;
    std::vector<std::uint8_t> const wiped(test::rawRegionSize, 0xFF);
    EXPECT_EQ(wiped, test::RawRegion().copy());
}

TEST(CapturedRegionTest, End_RemovesTheRegion) {
    { CapturedRegion const sut; }
    EXPECT_FALSE(test::rawRegionExists());
}

TEST(CapturedRegionTest, Writers_SeeThatItLives) {
    {
        CapturedRegion const sut;
        EXPECT_TRUE(shm::WriterLock().isOfAnotherWriter());
    }
    test::RawRegion const left(true);
    EXPECT_TRUE(shm::WriterLock().isHeld());
}

TEST(CapturedRegionTest, Store_MakesTheObjectEqualToTheImage) {
    CapturedRegion sut;
    for (auto const& image : test::randomImages(20, 41)) {
        sut.store(image);
        inspect::Image const whole(&image.region(), test::rawRegionSize);
        test::expectSame(whole, inspect::LiveRegion().copy());
    }
}

} // namespace qel::tools
