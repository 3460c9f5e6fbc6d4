// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "inspect/image/RegionStatus.h"

#include "format/ValueKeys.h"
#include "tests/support/ForgedRegion.h"
#include "tests/writer/WriterFixture.h"

#include <gtest/gtest.h>

#include <sys/mman.h>

#include <cerrno>
#include <limits>
#include <memory>
#include <string>

namespace qel::inspect {

namespace {

namespace key = shm::key;
using std::chrono::milliseconds;

constexpr std::uint64_t now = 1'700'000'000'000;
constexpr milliseconds minute{60'000};

/// The unit with one inlet; two values, one of them delivered at some time.
Image imageDeliveredAt(std::uint64_t at) {
    test::ForgedRegion const region;
    region.point(3, test::pointId(1, 0));
    region.point(5, test::pointId(1, 0, 1));
    region.devices({3});
    region.children(3, {5});
    region.values(5, 7, {key::voltage, key::peakVoltage});
    for (auto const offset :
         {test::rawPoint(3) + test::field::pointAt, test::rawPoint(5) + test::field::pointAt,
          test::rawValue(7) + test::field::valueAt}) {
        region.raw().set<std::uint64_t>(offset, 0);
    }
    region.raw().set<std::uint64_t>(test::rawValue(8) + test::field::valueAt, at);
    region.raw().set<std::int32_t>(test::field::rootState, 23);
    region.activate();
    return LiveRegion().copy();
}

Condition conditionAt(std::uint64_t at, std::optional<milliseconds> maxAge) {
    return regionStatus({}, imageDeliveredAt(at), now, maxAge).condition;
}

} // namespace

TEST(RegionStatusTest, NamesConditions) {
    EXPECT_STREQ("absent", conditionName(Condition::Absent));
    EXPECT_STREQ("unreadable", conditionName(Condition::Unreadable));
    EXPECT_STREQ("too short", conditionName(Condition::TooShort));
    EXPECT_STREQ("inactive", conditionName(Condition::Inactive));
    EXPECT_STREQ("active", conditionName(Condition::Active));
    EXPECT_STREQ("replaced", conditionName(Condition::Replaced));
    EXPECT_STREQ("silent", conditionName(Condition::Silent));
}

TEST(RegionStatusTest, AnActiveRegionShowsItsContent) {
    auto const status = regionStatus({}, imageDeliveredAt(now - 5), now, minute);
    EXPECT_EQ(Condition::Active, status.condition);
    EXPECT_EQ(320032U, status.size);
    EXPECT_EQ(32, status.version);
    EXPECT_EQ(2U, status.pointsUsed);
    EXPECT_EQ(2U, status.valuesUsed);
    EXPECT_EQ(eStatus_ChildAlarm, status.globalState);
    EXPECT_EQ(now - 5, status.newest);
}

TEST(RegionStatusTest, ADeliveredPointStateCountsAsADelivery) {
    imageDeliveredAt(now - 5);
    test::RawRegion().set<std::uint64_t>(test::rawPoint(5) + test::field::pointAt, now - 3);
    EXPECT_EQ(now - 3, regionStatus({}, LiveRegion().copy(), now, minute).newest);
}

TEST(RegionStatusTest, FreeSlotsDoNotCount) {
    imageDeliveredAt(now - 5);
    test::RawRegion const raw;
    raw.set<std::uint64_t>(test::rawPoint(100) + test::field::pointAt, now);
    raw.set<std::uint64_t>(test::rawValue(100) + test::field::valueAt, now);
    auto const status = regionStatus({}, LiveRegion().copy(), now, minute);
    EXPECT_EQ(now - 5, status.newest);
    EXPECT_EQ(2U, status.pointsUsed);
    EXPECT_EQ(2U, status.valuesUsed);
}

TEST(RegionStatusTest, IsSilentWhenTheNewestDeliveryIsOlderThanAllowed) {
    EXPECT_EQ(Condition::Active, conditionAt(now - 60'000, minute));
    EXPECT_EQ(Condition::Silent, conditionAt(now - 60'001, minute));
    EXPECT_EQ(Condition::Active, conditionAt(now - 60'001, std::nullopt));
    EXPECT_EQ(Condition::Active, conditionAt(now, milliseconds(0)));
    EXPECT_EQ(Condition::Silent, conditionAt(now - 1, milliseconds(0)));
}

TEST(RegionStatusTest, IsSilentWhenNothingWasEverDelivered) {
    EXPECT_EQ(Condition::Silent, conditionAt(0, minute));
    EXPECT_EQ(Condition::Silent, conditionAt(0, milliseconds::max()));
    EXPECT_EQ(Condition::Active, conditionAt(0, std::nullopt));
}

TEST(RegionStatusTest, ADeliveryThatIsALittleAheadOfTheClockIsCurrent) {
    EXPECT_EQ(Condition::Active, conditionAt(now + 1, milliseconds(0)));
    EXPECT_EQ(Condition::Active, conditionAt(now + 60'000, milliseconds(0)));
}

TEST(RegionStatusTest, ADeliveryFarAheadOfTheClockIsNoSignOfLife) {
    EXPECT_EQ(Condition::Silent, conditionAt(now + 60'001, minute));
    EXPECT_EQ(Condition::Silent, conditionAt(std::numeric_limits<std::uint64_t>::max(), milliseconds::max()));
    EXPECT_EQ(Condition::Active, conditionAt(now + 3'600'000, std::nullopt));
    auto const status = regionStatus({}, imageDeliveredAt(now + 3'600'000), now, minute);
    EXPECT_EQ(1U, status.ahead);
    EXPECT_EQ(now + 3'600'000, status.newest);
    EXPECT_EQ(0U, status.newestKnown);
}

TEST(RegionStatusTest, ADeliveryAheadOfTheClockDoesNotHideACurrentOne) {
    imageDeliveredAt(now + 3'600'000);
    test::RawRegion().set<std::uint64_t>(test::rawPoint(5) + test::field::pointAt, now - 3);
    auto const status = regionStatus({}, LiveRegion().copy(), now, minute);
    EXPECT_EQ(Condition::Active, status.condition);
    EXPECT_EQ(now - 3, status.newestKnown);
}

TEST(RegionStatusTest, EveryVersionButTheActiveOneIsInactive) {
    imageDeliveredAt(now);
    for (unsigned version = 0; version <= 0xFF; ++version) {
        test::RawRegion().set(test::field::version, static_cast<std::uint8_t>(version));
        auto const status = regionStatus({}, LiveRegion().copy(), now, minute);
        EXPECT_EQ(version == 32 ? Condition::Active : Condition::Inactive, status.condition) << version;
        EXPECT_EQ(version, status.version);
    }
}

TEST(RegionStatusTest, ARegionThatLacksAByteIsTooShortWhateverItsVersion) {
    auto const whole = imageDeliveredAt(now);
    for (std::uint64_t const size : {0U, 1U, 320028U, 320029U, 320031U}) {
        auto const status = regionStatus({}, Image(whole.bytes().data(), size), now, minute);
        EXPECT_EQ(Condition::TooShort, status.condition) << size;
        EXPECT_EQ(size, status.size);
    }
    EXPECT_EQ(Condition::Active, regionStatus({}, whole, now, minute).condition);
    auto const longer = std::string(whole.bytes()) + "more";
    EXPECT_EQ(Condition::Active,
              regionStatus({}, Image(longer.data(), longer.size()), now, minute).condition);
}

TEST(RegionStatusTest, HowTheObjectCouldBeOpenedComesFirst) {
    Image const none;
    RegionSource source;
    source.opening = Opening::Absent;
    EXPECT_EQ(Condition::Absent, regionStatus(source, none, now, minute).condition);
    source.opening = Opening::NotRegular;
    EXPECT_EQ(Condition::Unreadable, regionStatus(source, none, now, minute).condition);
    source.opening = Opening::Unreadable;
    source.error = EACCES;
    auto const status = regionStatus(source, none, now, minute);
    EXPECT_EQ(Condition::Unreadable, status.condition);
    EXPECT_EQ(EACCES, status.source.error);
    EXPECT_EQ(0U, status.pointsUsed);
    EXPECT_EQ(0U, status.valuesUsed);
    EXPECT_EQ(0U, status.newest);
}

TEST(RegionStatusTest, AReplacedObjectIsReplacedWhateverItHolds) {
    RegionSource source;
    source.isReplaced = true;
    EXPECT_EQ(Condition::Replaced, regionStatus(source, imageDeliveredAt(now), now, minute).condition);
    EXPECT_EQ(Condition::Replaced, regionStatus(source, Image(), now, minute).condition);
}

TEST(RegionStatusTest, FollowsTheLifeOfAUnit) {
    auto const condition = [](LiveRegion const& live) {
        return regionStatus(live.source(), live.copy(), now, minute).condition;
    };
    ::shm_unlink("QelSharedMemory"); // what an earlier test may have left
    EXPECT_EQ(Condition::Absent, condition(LiveRegion()));
    auto writer = std::make_unique<shm::QelSharedMemoryWriter>();
    LiveRegion const live;
    EXPECT_EQ(Condition::Inactive, condition(live));
    writer->addStructure({{test::pointId(1, 0), test::withKeys({key::voltage})}});
    writer->setActive();
    EXPECT_EQ(Condition::Silent, condition(live));
    writer->updateMV(test::pointId(1, 0) | key::voltage, test::measured(230, now - 1));
    EXPECT_EQ(Condition::Active, condition(live));
    EXPECT_EQ(0644U, regionStatus(live.source(), live.copy(), now, minute).source.object->mode);
    writer.reset();
    EXPECT_EQ(Condition::Replaced, condition(live));
    EXPECT_EQ(Condition::Absent, condition(LiveRegion()));
}

} // namespace qel::inspect
