// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

// The document against what the library does, not against the tables that it is made from.

#include "tools/layout/LayoutDocument.h"

#include "format/Names.h"
#include "format/Print.h"
#include "format/ValueFormatter.h"
#include "inspect/naming/LedText.h"
#include "region/QelShmMPnt.h"
#include "region/QelShmMVal.h"
#include "tests/support/RawRegion.h"
#include "tests/writer/WriterFixture.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <map>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

namespace qel::test {

namespace {

using Json = nlohmann::ordered_json;

Json const& document() {
    static auto const made = tools::layoutDocument();
    return made;
}

/// The entry of a list whose member holds this; null when there is none.
template <typename Key>
Json const* find(char const* list, char const* member, Key const& wanted) {
    auto const& entries = document().at(list);
    auto const found = std::find_if(entries.begin(), entries.end(),
                                    [&](Json const& entry) { return entry.at(member) == wanted; });
    return found != entries.end() ? &*found : nullptr;
}

/// Offset of a field of the region's first slot of this record.
std::size_t offsetOf(char const* record, char const* name) {
    for (auto const& field : find("records", "name", record)->at("fields")) {
        if (field.at("name") == name) {
            return find("tables", "record", record)->at("offset").get<std::size_t>() +
                   field.at("offset").get<std::size_t>();
        }
    }
    ADD_FAILURE() << record << " has no field " << name;
    return 0;
}

TEST(LayoutDocumentTest, Object_IsTheRegion) {
    auto const& object = document().at("object");
    EXPECT_EQ("QelSharedMemory", object.at("name"));
    EXPECT_EQ(rawRegionSize, object.at("size"));
    EXPECT_EQ(rawNone, object.at("noPosition"));
    EXPECT_EQ(rootSvid, object.at("rootGuid"));
    EXPECT_EQ(32, object.at("activeVersion"));
    EXPECT_EQ(0xFF, object.at("wipeByte"));
    EXPECT_EQ(0xFFFF, object.at("noKey"));
}

TEST(LayoutDocumentTest, Tables_CoverTheRegionSlotBySlot) {
    std::size_t end = 0;
    for (auto const& table : document().at("tables")) {
        EXPECT_EQ(end, table.at("offset")) << table;
        EXPECT_EQ(table.at("count").get<std::size_t>() * table.at("size").get<std::size_t>(),
                  table.at("length"));
        EXPECT_EQ(find("records", "name", table.at("record"))->at("size"), table.at("size"));
        end += table.at("length").get<std::size_t>();
    }
    EXPECT_EQ(rawRegionSize, end);
}

TEST(LayoutDocumentTest, Fields_StandWhereReadersLookForThem) {
    std::vector<std::pair<std::size_t, std::size_t>> const places{
        {offsetOf("point", "pos"), field::pos},
        {offsetOf("point", "next"), field::next},
        {offsetOf("point", "prev"), field::prev},
        {offsetOf("point", "mvs"), field::mvs},
        {offsetOf("point", "children"), field::children},
        {offsetOf("point", "parent"), field::parent},
        {offsetOf("point", "guid"), field::guid},
        {offsetOf("point", "at"), field::pointAt},
        {offsetOf("point", "state"), field::pointState},
        {offsetOf("point", "type"), field::pointType},
        {offsetOf("value", "value"), rawValue(0)},
        {offsetOf("value", "at"), rawValue(0) + field::valueAt},
        {offsetOf("value", "state"), rawValue(0) + field::valueState},
        {offsetOf("value", "next"), rawValue(0) + field::valueNext},
        {offsetOf("value", "key"), rawValue(0) + field::valueKey},
        {offsetOf("root", "guid"), rawRootOffset},
        {offsetOf("root", "unused"), field::rootUnused},
        {offsetOf("root", "devices"), field::devices},
        {offsetOf("root", "groups"), field::groups},
        {offsetOf("root", "state"), field::rootState},
        {offsetOf("root", "version"), field::version},
    };
    for (auto const& [documented, expected] : places) {
        EXPECT_EQ(expected, documented);
    }
}

TEST(LayoutDocumentTest, SensorId_PartsTakeAnIdApart) {
    constexpr std::uint64_t svid = 0x0102030405060708;
    std::map<std::string, std::uint64_t> parts;
    for (auto const& part : document().at("sensorId")) {
        auto const mask = (std::uint64_t{1} << part.at("bits").get<unsigned>()) - 1;
        parts[part.at("name")] = svid >> part.at("shift").get<unsigned>() & mask;
    }
    EXPECT_EQ((std::map<std::string, std::uint64_t>{{"device", 1},
                                                    {"kind", 2},
                                                    {"inlet", 3},
                                                    {"phase", 4},
                                                    {"circuit", 5},
                                                    {"socket", 6},
                                                    {"key", 0x0708}}),
              parts);
}

TEST(LayoutDocumentTest, Keys_AreNamedAndShownAsTheLibraryDoes) {
    std::size_t named = 0;
    for (unsigned code = 0; code <= 0xFFFF; ++code) {
        auto const key = static_cast<unsigned short>(code);
        auto const name = shm::keyName(key);
        auto const* const entry = find("keys", "key", code);
        if (name.rfind("KEY_IDX_", 0) == 0 || name == "UNKNOWN KEY") {
            EXPECT_EQ(nullptr, entry) << name;
            continue;
        }
        ++named;
        ASSERT_NE(nullptr, entry) << name;
        EXPECT_EQ(name, entry->at("name"));
        std::string shown = "0";
        if (auto const decimals = entry->at("decimals").get<std::size_t>()) {
            shown += "." + std::string(decimals, '0');
        }
        if (!entry->at("unit").is_null()) {
            shown += " " + entry->at("unit").get<std::string>();
        }
        EXPECT_EQ(tav::ValueFormatter::str(key, 0.0, " "), shown);
        long long unscaled = 1;
        for (int digit = 0; !entry->at("scale").is_null() && digit < entry->at("scale"); ++digit) {
            unscaled *= 10;
        }
        EXPECT_EQ(tav::ValueFormatter::scale(key, 1.0), unscaled) << name;
    }
    EXPECT_EQ(named, document().at("keys").size());
}

using LayoutDocumentOfAUnitTest = WriterTest;

TEST_F(LayoutDocumentOfAUnitTest, Keys_KindAndFactorAreWhatTheWriterDoes) {
    constexpr auto unit = pointId(1, 0);
    constexpr double delivered = 12345;
    Definitions definitions;
    for (auto const& key : document().at("keys")) {
        definitions[unit].mvs[key.at("key").get<unsigned short>()] = 0;
    }
    ASSERT_TRUE(sut.addStructure(definitions));
    auto const chain = values(0);
    ASSERT_EQ(document().at("keys").size(), chain.size());
    std::uint64_t at = 0;
    for (auto const pos : chain) {
        auto const key = raw.get<std::uint16_t>(rawValue(pos) + field::valueKey);
        auto const& entry = *find("keys", "key", key);
        ASSERT_TRUE(sut.updateMV(unit | key, measured(delivered, ++at)));
        auto const isOfThePoint = raw.get<std::uint64_t>(rawPoint(0) + field::pointAt) == at;
        EXPECT_EQ(entry.at("kind") == "point state", isOfThePoint) << entry;
        EXPECT_EQ(isOfThePoint ? 0.0 : delivered / entry.at("factor").get<double>(), number(pos)) << entry;
    }
}

TEST(LayoutDocumentTest, States_AreNamedAndShownAsTheLibraryDoes) {
    for (int code = -100; code <= 100; ++code) {
        auto const state = static_cast<eStatus_Bits>(code);
        shm::record::QelShmMVal slot{};
        slot.state = state;
        std::ostringstream line;
        line << shm::QelShmMVal(&slot);
        auto const* const entry = find("states", "state", code);
        auto const name = entry != nullptr ? entry->at("name").get<std::string>() : "UNKNOWN STATE";
        EXPECT_NE(std::string::npos, line.str().find(", state = " + name + ", at = ")) << line.str();
        if (entry != nullptr) {
            auto const& led = entry->at("led");
            EXPECT_EQ(inspect::ledText(state), led.is_null() ? "as before" : led.get<std::string>());
        }
    }
}

/// The document's text of a type code.
std::string typeText(int kind, Json const& level, unsigned code) {
    for (auto const& table : document().at("types")) {
        if (table.at("kind") == kind && table.at("level") == level) {
            for (auto const& row : table.at("codes")) {
                if (row.at("code") == code) {
                    return row.at("name");
                }
            }
            return table.at("unlisted");
        }
    }
    return {};
}

TEST(LayoutDocumentTest, Types_AreNamedAsTheLibraryDoes) {
    struct Sample {
        long long svid;
        int kind;
        Json level;
    };
    std::array<Sample, 8> const samples{{{pointId(7, 0), 0, "device"},
                                         {pointId(7, 0, 2), 0, "inlet"},
                                         {pointId(7, 0, 2, 3), 0, "phase"},
                                         {pointId(7, 0, 2, -1, 4), 0, "circuit"},
                                         {pointId(7, 0, 2, -1, 4, 5), 0, "socket"},
                                         {pointId(7, 1, 1, 1), 1, nullptr},
                                         {pointId(7, 2, -1, -1, -1, 1), 2, nullptr},
                                         {pointId(7, 4, 1), 4, nullptr}}};
    EXPECT_EQ(samples.size(), document().at("types").size());
    for (auto const& sample : samples) {
        for (unsigned code = 0; code <= 0xFF; ++code) {
            shm::QelShmMP slot{};
            slot.guid = sample.svid;
            slot.type = static_cast<std::uint8_t>(code);
            EXPECT_EQ(shm::QelShmMPnt(&slot).tstr(), typeText(sample.kind, sample.level, code))
                << hex(sample.svid) << ", code " << code;
        }
    }
}

} // namespace

} // namespace qel::test
