// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "format/Names.h"

#include <gtest/gtest.h>

#include <locale>
#include <map>
#include <sstream>
#include <string>

namespace {

using shm::keyName;

std::map<unsigned int, std::string> const names{
    {0, "GUID"},
    {1, "Voltage"},
    {2, "Peak Voltage"},
    {4, "Current"},
    {5, "Peak Current"},
    {7, "Differential Current AC"},
    {8, "Differential Current DC"},
    {9, "Neutral Current"},
    {16, "Phase Angle"},
    {17, "Power Factor"},
    {18, "Apparent Power"},
    {19, "Active Power"},
    {20, "Peak Active Power"},
    {22, "Reactive Power"},
    {23, "Frequency"},
    {24, "Peak Neutral Current"},
    {32, "Apparent Energy"},
    {33, "Apparent Energy Delta"},
    {34, "Reactive Energy"},
    {35, "Reactive Energy Delta"},
    {36, "Active Energy"},
    {37, "Active Energy Delta"},
    {38, "Active Energy Resettable"},
    {48, "Fuse State"},
    {49, "Orientation"},
    {50, "USB"},
    {51, "Socket"},
    {52, "PDU State"},
    {53, "Sensor State"},
    {54, "Circuit State"},
    {55, "Phase State"},
    {56, "RCD State"},
    {57, "Socket Group State"},
    {58, "Global State"},
    {59, "State"},
    {64, "Sensor Type"},
    {65, "Circuit Type"},
    {66, "Fuse Type"},
    {67, "Socket Type"},
    {68, "Socket Color"},
    {69, "Phase Type"},
    {70, "PDU Type"},
    {71, "RCM Type"},
    {72, "Type"},
    {80, "Delta Voltage 12"},
    {81, "Delta Voltage 23"},
    {82, "Delta Voltage 31"},
    {256, "Temperature"},
    {257, "Humidity"},
    {258, "Input 1"},
    {259, "Input 2"},
    {260, "Input 3"},
    {261, "Input 4"},
    {262, "Output 1"},
    {263, "Output 2"},
    {264, "Output 3"},
    {265, "Output 4"},
    {266, "Dew Point"},
    {512, "Device location"},
    {513, "Device contact"},
    {514, "Device serial number"},
    {515, "Device item number"},
    {516, "Device software version"},
    {517, "Device hardware version"},
    {518, "Device firmware version"},
    {519, "Device operating system version"},
    {520, "Device architecture"},
    {521, "Device modbus address"},
    {522, "Device build number"},
    {523, "Device production date"},
    {524, "Device bootloader version"},
    {525, "Device active partition"},
    {528, "Device serial number (base unit)"},
    {529, "Device item number (base unit)"},
    {530, "Device hardware version (base unit)"},
    {531, "Device production date (base unit)"},
    {65527, "Slave factory reset signaling"},
    {65528, "Dummy key to see if voltage > 20V"},
    {65529, "Apparent energy delta base value"},
    {65530, "Reactive energy delta base value"},
    {65531, "Active energy delta base value"},
    {65532, "Active energy resettable delta base value"},
    {65533, "Voltage measured at phase level"},
    {65534, "Voltage measured at socket level"},
};

std::string plainKeyName(unsigned int key) {
    if (names.count(key) != 0) {
        return names.at(key);
    }
    if (key == 65535) {
        return "UNKNOWN KEY";
    }
    std::ostringstream text;
    text << "KEY_IDX_0x" << std::hex << key;
    return text.str();
}

TEST(NamesTest, ThereAre84NamedKeys) {
    EXPECT_EQ(names.size(), 84U);
}

TEST(NamesTest, KeyName_OfEveryKey) {
    for (unsigned int key = 0; key <= 65535; ++key) {
        ASSERT_EQ(keyName(static_cast<unsigned short>(key)), plainKeyName(key)) << key;
    }
}

TEST(NamesTest, KeyName_WithoutAName_IsTheIndexInShortHexadecimal) {
    EXPECT_EQ(keyName(3), "KEY_IDX_0x3");
    EXPECT_EQ(keyName(6), "KEY_IDX_0x6");
    EXPECT_EQ(keyName(21), "KEY_IDX_0x15");
    EXPECT_EQ(keyName(526), "KEY_IDX_0x20e");
    EXPECT_EQ(keyName(527), "KEY_IDX_0x20f");
    EXPECT_EQ(keyName(65526), "KEY_IDX_0xfff6");
}

TEST(NamesTest, KeyName_AtTheTopOfTheRange) {
    EXPECT_EQ(keyName(65534), "Voltage measured at socket level");
    EXPECT_EQ(keyName(65535), "UNKNOWN KEY");
}

TEST(NamesTest, KeyName_IsIndependentOfTheProgramsLocale) {
    struct Grouping : std::numpunct<char> {
        std::string do_grouping() const override { return "\1"; }
    };
    auto const former = std::locale::global(std::locale(std::locale::classic(), new Grouping));

    auto const name = keyName(526);

    std::locale::global(former);
    EXPECT_EQ(name, "KEY_IDX_0x20e");
}

} // namespace
