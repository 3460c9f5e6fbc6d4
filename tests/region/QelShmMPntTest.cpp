// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "region/QelShmMPnt.h"

#include <gtest/gtest.h>

#include <array>
#include <cstdint>
#include <cstring>
#include <map>
#include <string>
#include <type_traits>

namespace {

using shm::QelShmMPnt;
using TypeTexts = std::map<int, std::string>;

constexpr int unused = -1;

TypeTexts const& outlets() {
    static TypeTexts const table{{0, "None"},
                                 {10, "C13"},
                                 {20, "C19"},
                                 {30, "Schuko"},
                                 {40, "UTE"},
                                 {50, "UK"},
                                 {60, "5-15R"},
                                 {70, "L6-20"},
                                 {100, "Phase-16A"},
                                 {101, "Phase-32A"},
                                 {102, "Phase-63A"},
                                 {110, "CEE17-16A-3P-230V"},
                                 {111, "CEE17-32A-3P-230V"}};
    return table;
}

TypeTexts const& fuses() {
    static TypeTexts const table{{0, "None"},   {1, "10A;B"},  {2, "10A;C"},  {10, "13A;B"}, {11, "13A;C"},
                                 {20, "16A;B"}, {21, "16A;C"}, {30, "20A;B"}, {31, "20A;C"}, {40, "25A;B"},
                                 {41, "25A;C"}, {50, "32A;B"}, {51, "32A;C"}, {60, "63A;B"}, {61, "63A;C"}};
    return table;
}

TypeTexts const& phases() {
    static TypeTexts const table{{0, "None"},
                                 {1, "Phase"},
                                 {2, "Measurement Group"},
                                 {3, "CEE17-16A-5P-400V"},
                                 {4, "CEE17-32A-5P-400V"},
                                 {5, "CEE17-63A-5P-400V"}};
    return table;
}

TypeTexts const& units() {
    static TypeTexts const table{
        {0, "Unknown Type"}, {1, "PowerUnit"}, {2, "Master"}, {3, "Slave"}, {4, "SlavePowerUnit"}};
    return table;
}

TypeTexts const& inlets() {
    static TypeTexts const table{{0, "None"},        {1, "1P"},        {3, "3PDELTA"},
                                 {4, "4PWYE"},       {11, "US_1P"},    {12, "US_2P"},
                                 {13, "US_3PDELTA"}, {14, "US_4PWYE"}, {15, "US_4PDELTA"}};
    return table;
}

TypeTexts const& i2cSensors() {
    static TypeTexts const table{{-3, "I2C EEPROM"},
                                 {-2, "I2C Multiplexer"},
                                 {-1, "Undefined I2C Sensor Type"},
                                 {1, "I2C Temperature Sensor"},
                                 {2, "I2C Temperature-Humidity Sensor"},
                                 {3, "I2C GPIO"},
                                 {4, "I2C Door Sensor"}};
    return table;
}

TypeTexts const& groups() {
    static TypeTexts const table{{0, "Unset SG"}, {1, "SG"}};
    return table;
}

TypeTexts const& monitors() {
    static TypeTexts const table{{0, "Unset RCM"}, {1, "RCM"}};
    return table;
}

std::string lookUp(TypeTexts const& table, int type, std::string const& unknown) {
    auto const text = table.find(type);
    return text != table.end() ? text->second : unknown;
}

struct Levels {
    int inlet;
    int phase;
    int circuit;
    int socket;
};

std::string plainTypeText(int kind, Levels const& at, int byte) {
    int const asSigned = byte < 128 ? byte : byte - 256;
    if (kind == 1) {
        return lookUp(i2cSensors(), asSigned, "Invalid I2C Sensor Type");
    }
    if (kind == 2) {
        return lookUp(groups(), asSigned, "UNKNOWN SG TYPE");
    }
    if (kind == 4) {
        return lookUp(monitors(), asSigned, "UNKNOWN RCM TYPE");
    }
    if (kind != 0) {
        return "";
    }
    if (at.socket != -1) {
        return lookUp(outlets(), byte, "UNKNOWN OUTLET TYPE");
    }
    if (at.circuit != -1) {
        return lookUp(fuses(), byte, "UNKNOWN FUSE TYPE");
    }
    if (at.phase != -1) {
        return lookUp(phases(), byte, "UNKNOWN PU PHASE TYPE");
    }
    if (at.inlet == -1) {
        return lookUp(units(), asSigned, "UNKNOWN PDU TYPE");
    }
    return lookUp(inlets(), asSigned, "UNKNOWN INLET TYPE");
}

/// A point's slot by its bytes: the id at offset 24, highest byte last, and the type at offset 44.
class RawPoint {
public:
    RawPoint(int kind, Levels const& at, int type) {
        bytes_.fill(0xFF);
        std::array<int, 8> const id{0, 0, at.socket, at.circuit, at.phase, at.inlet, kind, 1};
        for (std::size_t i = 0; i < id.size(); ++i) {
            bytes_.at(24 + i) = static_cast<std::uint8_t>(id.at(i));
        }
        bytes_.at(44) = static_cast<std::uint8_t>(type);
    }

    std::string text() const {
        shm::record::QelShmMP slot{};
        static_assert(sizeof slot == sizeof bytes_);
        std::memcpy(&slot, bytes_.data(), sizeof slot);
        return QelShmMPnt(&slot).tstr();
    }

private:
    std::array<std::uint8_t, 48> bytes_{};
};

std::string typeText(int kind, Levels const& at, int type) {
    return RawPoint(kind, at, type).text();
}

constexpr Levels unit{unused, unused, unused, unused};
constexpr Levels inlet{1, unused, unused, unused};
constexpr Levels phase{1, 2, unused, unused};
constexpr Levels circuit{1, 2, 3, unused};
constexpr Levels socket{1, 2, 3, 4};

TEST(QelShmMPntTest, IsOnePointerAndCopiedFreely) {
    EXPECT_EQ(sizeof(QelShmMPnt), sizeof(void*));
    EXPECT_TRUE(std::is_trivially_copyable_v<QelShmMPnt>);
}

TEST(QelShmMPntTest, DefaultConstructed_RefersToNothing) {
    EXPECT_FALSE(QelShmMPnt());
}

TEST(QelShmMPntTest, ShowsWhatItsSlotHoldsNow) {
    shm::record::QelShmMP slot{};
    QelShmMPnt const sut(&slot);

    slot.pos = 7;

    ASSERT_TRUE(sut);
    EXPECT_EQ(sut->pos, 7U);
    EXPECT_EQ(&*sut, &slot);
}

TEST(QelShmMPntTest, Tstr_TakesTheTableOfTheLowestLevel) {
    EXPECT_EQ(typeText(0, socket, 1), "UNKNOWN OUTLET TYPE");
    EXPECT_EQ(typeText(0, circuit, 1), "10A;B");
    EXPECT_EQ(typeText(0, phase, 1), "Phase");
    EXPECT_EQ(typeText(0, inlet, 1), "1P");
    EXPECT_EQ(typeText(0, unit, 1), "PowerUnit");
}

TEST(QelShmMPntTest, Tstr_OfTheSameCode_DiffersByLevel) {
    EXPECT_EQ(typeText(0, socket, 30), "Schuko");
    EXPECT_EQ(typeText(0, circuit, 30), "20A;B");
    EXPECT_EQ(typeText(0, phase, 30), "UNKNOWN PU PHASE TYPE");
    EXPECT_EQ(typeText(0, socket, 100), "Phase-16A");
    EXPECT_EQ(typeText(0, circuit, 100), "UNKNOWN FUSE TYPE");
}

TEST(QelShmMPntTest, Tstr_OfAnI2CPointWithType0_IsInvalid) {
    EXPECT_EQ(typeText(1, unit, 0), "Invalid I2C Sensor Type");
    EXPECT_EQ(typeText(1, unit, 0xFD), "I2C EEPROM");
}

TEST(QelShmMPntTest, Tstr_OfKindsWithoutATable_IsEmpty) {
    EXPECT_EQ(typeText(3, socket, 10), "");
    EXPECT_EQ(typeText(5, unit, 1), "");
    EXPECT_EQ(typeText(-1, unit, 1), "");
}

TEST(QelShmMPntTest, Tstr_OfEveryTypeAtEveryCombinationOfLevels) {
    for (int mask = 0; mask < 16; ++mask) {
        // An index of 0 is set as much as any other.
        for (int const index : {0, 1, 127, -2, -128}) {
            Levels const at{(mask & 1) != 0 ? index : unused, (mask & 2) != 0 ? index : unused,
                            (mask & 4) != 0 ? index : unused, (mask & 8) != 0 ? index : unused};
            for (int type = 0; type <= 255; ++type) {
                ASSERT_EQ(typeText(0, at, type), plainTypeText(0, at, type))
                    << "levels " << mask << ", index " << index << ", type " << type;
            }
        }
    }
}

TEST(QelShmMPntTest, Tstr_OfEveryTypeOfEveryKind) {
    for (int kind = -128; kind <= 127; ++kind) {
        for (auto const& at : {unit, inlet, phase, circuit, socket}) {
            for (int type = 0; type <= 255; ++type) {
                ASSERT_EQ(typeText(kind, at, type), plainTypeText(kind, at, type))
                    << "kind " << kind << ", type " << type;
            }
        }
    }
}

TEST(QelShmMPntTest, Tstr_IsDeclaredNotToThrow) {
    EXPECT_TRUE(noexcept(QelShmMPnt().tstr()));
}

} // namespace
