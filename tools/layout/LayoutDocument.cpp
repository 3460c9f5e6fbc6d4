// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tools/layout/LayoutDocument.h"

#include "format/KeyTable.h"
#include "format/StateName.h"
#include "inspect/naming/LedText.h"
#include "inspect/naming/StateClass.h"
#include "region/LayoutTables.h"
#include "region/QelShmRecords.h"
#include "region/TableLookup.h"
#include "region/TypeNames.h"
#include "states/LedTables.h"

#include "domain/SensorIdentifier.h"
#include "domain/SensorType.h"

#include <array>
#include <cstdint>
#include <string>
#include <string_view>
#include <utility>

namespace qel::tools {

namespace {

using Json = nlohmann::ordered_json;
using shm::record::FieldRow;
using shm::record::TableRow;

Json objectDocument() {
    return {{"name", shm::REGION_NAME},
            {"size", shm::REGION_SIZE},
            {"byteOrder", "little-endian"},
            {"wipeByte", shm::WIPE_BYTE},
            {"activeVersion", shm::ACTIVE_VERSION},
            {"noPosition", shm::NO_POSITION},
            {"noKey", shm::NO_KEY},
            {"rootGuid", shm::ROOT_SVID}};
}

Json tableDocument(TableRow const& table) {
    return {{"name", table.name},   {"record", table.record}, {"offset", table.offset},
            {"count", table.count}, {"size", table.size},     {"length", table.count * table.size}};
}

Json fieldDocument(FieldRow const& field) {
    return {{"name", field.name},           {"offset", field.offset},
            {"size", field.size},           {"type", field.type},
            {"meaning", field.meaning},     {"none", field.none ? Json(*field.none) : Json()},
            {"initially", field.initially}, {"writtenBy", field.writtenBy}};
}

template <std::size_t rowCount>
Json recordDocument(char const* name, std::size_t size, std::array<FieldRow, rowCount> const& rows) {
    auto fields = Json::array();
    for (auto const& row : rows) {
        fields.push_back(fieldDocument(row));
    }
    return {{"name", name}, {"size", size}, {"fields", std::move(fields)}};
}

/// The parts of a sensor id, highest first; each is as many bits from its shift upwards.
Json idDocument() {
    struct IdPart {
        char const* name;
        SensorIdentifier::Part part;
    };
    constexpr std::array<IdPart, 6> parts{{{"device", SensorIdentifier::Device},
                                           {"kind", SensorIdentifier::Kind},
                                           {"inlet", SensorIdentifier::Inlet},
                                           {"phase", SensorIdentifier::Phase},
                                           {"circuit", SensorIdentifier::Circuit},
                                           {"socket", SensorIdentifier::Socket}}};
    constexpr int byteBits = 8;
    auto document = Json::array();
    for (auto const& part : parts) {
        document.push_back({{"name", part.name},
                            {"shift", byteBits * (SensorIdentifier::KeyLow - part.part)},
                            {"bits", byteBits}});
    }
    document.push_back({{"name", "key"}, {"shift", 0}, {"bits", 2 * byteBits}});
    return document;
}

char const* kindText(shm::KeyKind kind) {
    switch (kind) {
    case shm::KeyKind::Number:
        return "number";
    case shm::KeyKind::Energy:
        return "energy";
    case shm::KeyKind::PointState:
        return "point state";
    }
    return "";
}

Json keyDocument(shm::KeyRow const& row) {
    auto const unit = shm::keyUnit(row.code);
    return {{"key", row.code},
            {"name", row.name},
            {"kind", kindText(row.kind)},
            {"unit", unit.empty() ? Json() : Json(unit)},
            {"factor", row.kind == shm::KeyKind::Energy ? shm::energyFactor : 1.0},
            {"decimals", row.decimals},
            {"scale", row.scalepos ? Json(*row.scalepos) : Json()}};
}

Json keysDocument() {
    auto keys = Json::array();
    for (auto const& row : shm::keyTable) {
        keys.push_back(keyDocument(row));
    }
    return keys;
}

using ClassRow = shm::TextRow<inspect::StateClass>;

constexpr std::array<ClassRow, 9> classTexts{{{inspect::StateClass::NoState, "no state"},
                                              {inspect::StateClass::NoValue, "no value"},
                                              {inspect::StateClass::Plain, "plain"},
                                              {inspect::StateClass::Good, "good"},
                                              {inspect::StateClass::Identify, "identify"},
                                              {inspect::StateClass::Out, "out"},
                                              {inspect::StateClass::Busy, "busy"},
                                              {inspect::StateClass::Warning, "warning"},
                                              {inspect::StateClass::Alarm, "alarm"}}};
static_assert(shm::isSortedByCode(classTexts));

Json statesDocument() {
    auto states = Json::array();
    for (auto const& [state, name] : shm::stateTable) {
        bool const hasLed = shm::findRow(shm::ledTables.states, state) != nullptr;
        states.push_back({{"state", static_cast<std::int32_t>(state)},
                          {"name", name},
                          {"class", shm::textOf(classTexts, inspect::classOf(state), "")},
                          {"led", hasLed ? Json(inspect::ledText(state)) : Json()}});
    }
    return states;
}

/// The points that share a table of type codes.
struct TypedPoints {
    char const* name;
    SensorType::SensorType kind;
    char const* level; ///< the lowest level that the id uses; null where the kind alone decides
    long long svid;    ///< one of them
};

constexpr std::array<TypedPoints, 8> typedPoints{{
    {"unit", SensorType::Electrical, "device", 0x0100FFFFFFFF0000},
    {"inlet", SensorType::Electrical, "inlet", 0x010001FFFFFF0000},
    {"phase", SensorType::Electrical, "phase", 0x01000101FFFF0000},
    {"fuse", SensorType::Electrical, "circuit", 0x0100010101FF0000},
    {"outlet", SensorType::Electrical, "socket", 0x0100010101010000},
    {"I2C sensor", SensorType::I2C, nullptr, 0x01010101FFFF0000},
    {"socket group", SensorType::SocketGroup, nullptr, 0x0102FFFFFF010000},
    {"residual-current monitor", SensorType::RCM, nullptr, 0x010401FFFFFF0000},
}};

/// Codes are bytes as the region holds them, signed ones too.
Json typesDocument() {
    constexpr std::uint8_t unlisted = 0x80;
    auto types = Json::array();
    for (auto const& points : typedPoints) {
        auto const fallback = shm::typeName(points.svid, unlisted);
        auto codes = Json::array();
        for (unsigned code = 0; code <= UINT8_MAX; ++code) {
            auto const name = shm::typeName(points.svid, static_cast<std::uint8_t>(code));
            if (name != fallback) {
                codes.push_back({{"code", code}, {"name", name}});
            }
        }
        types.push_back({{"points", points.name},
                         {"kind", static_cast<int>(points.kind)},
                         {"level", points.level != nullptr ? Json(points.level) : Json()},
                         {"unlisted", fallback},
                         {"codes", std::move(codes)}});
    }
    return types;
}

} // namespace

nlohmann::ordered_json layoutDocument() {
    auto tables = Json::array();
    for (auto const& table : shm::record::regionTables) {
        tables.push_back(tableDocument(table));
    }
    return {{"schema", 1},
            {"object", objectDocument()},
            {"tables", std::move(tables)},
            {"records",
             {recordDocument("point", sizeof(shm::record::QelShmMP), shm::record::pointFields),
              recordDocument("value", sizeof(shm::record::QelShmMVal), shm::record::valueFields),
              recordDocument("root", sizeof(shm::record::QelShmRoot), shm::record::rootFields)}},
            {"sensorId", idDocument()},
            {"keys", keysDocument()},
            {"states", statesDocument()},
            {"types", typesDocument()}};
}

} // namespace qel::tools
