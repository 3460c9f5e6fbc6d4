// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "inspect/image/StructureFingerprint.h"

#include "tests/inspect/SampleUnit.h"

#include <gtest/gtest.h>

#include <functional>
#include <memory>

namespace qel::inspect {

namespace {

using Change = std::function<void(shm::record::Region&)>;

StructureFingerprint fingerprintOf(shm::record::Region const& region) {
    Image const image(&region, sizeof region);
    return {image, PointTree(image)};
}

/// Of the sample unit, with a change.
StructureFingerprint fingerprintAfter(Change const& change) {
    auto const region = test::sampleUnit();
    change(*region);
    return fingerprintOf(*region);
}

StructureFingerprint fingerprintOfTheSample() {
    return fingerprintAfter([](auto&) {});
}

} // namespace

TEST(StructureFingerprintTest, RegionWithoutPoints_IsLikeNone) {
    Image const image;
    EXPECT_EQ(StructureFingerprint(), StructureFingerprint(image, PointTree(image)));
    EXPECT_NE(StructureFingerprint(), fingerprintOfTheSample());
}

TEST(StructureFingerprintTest, NumbersTimesAndStates_DoNotCount) {
    EXPECT_EQ(fingerprintOfTheSample(), fingerprintAfter([](shm::record::Region& region) {
                  region.values[5].value = 231.0;
                  region.values[5].at = 77;
                  region.values[5].state = eStatus_HighAlarm;
                  region.points[3].at = 78;
                  region.points[3].state = eStatus_Off;
                  region.root.state = eStatus_ChildAlarm;
              }));
}

TEST(StructureFingerprintTest, FreedSlots_DoNotCount) {
    EXPECT_EQ(fingerprintOfTheSample(), fingerprintAfter([](shm::record::Region& region) {
                  region.points[20].guid = 1;
                  region.values[27].key = 2;
              }));
}

TEST(StructureFingerprintTest, IdsKeysTypesAndLinks_Count) {
    auto const sample = fingerprintOfTheSample();
    EXPECT_NE(sample, fingerprintAfter([](auto& region) { region.points[6].guid ^= 0x10000; }));
    EXPECT_NE(sample, fingerprintAfter([](auto& region) { region.points[6].type ^= 1; }));
    EXPECT_NE(sample, fingerprintAfter([](auto& region) { region.values[26].key = 2; }));
    EXPECT_NE(sample, fingerprintAfter([](auto& region) { region.values[26].next = 27; }));
    EXPECT_NE(sample, fingerprintAfter([](auto& region) { region.points[6].next = 20; }));
    EXPECT_NE(sample, fingerprintAfter([](auto& region) { region.points[17].mvs = shm::NO_POSITION; }));
}

TEST(StructureFingerprintTest, PointOrValueInAnotherSlot_Counts) {
    auto const sample = fingerprintOfTheSample();
    EXPECT_NE(sample, fingerprintAfter([](shm::record::Region& region) {
                  region.points[20] = region.points[19];
                  region.points[17].next = 20;
              }));
    EXPECT_NE(sample, fingerprintAfter([](shm::record::Region& region) {
                  region.values[27] = region.values[26];
                  region.points[17].mvs = 27;
              }));
}

TEST(StructureFingerprintTest, ChildThatBecomesASibling_Counts) {
    EXPECT_NE(fingerprintOfTheSample(), fingerprintAfter([](shm::record::Region& region) {
                  region.points[17].next = region.points[17].children;
                  region.points[17].children = shm::NO_POSITION;
                  region.points[18].next = 19;
              }));
}

} // namespace qel::inspect
