// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "inspect/naming/PointPath.h"

#include "format/HexText.h"
#include "inspect/naming/Svid.h"

#include "domain/SensorIdentifier.h"
#include "region/SvidParts.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <charconv>
#include <cstddef>
#include <cstdint>
#include <system_error>

namespace qel::inspect {

namespace {

struct LevelName {
    SensorIdentifier::Part part;
    std::string_view name;
};

/// The levels below the device, highest first.
constexpr std::array<LevelName, 4> levelNames{{{SensorIdentifier::Inlet, "inlet"},
                                               {SensorIdentifier::Phase, "phase"},
                                               {SensorIdentifier::Circuit, "circuit"},
                                               {SensorIdentifier::Socket, "socket"}}};

constexpr std::string_view unitName = "unit";
constexpr std::string_view sensorName = "sensor";
constexpr std::string_view socketGroupName = "group";

constexpr signed char unused = -1;
constexpr signed char defaultDevice = 1; ///< the path of a top-level group does not name it
constexpr std::size_t levelCount = levelNames.size();

struct NestedKind {
    SensorType::SensorType kind;
    std::string_view name;
};

/// Kinds of points below an electrical one.
constexpr std::array<NestedKind, 2> nestedKinds{
    {{SensorType::SocketGroup, socketGroupName}, {SensorType::RCM, "rcm"}}};

/// A sensor id taken apart; level i is levelNames[i].
struct Id {
    signed char device = unused;
    signed char kind = SensorType::Electrical;
    std::array<signed char, levelCount> levels{unused, unused, unused, unused};

    /// How many levels there are down to the deepest one in use, looking only at those before a level.
    std::size_t usedLevels(std::size_t before = levelCount) const {
        while (before > 0 && levels.at(before - 1) == unused) {
            --before;
        }
        return before;
    }
};

Id idOf(long long svid) {
    auto const parts = SensorIdentifier::getSensorIdParts(svid);
    Id id;
    id.device = parts[SensorIdentifier::Device];
    id.kind = parts[SensorIdentifier::Kind];
    for (std::size_t level = 0; level < levelCount; ++level) {
        id.levels.at(level) = parts[levelNames.at(level).part];
    }
    return id;
}

long long svidOf(Id const& id) {
    constexpr unsigned byteBits = 8;
    constexpr unsigned keyBits = 16;
    std::uint64_t bits = static_cast<std::uint8_t>(id.device);
    bits = bits << byteBits | static_cast<std::uint8_t>(id.kind);
    for (auto const level : id.levels) {
        bits = bits << byteBits | static_cast<std::uint8_t>(level);
    }
    bits <<= keyBits;
    return static_cast<long long>(bits);
}

std::string component(std::string_view name, signed char number) {
    return std::string(name) + std::to_string(number);
}

std::string_view nameOf(Id const& id) {
    if (id.kind == SensorType::Electrical) {
        auto const levels = id.usedLevels();
        return levels == 0 ? unitName : levelNames.at(levels - 1).name;
    }
    for (auto const& [kind, name] : nestedKinds) {
        if (kind == id.kind) {
            return name;
        }
    }
    return id.kind == SensorType::I2C ? sensorName : "point";
}

/// The device and the levels in use before a level.
std::string electricalPath(Id const& id, std::size_t levels) {
    auto path = component(unitName, id.device);
    for (std::size_t level = 0; level < levels; ++level) {
        if (id.levels.at(level) != unused) {
            path += '/' + component(levelNames.at(level).name, id.levels.at(level));
        }
    }
    return path;
}

bool isTopLevelGroup(Id const& id) {
    return id.kind == SensorType::SocketGroup &&
           std::count(id.levels.begin(), id.levels.end(), unused) == levelCount - 1 &&
           id.levels.back() != unused;
}

std::string topLevelGroupPath(Id const& id) {
    auto const number = id.levels.back();
    return id.device == defaultDevice ? component(socketGroupName, number)
                                      : component(socketGroupName, id.device) + '.' + std::to_string(number);
}

/// The path of a group or monitor below the unit or one of its levels. Its number is the deepest level.
std::string nestedPath(Id const& id, std::string_view name) {
    auto const level = id.usedLevels() - 1;
    auto path = electricalPath(id, level) + '/';
    if (level != id.usedLevels(level)) {
        path.append(levelNames.at(level).name).append(1, '-');
    }
    return path + component(name, id.levels.at(level));
}

/// The path of an I2C sensor; "" if a level before the deepest one is not in use.
std::string sensorPath(Id const& id) {
    auto path = electricalPath(id, 0) + '/';
    for (std::size_t level = 0; level < id.usedLevels(); ++level) {
        if (id.levels.at(level) == unused) {
            return {};
        }
        path +=
            level == 0 ? component(sensorName, id.levels.front()) : '.' + std::to_string(id.levels.at(level));
    }
    return path;
}

/// The path by the scheme of the id's kind, "" if there is none.
std::string schemePath(Id const& id) {
    if (id.device < 0 ||
        std::any_of(id.levels.begin(), id.levels.end(), [](signed char level) { return level < unused; })) {
        return {};
    }
    if (id.kind == SensorType::Electrical) {
        return electricalPath(id, levelCount);
    }
    if (isTopLevelGroup(id)) {
        return topLevelGroupPath(id);
    }
    if (id.levels.front() == unused) {
        return {};
    }
    if (id.kind == SensorType::I2C) {
        return sensorPath(id);
    }
    for (auto const& [kind, name] : nestedKinds) {
        if (kind == id.kind) {
            return nestedPath(id, name);
        }
    }
    return {};
}

std::string lowerCase(std::string_view text) {
    std::string lower(text);
    std::transform(lower.begin(), lower.end(), lower.begin(),
                   [](unsigned char character) { return static_cast<char>(std::tolower(character)); });
    return lower;
}

bool takePrefix(std::string_view& text, std::string_view prefix) {
    if (text.substr(0, prefix.size()) != prefix) {
        return false;
    }
    text.remove_prefix(prefix.size());
    return true;
}

/// Reads a number at the front; none if there are no digits or it is above 127.
std::optional<signed char> takeNumber(std::string_view& text) {
    signed char number = 0;
    auto const parsed = std::from_chars(text.data(), text.data() + text.size(), number);
    if (text.empty() || text.front() == '-' || parsed.ec != std::errc()) {
        return std::nullopt;
    }
    text.remove_prefix(static_cast<std::size_t>(parsed.ptr - text.data()));
    return number;
}

/// Reads a name and a number at the front.
std::optional<signed char> takeComponent(std::string_view& text, std::string_view name) {
    return takePrefix(text, name) ? takeNumber(text) : std::nullopt;
}

// The functions below also accept paths in another form than pointPath() writes; parsePath() rejects these.

std::optional<Id> readTopLevelGroup(std::string_view text) {
    Id id;
    id.kind = SensorType::SocketGroup;
    id.device = defaultDevice;
    auto number = takeComponent(text, socketGroupName);
    if (number && takePrefix(text, ".")) {
        id.device = *number;
        number = takeNumber(text);
    }
    id.levels.back() = number.value_or(unused);
    return number && text.empty() ? std::optional(id) : std::nullopt;
}

/// Reads the numbers behind "sensor".
bool readSensor(std::string_view& text, Id& id) {
    id.kind = SensorType::I2C;
    for (auto& level : id.levels) {
        auto const number = takeNumber(text);
        if (!number) {
            return false;
        }
        level = *number;
        if (!takePrefix(text, ".")) {
            return true;
        }
    }
    return false;
}

/// Reads a group or monitor; its number goes into a level.
bool readNested(std::string_view& text, Id& id, std::size_t level) {
    for (auto const& [kind, name] : nestedKinds) {
        if (takePrefix(text, name)) {
            auto const number = takeNumber(text);
            id.kind = kind;
            if (number && level < levelCount) {
                id.levels.at(level) = *number;
                return true;
            }
            return false;
        }
    }
    return false;
}

/// Reads the text between two slashes.
bool readComponent(std::string_view& text, Id& id) {
    for (std::size_t level = 0; level < levelCount; ++level) {
        if (takePrefix(text, levelNames.at(level).name)) {
            if (takePrefix(text, "-")) {
                return readNested(text, id, level);
            }
            auto const number = takeNumber(text);
            id.levels.at(level) = number.value_or(unused);
            return number.has_value();
        }
    }
    return takePrefix(text, sensorName) ? readSensor(text, id) : readNested(text, id, id.usedLevels());
}

std::optional<Id> readPath(std::string_view text) {
    auto const device = takeComponent(text, unitName);
    if (!device) {
        return readTopLevelGroup(text);
    }
    Id id;
    id.device = *device;
    while (!text.empty()) {
        if (!takePrefix(text, "/") || !readComponent(text, id)) {
            return std::nullopt;
        }
    }
    return id;
}

} // namespace

std::string pointPath(long long svid) {
    auto path = schemePath(idOf(svid));
    return path.empty() ? shm::svidText(shm::pointSvid(svid)) : path;
}

std::optional<long long> parsePath(std::string_view path) {
    auto const text = lowerCase(path);
    if (text.rfind("0x", 0) == 0) {
        auto const svid = parseSvid(text);
        return svid ? std::optional(shm::pointSvid(*svid)) : std::nullopt;
    }
    auto const id = readPath(text);
    return id && schemePath(*id) == text ? std::optional(svidOf(*id)) : std::nullopt;
}

std::string_view kindName(long long svid) {
    return nameOf(idOf(svid));
}

std::string pointLabel(long long svid) {
    auto const id = idOf(svid);
    std::string label(nameOf(id));
    char separator = ' ';
    for (auto const level : id.levels) {
        if (level != unused) {
            label += separator + std::to_string(level);
            separator = '/';
        }
    }
    return separator == ' ' ? label + ' ' + std::to_string(id.device) : label;
}

} // namespace qel::inspect
