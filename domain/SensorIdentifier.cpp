// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "domain/SensorIdentifier.h"

#include <cstdint>
#include <locale>
#include <sstream>

namespace {

constexpr unsigned keyBits = 16;
constexpr unsigned byteBits = 8;
constexpr std::uint64_t byteMask = 0xFF;

struct Level {
    SensorIdentifier::Part part;
    char const* name;
};

constexpr std::array<Level, 5> levels{{{SensorIdentifier::Device, "device"},
                                       {SensorIdentifier::Inlet, "inlet"},
                                       {SensorIdentifier::Phase, "phase"},
                                       {SensorIdentifier::Circuit, "circuit"},
                                       {SensorIdentifier::Socket, "socket"}}};

} // namespace

SensorIdentifier::Parts::Parts(long long svid) {
    auto bits = static_cast<std::uint64_t>(svid);
    for (auto byte = bytes_.rbegin(); byte != bytes_.rend(); ++byte) {
        *byte = static_cast<signed char>(bits & byteMask);
        bits >>= byteBits;
    }
}

SensorIdentifier::SensorIdentifier(SensorType::SensorType kind) {
    setPart(Kind, kind);
}

SensorIdentifier::~SensorIdentifier() = default;

SensorIdentifier::Parts SensorIdentifier::getSensorIdParts(long long svid) {
    return Parts(svid);
}

SensorType::SensorType SensorIdentifier::extractSensorType(long long svid) {
    return static_cast<SensorType::SensorType>(
        static_cast<signed char>((static_cast<std::uint64_t>(svid) >> 48U) & byteMask));
}

unsigned short SensorIdentifier::getKey(long long svid) {
    return static_cast<unsigned short>(static_cast<std::uint64_t>(svid) & 0xFFFFU);
}

std::string SensorIdentifier::explain(long long svid) {
    auto const parts = getSensorIdParts(svid);
    std::ostringstream text;
    text.imbue(std::locale::classic()); // no digit grouping, whatever the process's locale
    text << std::hex << "0x";
    text.width(16);
    text.fill('0');
    text << static_cast<std::uint64_t>(svid) << " (" << extractSensorType(svid) << std::dec;
    for (auto const& level : levels) {
        if (parts[level.part] != -1) {
            text << ", " << level.name << ' ' << static_cast<int>(parts[level.part]);
        }
    }
    if (getKey(svid) != 0) {
        text << ", key 0x" << std::hex << getKey(svid);
    }
    text << ')';
    return text.str();
}

long long SensorIdentifier::getSensorVariableID(unsigned short key) const {
    std::uint64_t bits = 0;
    for (auto const level : levels_) {
        bits = (bits << byteBits) | static_cast<std::uint8_t>(level);
    }
    return static_cast<long long>((bits << keyBits) | key);
}
