// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

// Known answers, worked out by hand.

#include "tests/model/ReferenceSvid.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <random>
#include <vector>

namespace qel::test::reference {

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

constexpr Svid circuit = 0x0100020304FF0000;

std::vector<int> keysFor(bool (*rule)(int)) {
    std::vector<int> keys;
    for (int key = 0; key <= 0xFFFF; ++key) {
        if (rule(key)) {
            keys.push_back(key);
        }
    }
    return keys;
}

} // namespace

TEST(ReferenceSvidTest, LevelsAndKey_AreBytesFromTheHighestOn) {
    EXPECT_EQ(circuit, svidOf({1, 0, 2, 3, 4}));
    EXPECT_EQ(1, levelOf(circuit, deviceLevel));
    EXPECT_EQ(0, levelOf(circuit, kindLevel));
    EXPECT_EQ(2, levelOf(circuit, inletLevel));
    EXPECT_EQ(3, levelOf(circuit, phaseLevel));
    EXPECT_EQ(4, levelOf(circuit, circuitLevel));
    EXPECT_EQ(-1, levelOf(circuit, socketLevel));
    EXPECT_EQ(-128, levelOf(svidOf({0x80}), deviceLevel));
    EXPECT_EQ(circuit, pointOf(circuit | 0x8001));
    EXPECT_EQ(0x8001, keyOf(circuit | 0x8001));
    EXPECT_EQ(rootSvid, svidOf({-1, 0}));
}

TEST(ReferenceSvidTest, Keys_OfThePointsOwnStateAndOfEnergies) {
    EXPECT_THAT(keysFor(isPointStateKey), ElementsAre(48, 51, 52, 53, 54, 55, 56, 57, 58, 59));
    EXPECT_THAT(keysFor(isInThousandths),
                ElementsAre(32, 33, 34, 35, 36, 37, 38, 65529, 65530, 65531, 65532));
    EXPECT_EQ(1.5, storedNumber(32, 1500.0));
    EXPECT_EQ(1500.0, storedNumber(39, 1500.0));
}

TEST(ReferenceSvidTest, ParentsFirst_SortsATree) {
    std::vector<Svid> const sorted{svidOf({}),
                                   rootSvid,
                                   svidOf({1, 0}),
                                   svidOf({1, 0}) | 7,
                                   svidOf({1, 0, -1, 2}),
                                   svidOf({1, 0, 1}),
                                   svidOf({1, 0, 1, -1, 1}),
                                   svidOf({1, 0, 1, 1}),
                                   svidOf({1, 0, 0xFE}),
                                   svidOf({1, 2}),
                                   svidOf({0x80, 0})};
    auto shuffled = sorted;
    std::shuffle(shuffled.begin(), shuffled.end(),
                 std::mt19937(1)); // NOLINT(cert-msc32-c,cert-msc51-cpp): the same each time
    std::sort(shuffled.begin(), shuffled.end(), ParentsFirst());
    EXPECT_EQ(sorted, shuffled);
}

TEST(ReferenceSvidTest, ParentCandidates_OfEachLevelOfAUnit) {
    EXPECT_THAT(parentCandidates(svidOf({1, 0})), IsEmpty());
    EXPECT_THAT(parentCandidates(svidOf({-1, 0, 1, 1})), IsEmpty());
    EXPECT_THAT(parentCandidates(svidOf({1, 2, -1, 5, 5, 5})), IsEmpty());
    EXPECT_THAT(parentCandidates(svidOf({1, 0, 2})), ElementsAre(svidOf({1, 0})));
    EXPECT_THAT(parentCandidates(svidOf({1, 0, 2, 3})), ElementsAre(svidOf({1, 0, 2})));
    EXPECT_THAT(parentCandidates(circuit), ElementsAre(svidOf({1, 0, 2, 3})));
    EXPECT_THAT(parentCandidates(svidOf({1, 0, 2, 3, 4, 5})), ElementsAre(circuit));
    EXPECT_THAT(parentCandidates(svidOf({1, 0, 2, -1, 4})), ElementsAre(svidOf({1, 0, 2})));
    EXPECT_THAT(parentCandidates(svidOf({1, 4, 2, 3, 4})), ElementsAre(svidOf({1, 0, 2, 3})));
}

TEST(ReferenceSvidTest, ParentCandidates_OfAnI2CSensorIsItsDevice) {
    EXPECT_THAT(parentCandidates(svidOf({1, 1, 2, 3, 4})), ElementsAre(svidOf({1, 0})));
}

TEST(ReferenceSvidTest, ParentCandidates_OfASocketWithoutFuseAreCircuitZeroAndThePhase) {
    EXPECT_THAT(parentCandidates(svidOf({1, 0, 2, 3, 0, 5})),
                ElementsAre(svidOf({1, 0, 2, 3, 0}), svidOf({1, 0, 2, 3})));
}

TEST(ReferenceSvidTest, StandsBefore_KindsFollowEachOtherThenIds) {
    std::vector<Svid> const list{svidOf({0x80, 0}),       svidOf({1, 0, 1}),       svidOf({1, 0, 2}),
                                 svidOf({1, 4, 1}),       svidOf({1, 4, 2}),       svidOf({1, 1, 9, -4, 9}),
                                 svidOf({1, 1, 9, 1, 1}), svidOf({1, 1, 1, 1, 2}), svidOf({1, 2, 1}),
                                 svidOf({1, 2, 2})};
    for (std::size_t i = 0; i < list.size(); ++i) {
        for (std::size_t j = 0; j < list.size(); ++j) {
            EXPECT_EQ(i < j, standsBefore(list[i], list[j])) << i << ' ' << j;
        }
    }
}

TEST(ReferenceSvidTest, StandsBefore_OfI2CSensorsOnlyPhaseAndCircuitDecide) {
    EXPECT_FALSE(standsBefore(svidOf({1, 1, 1, 1, 1}), svidOf({9, 1, 9, 1, 1, 9})));
    EXPECT_FALSE(standsBefore(svidOf({9, 1, 9, 1, 1, 9}), svidOf({1, 1, 1, 1, 1})));
}

TEST(ReferenceSvidTest, StandsBefore_OtherKindsAreComparedByIdAlone) {
    EXPECT_TRUE(standsBefore(svidOf({1, 3, 1}), svidOf({2, 0, 1})));
    EXPECT_FALSE(standsBefore(svidOf({2, 3, 1}), svidOf({1, 2, 1})));
    EXPECT_TRUE(standsBefore(svidOf({2, 0, 1}), svidOf({1, 3, 1})));  // an electrical one always
    EXPECT_FALSE(standsBefore(svidOf({1, 2, 1}), svidOf({2, 3, 1}))); // a socket group never
}

} // namespace qel::test::reference
