// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "inspect/check/SiblingOrder.h"

#include "domain/SensorIdentifier.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <tuple>

namespace qel::inspect {

namespace {

constexpr std::array<SensorType::SensorType, 4> kindOrder{SensorType::Electrical, SensorType::RCM,
                                                          SensorType::I2C, SensorType::SocketGroup};

std::size_t rankOf(long long svid) {
    auto const kind = SensorIdentifier::extractSensorType(svid);
    auto const* const place = std::find(kindOrder.begin(), kindOrder.end(), kind);
    return static_cast<std::size_t>(place - kindOrder.begin());
}

/// Of an I2C sensor.
auto placeOf(long long svid) {
    auto const parts = SensorIdentifier::getSensorIdParts(svid);
    return std::make_tuple(parts[SensorIdentifier::Phase], parts[SensorIdentifier::Circuit]);
}

} // namespace

bool belongsBefore(long long svid, long long other) {
    if (!isOrdered(svid) || !isOrdered(other)) {
        return false;
    }
    auto const rank = rankOf(svid);
    auto const otherRank = rankOf(other);
    if (rank != otherRank) {
        return rank < otherRank;
    }
    return SensorIdentifier::extractSensorType(svid) == SensorType::I2C ? placeOf(svid) < placeOf(other)
                                                                        : svid < other;
}

bool isOrdered(long long svid) {
    return rankOf(svid) < kindOrder.size();
}

} // namespace qel::inspect
