// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "reader/QelShmMPntCmp.h"

#include "domain/SensorIdentifier.h"
#include "domain/SensorType.h"

namespace shm {

namespace {

// Bytes of a sensor id, counted from its lowest one.
constexpr std::uint64_t byteMask(unsigned int byte) {
    return std::uint64_t{0xFF} << (8 * byte);
}

constexpr std::uint64_t keyMask = 0xFFFF;
constexpr std::uint64_t rcmKey = 4;

} // namespace

std::int64_t QelShmMPntCmp::key(long long svid) {
    auto const bits = static_cast<std::uint64_t>(svid);
    switch (SensorIdentifier::extractSensorType(svid)) {
    case SensorType::I2C:
        // Deliberate: sensors that differ only in these two bytes are equal.
        return static_cast<std::int64_t>(bits & ~(byteMask(2) | byteMask(5)));
    case SensorType::RCM:
        // Deliberate: monitors are sorted among the electrical points, by the id without its kind and with key 4.
        return static_cast<std::int64_t>((bits & ~(keyMask | byteMask(6))) | rcmKey);
    default:
        return svid;
    }
}

} // namespace shm
