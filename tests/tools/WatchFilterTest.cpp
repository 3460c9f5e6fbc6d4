#include "tools/qelshm/WatchFilter.h"

#include <gtest/gtest.h>

namespace qel::tools {

namespace {

constexpr long long unit = 0x0100FFFFFFFF0000;
constexpr long long inlet = 0x010001FFFFFF0000;

shm::record::QelShmMVal valueOf(std::uint16_t key) {
    shm::record::QelShmMVal value{};
    value.key = key;
    return value;
}

Snapshot sample() {
    return {eStatus_ChildAlarm,
            {{unit, 1, "Master", eStatus_On, {}},
             {inlet, 2, "1P", eStatus_On, {valueOf(1), valueOf(4), valueOf(19)}}}};
}

std::vector<std::uint16_t> keysOf(PointView const& point) {
    std::vector<std::uint16_t> keys;
    for (auto const& value : point.values) {
        keys.push_back(value.key);
    }
    return keys;
}

} // namespace

TEST(WatchFilterTest, NoIds_LetEverythingThrough) {
    auto const watched = WatchFilter({}).apply(sample());
    EXPECT_EQ(2U, watched.points.size());
    EXPECT_EQ(3U, watched.valueCount());
    EXPECT_EQ(eStatus_ChildAlarm, watched.globalState);
}

TEST(WatchFilterTest, PointId_LetsAllValuesOfThePointThrough) {
    auto const watched = WatchFilter({inlet}).apply(sample());
    ASSERT_EQ(1U, watched.points.size());
    EXPECT_EQ(inlet, watched.points[0].svid);
    EXPECT_EQ(3U, watched.valueCount());
    EXPECT_EQ(eStatus_ChildAlarm, watched.globalState);
}

TEST(WatchFilterTest, PointWithoutValues_StaysWhenItIsNamed) {
    auto const watched = WatchFilter({unit}).apply(sample());
    ASSERT_EQ(1U, watched.points.size());
    EXPECT_EQ(unit, watched.points[0].svid);
}

TEST(WatchFilterTest, ValueIds_LetTheseValuesThrough) {
    auto const watched = WatchFilter({inlet | 19, inlet | 1}).apply(sample());
    ASSERT_EQ(1U, watched.points.size());
    EXPECT_EQ((std::vector<std::uint16_t>{1, 19}), keysOf(watched.points[0]));
}

TEST(WatchFilterTest, UnknownIds_LetNothingThrough) {
    auto const watched = WatchFilter({inlet | 2, 5}).apply(sample());
    EXPECT_TRUE(watched.points.empty());
}

} // namespace qel::tools
