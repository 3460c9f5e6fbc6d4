// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

// What the field tables say of a slot that was just set up, compared with a region that a writer has laid out.

#include "region/LayoutTables.h"

#include "format/ValueKeys.h"
#include "tests/support/RawRegion.h"
#include "tests/writer/WriterFixture.h"

#include <gtest/gtest.h>

#include <array>
#include <cstdint>
#include <map>
#include <string>

namespace qel::test {

namespace {

using shm::record::FieldRow;

/// The bytes of a field as a number.
std::int64_t numberIn(RawRegion const& region, std::size_t record, FieldRow const& field) {
    auto const offset = record + field.offset;
    std::string const type = field.type;
    if (type == "u8") {
        return region.get<std::uint8_t>(offset);
    }
    if (type == "u16") {
        return region.get<std::uint16_t>(offset);
    }
    if (type == "u32") {
        return region.get<std::uint32_t>(offset);
    }
    if (type == "i32") {
        return region.get<std::int32_t>(offset);
    }
    if (type == "f64") {
        return static_cast<std::int64_t>(region.get<double>(offset));
    }
    EXPECT_TRUE(type == "i64" || type == "u64") << type;
    return region.get<std::int64_t>(offset);
}

/// What the words of `initially` promise; numbers that are the slot's own come from `own`.
std::int64_t promised(FieldRow const& field, std::map<std::string, std::int64_t> const& own) {
    std::string const words = field.initially;
    if (words == "none") {
        EXPECT_TRUE(field.none) << field.name << " has no none value";
        return field.none.value_or(0);
    }
    auto const known = own.find(words);
    if (known != own.end()) {
        return known->second;
    }
    auto const isHexadecimal = words.rfind("0x", 0) == 0;
    return isHexadecimal ? static_cast<std::int64_t>(std::stoull(words, nullptr, 16)) : std::stoll(words);
}

template <std::size_t rowCount>
void expectPromised(std::array<FieldRow, rowCount> const& fields, RawRegion const& region, std::size_t record,
                    std::map<std::string, std::int64_t> const& own) {
    for (auto const& field : fields) {
        SCOPED_TRACE(field.name);
        if (std::string(field.type) != "bytes") {
            EXPECT_EQ(promised(field, own), numberIn(region, record, field));
            continue;
        }
        for (std::size_t byte = 0; byte < field.size; ++byte) {
            EXPECT_EQ(std::stoi(field.initially, nullptr, 16),
                      region.get<std::uint8_t>(record + field.offset + byte));
        }
    }
}

/// What a slot or the root holds once it was set up.
using LayoutTablesTest = WriterTest;

TEST_F(LayoutTablesTest, PointFields_InitiallyHoldWhatTheWriterStores) {
    constexpr auto socket = pointId(1, 0, 1, 1, 1, 1);
    sut.initMP(5, socket, 3);
    expectPromised(shm::record::pointFields, raw, rawPoint(5),
                   {{"its position", 5}, {"its parent", 3}, {"its sensor id", socket}});
}

TEST_F(LayoutTablesTest, PointFields_TypeOfGroupsAndMonitorsIsInitiallyOne) {
    constexpr auto words = "0; 1 for kinds 2 and 4";
    for (auto const svid : {pointId(1, 2, -1, -1, -1, 1), pointId(1, 4, 1)}) {
        sut.initMP(6, svid, rawNone);
        expectPromised(shm::record::pointFields, raw, rawPoint(6),
                       {{"its position", 6}, {"its parent", rawNone}, {"its sensor id", svid}, {words, 1}});
    }
}

TEST_F(LayoutTablesTest, ValueFields_InitiallyHoldWhatTheWriterStores) {
    sut.initMV(7, shm::key::activePower);
    expectPromised(shm::record::valueFields, raw, rawValue(7), {{"its key", 0x13}});
}

TEST_F(LayoutTablesTest, RootFields_InitiallyHoldWhatTheWriterStores) {
    sut.setActive();
    expectPromised(shm::record::rootFields, raw, rawRootOffset, {});
}

TEST_F(LayoutTablesTest, CoversRecord_GapOverlapOrRest_IsRefused) {
    constexpr auto size = sizeof(shm::record::QelShmMVal);
    EXPECT_TRUE(shm::record::coversRecord(shm::record::valueFields, size));
    EXPECT_FALSE(shm::record::coversRecord(shm::record::valueFields, size + 1));
    EXPECT_FALSE(shm::record::coversRecord(shm::record::valueFields, size - 1));
    for (std::size_t row = 1; row < shm::record::valueFields.size(); ++row) {
        auto fields = shm::record::valueFields;
        fields[row].offset += 1;
        EXPECT_FALSE(shm::record::coversRecord(fields, size)) << fields[row].name;
        fields[row].offset -= 2;
        EXPECT_FALSE(shm::record::coversRecord(fields, size)) << fields[row].name;
    }
}

} // namespace

} // namespace qel::test
