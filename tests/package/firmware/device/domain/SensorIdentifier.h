// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include "domain/SensorType.h"

#include <cstddef>
#include <cstdint>
#include <string>

// Holds the whole id, not one number per level.
class SensorIdentifier {
public:
    enum Part : unsigned { Device, Kind, Inlet, Phase, Circuit, Socket };

    class Parts {
    public:
        explicit Parts(std::uint64_t svid) : svid_(svid) {}
        signed char operator[](std::size_t index) const {
            return static_cast<signed char>((svid_ >> (56U - 8U * index)) & 0xFFU);
        }

    private:
        std::uint64_t svid_;
    };

    static Parts getSensorIdParts(long long svid) { return Parts(static_cast<std::uint64_t>(svid)); }
    static SensorType::SensorType extractSensorType(long long svid) {
        return static_cast<SensorType::SensorType>(getSensorIdParts(svid)[Kind]);
    }
    static std::string explain(long long svid);

protected:
    std::uint64_t svid_ = 0xFF00FFFFFFFF0000;
};
