// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "inspect/image/Image.h"

#include "tests/inspect/Lengths.h"
#include "tests/support/RawRegion.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <memory>
#include <string>
#include <utility>

namespace qel::inspect {

using test::rawRegionSize;
using test::sourceBytes;

namespace {

template <typename Record>
std::string bytesOf(Record const& record) {
    return {reinterpret_cast<char const*>(&record), sizeof record};
}

} // namespace

class ImageLengthTest : public testing::TestWithParam<std::size_t> {};

TEST_P(ImageLengthTest, KeepsWhatIsThereAndReadsTheRestAsWiped) {
    auto const length = GetParam();
    auto const source = sourceBytes(length);
    auto const present = std::min(length, rawRegionSize);

    Image const image(source.data(), source.size());

    EXPECT_EQ(length, image.size());
    EXPECT_EQ(length >= rawRegionSize, image.isWhole());
    EXPECT_EQ(source.substr(0, present), image.bytes());

    EXPECT_EQ(source.substr(0, present) + std::string(rawRegionSize - present, '\xFF'),
              bytesOf(image.region()));
}

TEST_P(ImageLengthTest, ReadsTheVersionOnlyIfItIsThere) {
    std::string source(GetParam(), '\0');
    constexpr std::size_t version = 320028;
    if (source.size() > version) {
        source[version] = 32;
    }
    Image const image(source.data(), source.size());
    EXPECT_EQ(source.size() > version ? 32 : 0xFF, image.root().version);
    EXPECT_EQ(source.size() > version, image.isActive());
}

INSTANTIATE_TEST_SUITE_P(Lengths, ImageLengthTest, testing::ValuesIn(test::sourceLengths));

TEST(ImageTest, AnImageOfNothingReadsAsWiped) {
    Image const image;
    EXPECT_EQ(0U, image.size());
    EXPECT_TRUE(image.bytes().empty());
    EXPECT_FALSE(image.isWhole());
    EXPECT_FALSE(image.isActive());
    EXPECT_EQ(test::rawNone, image.root().devices);
    EXPECT_EQ(test::rawNone, image.point(799)->next);
    EXPECT_EQ(0xFFFF, image.value(8799)->key);
}

TEST(ImageTest, Wiped_HasEveryByteAndNothingInThem) {
    auto const image = Image::wiped();
    EXPECT_TRUE(image.isWhole());
    EXPECT_EQ(std::string(shm::REGION_SIZE, static_cast<char>(shm::WIPE_BYTE)), image.bytes());
}

TEST(ImageTest, FindsSlotsByPositionAndNothingBehindTheLast) {
    auto const source = sourceBytes(rawRegionSize);
    Image const image(source.data(), source.size());
    for (std::uint32_t const pos : {0U, 1U, 400U, 799U}) {
        EXPECT_EQ(source.substr(test::rawPoint(pos), 48), bytesOf(*image.point(pos))) << pos;
    }
    for (std::uint32_t const pos : {0U, 1U, 4400U, 8799U}) {
        EXPECT_EQ(source.substr(test::rawValue(pos), 32), bytesOf(*image.value(pos))) << pos;
    }
    EXPECT_EQ(source.substr(test::rawRootOffset), bytesOf(image.root()));
    for (std::uint32_t const pos : {800U, 801U, 8800U, 0x80000000U, test::rawNone}) {
        EXPECT_EQ(nullptr, image.point(pos)) << pos;
    }
    for (std::uint32_t const pos : {8800U, 8801U, 0x80000000U, test::rawNone}) {
        EXPECT_EQ(nullptr, image.value(pos)) << pos;
    }
}

TEST(ImageTest, DoesNotFollowItsSource) {
    auto source = sourceBytes(rawRegionSize);
    Image const image(source.data(), source.size());
    std::fill(source.begin(), source.end(), 'x');
    EXPECT_EQ(sourceBytes(rawRegionSize), image.bytes());
}

TEST(ImageTest, ACopyOutlivesTheOriginal) {
    auto const source = sourceBytes(rawRegionSize);
    auto original = std::make_unique<Image>(source.data(), source.size());
    Image const copy(*original);
    Image assigned;
    assigned = *original;
    original.reset();
    EXPECT_EQ(source, copy.bytes());
    EXPECT_EQ(source, assigned.bytes());
    EXPECT_EQ(rawRegionSize, assigned.size());
}

TEST(ImageTest, MovingLeavesTheSourceUsable) {
    auto const source = sourceBytes(1000);
    Image original(source.data(), source.size());
    Image const moved(std::move(original)); // NOLINT(performance-move-const-arg): the point of this test
    EXPECT_EQ(source, moved.bytes());
    EXPECT_EQ(source, original.bytes()); // NOLINT(bugprone-use-after-move)
}

TEST(ImageTest, TakenOverBytesBehindTheSourcesSizeAreForgotten) {
    auto region = std::make_unique<shm::record::Region>();
    std::memset(region.get(), 0x20, sizeof *region);
    Image const image(std::move(region), 320028);
    EXPECT_EQ(0x20202020, static_cast<int>(image.root().state));
    EXPECT_EQ(0xFF, image.root().version);
}

} // namespace qel::inspect
