// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "inspect/naming/Svid.h"

#include "inspect/naming/LevelNames.h"

#include "domain/SensorIdentifier.h"

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <system_error>

namespace qel::inspect {

namespace {

using Part = SensorIdentifier::Part;

template <typename Number>
std::optional<Number> wholeNumber(std::string_view digits, int base) {
    Number result = 0;
    auto const* const end = digits.data() + digits.size();
    auto const parsed = std::from_chars(digits.data(), end, result, base);
    if (parsed.ec != std::errc() || parsed.ptr != end) {
        return std::nullopt;
    }
    return result;
}

std::string_view electricalName(SensorIdentifier::Parts const& parts) {
    auto const deepest = std::find_if(levelNames.rbegin(), levelNames.rend(),
                                      [&](LevelName const& level) { return parts[level.part] != -1; });
    return deepest == levelNames.rend() ? unitName : deepest->name;
}

} // namespace

std::optional<long long> parseSvid(std::string_view text) {
    constexpr int hexadecimal = 16;
    constexpr int decimal = 10;
    bool const isHexadecimal = text.substr(0, 2) == "0x" || text.substr(0, 2) == "0X";
    if (!text.empty() && text.front() == '-') {
        return wholeNumber<long long>(text, decimal);
    }
    auto const bits = wholeNumber<std::uint64_t>(isHexadecimal ? text.substr(2) : text,
                                                 isHexadecimal ? hexadecimal : decimal);
    if (!bits) {
        return std::nullopt;
    }
    return static_cast<long long>(*bits);
}

std::string_view kindName(long long svid) {
    auto const parts = SensorIdentifier::getSensorIdParts(svid);
    switch (parts[Part::Kind]) {
    case SensorType::Electrical:
        return electricalName(parts);
    case SensorType::I2C:
        return sensorName;
    case SensorType::SocketGroup:
        return socketGroupName;
    case SensorType::RCM:
        return rcmName;
    default:
        return "point";
    }
}

std::string pointLabel(long long svid) {
    auto const parts = SensorIdentifier::getSensorIdParts(svid);
    std::string label(kindName(svid));
    char separator = ' ';
    for (auto const& level : levelNames) {
        if (parts[level.part] != -1) {
            label += separator + std::to_string(parts[level.part]);
            separator = '/';
        }
    }
    return separator == ' ' ? label + ' ' + std::to_string(parts[Part::Device]) : label;
}

} // namespace qel::inspect
