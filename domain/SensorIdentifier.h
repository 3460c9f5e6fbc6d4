// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// Splits and builds 64-bit sensor ids (svids).
#pragma once

#include "domain/SensorType.h"

#include <array>
#include <cstddef>
#include <string>

/// A 64-bit sensor id. From its highest byte down it reads: device, kind, inlet, phase, circuit, socket, then the
/// 16-bit value key. A byte of 0xFF (-1) marks a level that the id does not use. A key of 0 names the point itself.
///
/// Threads: reentrant.
class SensorIdentifier {
public:
    /// Index of a byte of the id in Parts.
    enum Part : unsigned char {
        Device,  ///< bits 63 to 56
        Kind,    ///< bits 55 to 48, a SensorType::SensorType
        Inlet,   ///< bits 47 to 40
        Phase,   ///< bits 39 to 32
        Circuit, ///< bits 31 to 24
        Socket,  ///< bits 23 to 16
        KeyHigh, ///< bits 15 to 8
        KeyLow,  ///< bits 7 to 0
    };

    /// The eight bytes of an id as signed numbers. Byte i holds bits 63-8i to 56-8i.
    class Parts {
    public:
        /// @param svid the id to split
        explicit Parts(long long svid);

        /// @param index 0 to 7, see Part
        /// @return the byte, -1 for an unused level
        /// @throws std::out_of_range for an index above 7
        signed char operator[](std::size_t index) const { return bytes_.at(index); }

    private:
        std::array<signed char, 8> bytes_{};
    };

    /// Copies the levels.
    SensorIdentifier(SensorIdentifier const&) = default;
    /// Copies the levels.
    /// @return this object
    SensorIdentifier& operator=(SensorIdentifier const&) = default;
    /// Copies the levels.
    SensorIdentifier(SensorIdentifier&&) = default;
    /// Copies the levels.
    /// @return this object
    SensorIdentifier& operator=(SensorIdentifier&&) = default;
    virtual ~SensorIdentifier();

    /// @param svid the id to split
    /// @return its eight bytes
    static Parts getSensorIdParts(long long svid);

    /// @param svid any id
    /// @return its kind byte; any signed byte is possible
    static SensorType::SensorType extractSensorType(long long svid);

    /// @param svid any id
    /// @return the value key: the low 16 bits
    static unsigned short getKey(long long svid);

    /// Readable text for messages. Levels that the id does not use are left out.
    /// @param svid any id
    /// @return for example "0x0100010203050001 (Electrical, device 1, inlet 1, phase 2, circuit 3, socket 5, key 0x1)"
    static std::string explain(long long svid);

    /// Builds the id of one of this identifier's values.
    /// @param key value key, 0 for the point's own id
    /// @return the sensor id
    long long getSensorVariableID(unsigned short key) const;

protected:
    /// All other levels are unused (-1).
    /// @param kind the kind byte
    explicit SensorIdentifier(SensorType::SensorType kind);

    /// @param part  Device to Socket
    /// @param value the level's index, -1 for unused
    /// @throws std::out_of_range for KeyHigh and KeyLow
    void setPart(Part part, signed char value) { levels_.at(part) = value; }

private:
    std::array<signed char, 6> levels_{-1, -1, -1, -1, -1, -1};
};
