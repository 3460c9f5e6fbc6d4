// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "domain/SensorIdentifier.h"

#include "domain/ElectricalSensorIdentifier.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <locale>
#include <stdexcept>
#include <string>

namespace {

long long svid(std::uint64_t bits) {
    return static_cast<long long>(bits);
}

TEST(SensorIdentifierTest, GetSensorIdParts_FirstPartIsTheHighestByte) {
    auto const parts = SensorIdentifier::getSensorIdParts(svid(0x0102030405060708ULL));
    for (std::size_t part = 0; part < 8; ++part) {
        EXPECT_EQ(parts[part], static_cast<int>(part) + 1);
    }
}

TEST(SensorIdentifierTest, GetSensorIdParts_BytesAreSigned) {
    auto const parts = SensorIdentifier::getSensorIdParts(svid(0xFF00807FFE01FF80ULL));
    int const expected[] = {-1, 0, -128, 127, -2, 1, -1, -128};
    for (std::size_t part = 0; part < 8; ++part) {
        EXPECT_EQ(parts[part], expected[part]) << part;
    }
}

TEST(SensorIdentifierTest, GetSensorIdParts_EveryByteKeepsItsValueInEveryPlace) {
    for (std::size_t part = 0; part < 8; ++part) {
        for (unsigned byte = 0; byte < 256; ++byte) {
            auto const parts =
                SensorIdentifier::getSensorIdParts(svid(std::uint64_t{byte} << (56 - 8 * part)));
            for (std::size_t other = 0; other < 8; ++other) {
                auto const expected = other == part ? static_cast<int>(byte) - (byte > 127 ? 256 : 0) : 0;
                ASSERT_EQ(parts[other], expected) << part << ' ' << byte;
            }
        }
    }
}

TEST(SensorIdentifierTest, GetSensorIdParts_IndexPastTheEndThrows) {
    auto const parts = SensorIdentifier::getSensorIdParts(0);
    EXPECT_THROW(static_cast<void>(parts[8]), std::out_of_range);
}

TEST(SensorIdentifierTest, ExtractSensorType_IsTheSecondByte) {
    EXPECT_EQ(SensorIdentifier::extractSensorType(svid(0xFF00FFFFFFFF0000ULL)), SensorType::Electrical);
    EXPECT_EQ(SensorIdentifier::extractSensorType(svid(0x0101FFFFFFFF0000ULL)), SensorType::I2C);
    EXPECT_EQ(SensorIdentifier::extractSensorType(svid(0x0102FFFFFFFF0000ULL)), SensorType::SocketGroup);
    EXPECT_EQ(SensorIdentifier::extractSensorType(svid(0x0104FFFFFFFF0000ULL)), SensorType::RCM);
    EXPECT_EQ(SensorIdentifier::extractSensorType(-1), SensorType::Undefined);
    EXPECT_EQ(static_cast<int>(SensorIdentifier::extractSensorType(svid(0x0080000000000000ULL))), -128);
}

TEST(SensorIdentifierTest, GetKey_IsTheLowSixteenBits) {
    EXPECT_EQ(SensorIdentifier::getKey(svid(0x0100010203050013ULL)), 0x13);
    EXPECT_EQ(SensorIdentifier::getKey(-1), 0xFFFF);
    EXPECT_EQ(SensorIdentifier::getKey(svid(0xFFFFFFFFFFFF0000ULL)), 0);
}

TEST(SensorIdentifierTest, Explain_NamesTheLevelsThatTheIdUses) {
    EXPECT_EQ(SensorIdentifier::explain(svid(0x0100010203050001ULL)),
              "0x0100010203050001 (Electrical, device 1, inlet 1, phase 2, circuit 3, socket 5, key 0x1)");
    EXPECT_EQ(SensorIdentifier::explain(svid(0xFF0201FFFFFF0000ULL)),
              "0xff0201ffffff0000 (SocketGroup, inlet 1)");
    EXPECT_EQ(SensorIdentifier::explain(svid(0xFF00FFFFFFFF0000ULL)), "0xff00ffffffff0000 (Electrical)");
    EXPECT_EQ(SensorIdentifier::explain(-1), "0xffffffffffffffff (Undefined, key 0xffff)");
}

TEST(SensorIdentifierTest, Explain_LevelsAreDecimalAndTheKeyHexadecimal) {
    EXPECT_EQ(SensorIdentifier::explain(svid(0x0A010B0C0D0E0102ULL)),
              "0x0a010b0c0d0e0102 (I2C, device 10, inlet 11, phase 12, circuit 13, socket 14, key 0x102)");
    EXPECT_EQ(SensorIdentifier::explain(0),
              "0x0000000000000000 (Electrical, device 0, inlet 0, phase 0, circuit 0, socket 0)");
}

/// Puts each digit of a number into a group of its own.
struct GroupedDigits : std::numpunct<char> {
    std::string do_grouping() const override { return "\1"; }
    char do_thousands_sep() const override { return '.'; }
};

TEST(SensorIdentifierTest, Explain_TheLocaleOfTheProcessDoesNotShow) {
    auto const former = std::locale::global(std::locale(std::locale::classic(), new GroupedDigits));
    auto const text = SensorIdentifier::explain(svid(0x0A010B0C0D0E0102ULL));
    std::locale::global(former);
    EXPECT_EQ(text,
              "0x0a010b0c0d0e0102 (I2C, device 10, inlet 11, phase 12, circuit 13, socket 14, key 0x102)");
}

TEST(SensorIdentifierTest, GetSensorVariableId_AppendsTheKey) {
    ElectricalSensorIdentifier const sut(1, 2, 3, 5);
    EXPECT_EQ(sut.getSensorVariableID(0), svid(0xFF00010203050000ULL));
    EXPECT_EQ(sut.getSensorVariableID(0x102), svid(0xFF00010203050102ULL));
    EXPECT_EQ(sut.getSensorVariableID(std::numeric_limits<unsigned short>::max()),
              svid(0xFF0001020305FFFFULL));
}

} // namespace
