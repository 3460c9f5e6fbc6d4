#include "tools/replay/RecordedRegion.h"

#include "inspect/LiveRegion.h"

#include "tests/inspect/RecordingFixture.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <vector>

namespace qel::tools {

TEST(RecordedRegionTest, New_IsInactiveAndEmpty) {
    RecordedRegion const sut;
    std::vector<std::uint8_t> const wiped(test::rawRegionSize, 0xFF);
    EXPECT_EQ(wiped, test::RawRegion().copy());
}

TEST(RecordedRegionTest, End_RemovesTheRegion) {
    { RecordedRegion const sut; }
    EXPECT_FALSE(test::rawRegionExists());
}

TEST(RecordedRegionTest, Writers_SeeThatItLives) {
    {
        RecordedRegion const sut;
        EXPECT_TRUE(shm::WriterLock().isOfAnotherWriter());
    }
    test::RawRegion const left(true);
    EXPECT_TRUE(shm::WriterLock().isHeld());
}

TEST(RecordedRegionTest, Store_MakesTheObjectEqualToTheImage) {
    RecordedRegion sut;
    for (auto const& image : test::randomImages(20, 41)) {
        sut.store(image);
        inspect::Image const whole(&image.region(), test::rawRegionSize);
        test::expectSame(whole, inspect::LiveRegion().copy());
    }
}

} // namespace qel::tools
