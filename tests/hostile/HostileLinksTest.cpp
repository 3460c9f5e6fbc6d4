// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tests/hostile/HostileUnit.h"

#include "tests/support/Rounds.h"

#include <random>
#include <vector>

namespace qel::test {

namespace {

using Place = GuardedMappings::Place;

constexpr std::uint32_t seed = 20240611;

/// The limits of both tables, the limits of the numbers, and random ones, in range and out of it.
std::vector<std::uint32_t> hostileNumbers() {
    std::vector<std::uint32_t> numbers{799, 800, 8799, 8800, 0x80000000, 0xFFFFFFFF};
    auto random = randomNumbers(seed);
    for (int i = 0, count = rounds(3, 200); i < count; ++i) {
        numbers.push_back(static_cast<std::uint32_t>(random()));
        numbers.push_back(static_cast<std::uint32_t>(random() % samplePoints));
        numbers.push_back(static_cast<std::uint32_t>(random() % 8800));
    }
    return numbers;
}

class HostileLinksTest : public HostileUnit {
protected:
    void askEach(std::size_t offset) {
        for (auto const number : numbers) {
            ask(offset, number);
        }
    }
    void askEachPoint(std::size_t offset) {
        for (std::uint32_t pos = 0; pos < samplePoints; ++pos) {
            askEach(rawPoint(pos) + offset);
        }
    }

    std::vector<std::uint32_t> const numbers = hostileNumbers();
};

TEST_P(HostileLinksTest, UnitAsItsWriterLeftIt_IsReadWhole) {
    RegionWalk const walk(raw);
    ASSERT_TRUE(walk.ends());
    EXPECT_EQ(20U, walk.points().size());
    EXPECT_EQ(27U, walk.valueCount());
    EXPECT_EQ("", disagreement(reader, raw, walk));
}

TEST_P(HostileLinksTest, HeadsOfTheRoot_AreFollowedWithinTheTable) {
    askEach(field::devices);
    askEach(field::groups);
    EXPECT_EQ(0, endless); // no point leads back to the root
}

TEST_P(HostileLinksTest, NextOfAPoint_IsFollowedWithinTheTable) {
    askEachPoint(field::next);
    EXPECT_GT(asked, 100);
}

TEST_P(HostileLinksTest, ChildrenOfAPoint_AreFollowedWithinTheTable) {
    askEachPoint(field::children);
    EXPECT_GT(asked, 100);
}

TEST_P(HostileLinksTest, ValuesOfAPoint_AreFollowedWithinTheTable) {
    askEachPoint(field::mvs);
    EXPECT_EQ(0, endless);
}

TEST_P(HostileLinksTest, PrevOfAPoint_IsShownOnly) {
    askEachPoint(field::prev);
    EXPECT_EQ(0, endless);
}

TEST_P(HostileLinksTest, ParentOfAPoint_IsShownOnly) {
    askEachPoint(field::parent);
    EXPECT_EQ(0, endless);
}

TEST_P(HostileLinksTest, PosOfAPoint_LeadsToNoSlotOutsideTheTable) {
    askEachPoint(field::pos);
    EXPECT_EQ(0, endless);
}

TEST_P(HostileLinksTest, NextOfAValue_IsFollowedWithinTheTable) {
    for (std::uint32_t pos = 0; pos < sampleValues; ++pos) {
        askEach(rawValue(pos) + field::valueNext);
    }
    EXPECT_GT(asked, 100);
}

TEST_P(HostileLinksTest, SeveralLinksAtOnce_AreFollowedWithinTheTables) {
    constexpr std::size_t pointLinks[] = {field::pos,      field::next,   field::prev,
                                          field::children, field::parent, field::mvs};
    auto random = randomNumbers(seed);
    for (int round = 0, count = rounds(300, 6000); round < count; ++round) {
        for (int i = 0; i < 8; ++i) {
            auto const number = numbers[random() % numbers.size()];
            auto const pos = static_cast<std::uint32_t>(random() % samplePoints);
            auto const value = static_cast<std::uint32_t>(random() % sampleValues);
            random() % 2 == 0
                ? raw.set<std::uint32_t>(rawPoint(pos) + pointLinks[random() % std::size(pointLinks)], number)
                : raw.set<std::uint32_t>(rawValue(value) + field::valueNext, number);
        }
        askAsItIs("round " + std::to_string(round));
        restore();
    }
    EXPECT_GT(asked, endless / 4);
}

INSTANTIATE_TEST_SUITE_P(Region, HostileLinksTest,
                         testing::Values(Place::BehindFrontGuard, Place::BeforeRearGuard), placeName);

} // namespace

} // namespace qel::test
