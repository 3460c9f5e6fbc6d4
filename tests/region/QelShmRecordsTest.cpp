// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "region/QelShmRecords.h"

#include "region/QelSharedMemoryAccess.h"
#include "tests/support/RawRegion.h"

#include <gtest/gtest.h>

#include <array>
#include <cstdint>
#include <cstring>
#include <string>
#include <type_traits>
#include <vector>

namespace {

using qel::test::RawRegion;

using Bytes = std::vector<std::uint8_t>;

template <typename Record>
Record forged(Bytes const& bytes) {
    Record record{};
    EXPECT_EQ(bytes.size(), sizeof record);
    std::memcpy(&record, bytes.data(), sizeof record);
    return record;
}

template <typename Record>
Bytes rawBytes(Record const& record) {
    Bytes bytes(sizeof record);
    std::memcpy(bytes.data(), &record, sizeof record);
    return bytes;
}

// clang-format off
Bytes const& pointImage() {
    static Bytes const image{
        0x1F, 0x03, 0x00, 0x00,                         // pos 799
        0x01, 0x02, 0x03, 0x04,                         // next
        0xFF, 0xFF, 0xFF, 0xFF,                         // prev: none
        0x5F, 0x22, 0x00, 0x00,                         // mvs 8799
        0x02, 0x00, 0x00, 0x00,                         // children
        0x03, 0x00, 0x00, 0x80,                         // parent
        0x00, 0x00, 0x05, 0x03, 0x02, 0x01, 0x00, 0xFF, // guid
        0x88, 0x77, 0x66, 0x55, 0x44, 0x33, 0x22, 0xF1, // at
        0xFE, 0xFF, 0xFF, 0xFF,                         // state -2
        0xFD,                                           // type
        0xFF, 0xFF, 0xFF};                              // reserved
    return image;
}

Bytes const& valueImage() {
    static Bytes const image{
        0x33, 0x33, 0x33, 0x33, 0x33, 0xC3, 0x6C, 0xC0, // value -230.1
        0xD2, 0x04, 0x00, 0x00, 0x00, 0x00, 0x00, 0x80, // at
        0x11, 0x00, 0x00, 0x00,                         // state 17
        0x5F, 0x22, 0x00, 0x00,                         // next 8799
        0xFE, 0xFF,                                     // key
        0xFF, 0xFF, 0xFF, 0xFF, 0xFF, 0xFF};            // reserved
    return image;
}

Bytes const& rootImage() {
    static Bytes const image{
        0x00, 0x00, 0xFF, 0xFF, 0xFF, 0xFF, 0x00, 0xFF, // guid
        0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, // unused
        0x07, 0x01, 0x00, 0x00,                         // devices
        0xFF, 0xFF, 0xFF, 0xFF,                         // groups: none
        0x23, 0x00, 0x00, 0x00,                         // state 35
        0x20,                                           // version
        0xFF, 0xFF, 0xFF};                              // reserved
    return image;
}
// clang-format on

TEST(QelShmRecordsTest, Point_FieldsStandWhereTheLayoutSays) {
    auto const sut = forged<shm::record::QelShmMP>(pointImage());
    EXPECT_EQ(sut.pos, 799U);
    EXPECT_EQ(sut.next, 0x04030201U);
    EXPECT_EQ(sut.prev, 0xFFFFFFFFU);
    EXPECT_EQ(sut.mvs, 8799U);
    EXPECT_EQ(sut.children, 2U);
    EXPECT_EQ(sut.parent, 0x80000003U);
    EXPECT_EQ(static_cast<std::uint64_t>(sut.guid), 0xFF00010203050000ULL);
    EXPECT_LT(sut.guid, 0);
    EXPECT_EQ(sut.at, 0xF122334455667788ULL);
    EXPECT_EQ(sut.state, eStatus_ExpectedValue);
    EXPECT_EQ(sut.type, 0xFD);
}

TEST(QelShmRecordsTest, Point_FieldsAreWrittenWhereTheLayoutSays) {
    shm::record::QelShmMP sut{};
    std::memset(&sut, 0xFF, sizeof sut);
    sut.pos = 799;
    sut.next = 0x04030201;
    sut.mvs = 8799;
    sut.children = 2;
    sut.parent = 0x80000003;
    sut.guid = static_cast<std::int64_t>(0xFF00010203050000ULL);
    sut.at = 0xF122334455667788ULL;
    sut.state = eStatus_ExpectedValue;
    sut.type = 0xFD;
    EXPECT_EQ(rawBytes(sut), pointImage());
}

TEST(QelShmRecordsTest, Value_FieldsStandWhereTheLayoutSays) {
    auto const sut = forged<shm::record::QelShmMVal>(valueImage());
    EXPECT_EQ(sut.value, -230.1);
    EXPECT_EQ(sut.at, 0x80000000000004D2ULL);
    EXPECT_EQ(sut.state, eStatus_On);
    EXPECT_EQ(sut.next, 8799U);
    EXPECT_EQ(sut.key, 0xFFFE);
}

TEST(QelShmRecordsTest, Value_FieldsAreWrittenWhereTheLayoutSays) {
    shm::record::QelShmMVal sut{};
    std::memset(&sut, 0xFF, sizeof sut);
    sut.value = -230.1;
    sut.at = 0x80000000000004D2ULL;
    sut.state = eStatus_On;
    sut.next = 8799;
    sut.key = 0xFFFE;
    EXPECT_EQ(rawBytes(sut), valueImage());
}

TEST(QelShmRecordsTest, Root_FieldsStandWhereTheLayoutSays) {
    auto const sut = forged<shm::record::QelShmRoot>(rootImage());
    EXPECT_EQ(sut.guid, shm::ROOT_SVID);
    EXPECT_EQ(sut.unused, 0U);
    EXPECT_EQ(sut.devices, 0x107U);
    EXPECT_EQ(sut.groups, shm::NO_POSITION);
    EXPECT_EQ(sut.state, eStatus_DeviceUpdateError);
    EXPECT_EQ(sut.version, shm::ACTIVE_VERSION);
}

TEST(QelShmRecordsTest, Root_FieldsAreWrittenWhereTheLayoutSays) {
    shm::record::QelShmRoot sut{};
    std::memset(&sut, 0xFF, sizeof sut);
    sut.guid = shm::ROOT_SVID;
    sut.unused = 0;
    sut.devices = 0x107;
    sut.state = eStatus_DeviceUpdateError;
    sut.version = 32;
    EXPECT_EQ(rawBytes(sut), rootImage());
}

TEST(QelShmRecordsTest, Constants_AreThoseOfTheFormat) {
    EXPECT_STREQ(shm::REGION_NAME, "QelSharedMemory");
    EXPECT_EQ(shm::REGION_SIZE, 320032U);
    EXPECT_EQ(shm::MP_COUNT, 800U);
    EXPECT_EQ(shm::MV_COUNT, 8800U);
    EXPECT_EQ(shm::NO_POSITION, 0xFFFFFFFFU);
    EXPECT_EQ(shm::NO_KEY, 0xFFFF);
    EXPECT_EQ(static_cast<std::uint64_t>(shm::ROOT_SVID), 0xFF00FFFFFFFF0000ULL);
    EXPECT_EQ(shm::ACTIVE_VERSION, 32);
    EXPECT_EQ(shm::WIPE_BYTE, 0xFF);
    static_assert(std::is_same_v<shm::QelShmMP, shm::record::QelShmMP>);
}

/// A writer's region, reached by its records and, independently, by its bytes.
class WrittenRegion : public shm::QelSharedMemoryAccess {
public:
    WrittenRegion() : QelSharedMemoryAccess(shm::ShmAccess::Write) { openShm(); }
    shm::record::Region& records() const { return *region(); }
};

TEST(QelShmRecordsTest, Region_EveryPointStandsAtItsMultipleOf48) {
    WrittenRegion const sut;
    RawRegion const raw;
    for (std::uint32_t pos = 0; pos < 800; ++pos) {
        sut.records().points[pos].pos = pos;
    }
    for (std::uint32_t pos = 0; pos < 800; ++pos) {
        ASSERT_EQ(raw.u32(pos * std::size_t{48}), pos);
    }
}

TEST(QelShmRecordsTest, Region_EveryValueStandsAt38400PlusItsMultipleOf32) {
    WrittenRegion const sut;
    RawRegion const raw;
    for (std::uint32_t pos = 0; pos < 8800; ++pos) {
        sut.records().values[pos].next = pos;
    }
    for (std::uint32_t pos = 0; pos < 8800; ++pos) {
        ASSERT_EQ(raw.u32((pos + std::size_t{1200}) * 32 + 20), pos);
        ASSERT_EQ(raw.u32(38400 + pos * std::size_t{32} + 20), pos);
    }
}

TEST(QelShmRecordsTest, Region_TheRootFollowsTheLastValueAndEndsTheObject) {
    WrittenRegion const sut;
    RawRegion const raw;
    std::memset(&sut.records().values[8799], 0xAA, 32);
    std::memset(&sut.records().root, 0xBB, 32);
    EXPECT_EQ(raw.bytes()[319999], 0xAA);
    EXPECT_EQ(raw.bytes()[319968], 0xAA);
    EXPECT_EQ(raw.bytes()[319967], 0xFF);
    for (std::size_t offset = 320000; offset < 320032; ++offset) {
        EXPECT_EQ(raw.bytes()[offset], 0xBB);
    }
}

TEST(QelShmRecordsTest, Region_ForgedBytesShowInTheRecords) {
    WrittenRegion const sut;
    RawRegion const raw;
    std::memcpy(raw.bytes() + 799 * std::size_t{48}, pointImage().data(), 48);
    std::memcpy(raw.bytes() + 38400 + 8799 * std::size_t{32}, valueImage().data(), 32);
    std::memcpy(raw.bytes() + 320000, rootImage().data(), 32);
    EXPECT_EQ(sut.records().points[799].pos, 799U);
    EXPECT_EQ(sut.records().points[799].type, 0xFD);
    EXPECT_EQ(sut.records().values[8799].value, -230.1);
    EXPECT_EQ(sut.records().values[8799].key, 0xFFFE);
    EXPECT_EQ(sut.records().root.guid, shm::ROOT_SVID);
    EXPECT_EQ(sut.records().root.version, 32);
}

} // namespace
