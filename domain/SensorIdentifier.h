// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// Splits and builds 64-bit sensor ids (svids).
#pragma once

#include "domain/SensorType.h"

#include <array>
#include <cstddef>
#include <string>

/// A sensor id reads, from its highest byte down: device, kind, inlet, phase, circuit, socket, then the 16-bit value
/// key. A byte of 0xFF (-1) marks a level that the id does not use; a key of 0 names the point itself.
///
/// Threads: the static operations may be called from any thread; an object is not shared without care.
class SensorIdentifier {
public:
    /// Index of a byte of the id in its parts record.
    enum Part : unsigned char { Device, Kind, Inlet, Phase, Circuit, Socket, KeyHigh, KeyLow };

    /// The eight bytes of an id as signed numbers; byte i holds bits 63-8i to 56-8i.
    class Parts {
    public:
        explicit Parts(long long svid);
        /// Throws std::out_of_range for an index above 7.
        signed char operator[](std::size_t index) const { return bytes_.at(index); }

    private:
        std::array<signed char, 8> bytes_{};
    };

    SensorIdentifier(SensorIdentifier const&) = default;
    SensorIdentifier& operator=(SensorIdentifier const&) = default;
    SensorIdentifier(SensorIdentifier&&) = default;
    SensorIdentifier& operator=(SensorIdentifier&&) = default;
    virtual ~SensorIdentifier();

    static Parts getSensorIdParts(long long svid);
    static SensorType::SensorType extractSensorType(long long svid);

    /// The value key: the low 16 bits.
    static unsigned short getKey(long long svid);

    /// Readable text for messages, such as "0x0100010203050001 (Electrical, device 1, inlet 1, phase 2, circuit 3,
    /// socket 5, key 0x1)"; levels that the id does not use are left out.
    static std::string explain(long long svid);

    /// The id of this identifier's value with the given key; key 0 gives the point's own id.
    long long getSensorVariableID(unsigned short key) const;

protected:
    /// All levels unused but the kind.
    explicit SensorIdentifier(SensorType::SensorType kind);

    void setPart(Part part, signed char value) { levels_.at(part) = value; }

private:
    std::array<signed char, 6> levels_{-1, -1, -1, -1, -1, -1};
};
