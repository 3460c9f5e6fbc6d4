// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "format/Names.h"

#include "format/HexText.h"
#include "region/QelShmRecords.h"
#include "region/TableLookup.h"

#include <array>

namespace shm {

namespace {

constexpr std::array<TextRow<unsigned short>, 84> keyNames{{
    {0x00, "GUID"},
    {0x01, "Voltage"},
    {0x02, "Peak Voltage"},
    {0x04, "Current"},
    {0x05, "Peak Current"},
    {0x07, "Differential Current AC"},
    {0x08, "Differential Current DC"},
    {0x09, "Neutral Current"},
    {0x10, "Phase Angle"},
    {0x11, "Power Factor"},
    {0x12, "Apparent Power"},
    {0x13, "Active Power"},
    {0x14, "Peak Active Power"},
    {0x16, "Reactive Power"},
    {0x17, "Frequency"},
    {0x18, "Peak Neutral Current"},
    {0x20, "Apparent Energy"},
    {0x21, "Apparent Energy Delta"},
    {0x22, "Reactive Energy"},
    {0x23, "Reactive Energy Delta"},
    {0x24, "Active Energy"},
    {0x25, "Active Energy Delta"},
    {0x26, "Active Energy Resettable"},
    {0x30, "Fuse State"},
    {0x31, "Orientation"},
    {0x32, "USB"},
    {0x33, "Socket"},
    {0x34, "PDU State"},
    {0x35, "Sensor State"},
    {0x36, "Circuit State"},
    {0x37, "Phase State"},
    {0x38, "RCD State"},
    {0x39, "Socket Group State"},
    {0x3A, "Global State"},
    {0x3B, "State"},
    {0x40, "Sensor Type"},
    {0x41, "Circuit Type"},
    {0x42, "Fuse Type"},
    {0x43, "Socket Type"},
    {0x44, "Socket Color"},
    {0x45, "Phase Type"},
    {0x46, "PDU Type"},
    {0x47, "RCM Type"},
    {0x48, "Type"},
    {0x50, "Delta Voltage 12"},
    {0x51, "Delta Voltage 23"},
    {0x52, "Delta Voltage 31"},
    {0x100, "Temperature"},
    {0x101, "Humidity"},
    {0x102, "Input 1"},
    {0x103, "Input 2"},
    {0x104, "Input 3"},
    {0x105, "Input 4"},
    {0x106, "Output 1"},
    {0x107, "Output 2"},
    {0x108, "Output 3"},
    {0x109, "Output 4"},
    {0x10A, "Dew Point"},
    {0x200, "Device location"},
    {0x201, "Device contact"},
    {0x202, "Device serial number"},
    {0x203, "Device item number"},
    {0x204, "Device software version"},
    {0x205, "Device hardware version"},
    {0x206, "Device firmware version"},
    {0x207, "Device operating system version"},
    {0x208, "Device architecture"},
    {0x209, "Device modbus address"},
    {0x20A, "Device build number"},
    {0x20B, "Device production date"},
    {0x20C, "Device bootloader version"},
    {0x20D, "Device active partition"},
    {0x210, "Device serial number (base unit)"},
    {0x211, "Device item number (base unit)"},
    {0x212, "Device hardware version (base unit)"},
    {0x213, "Device production date (base unit)"},
    {0xFFF7, "Slave factory reset signaling"},
    {0xFFF8, "Dummy key to see if voltage > 20V"},
    {0xFFF9, "Apparent energy delta base value"},
    {0xFFFA, "Reactive energy delta base value"},
    {0xFFFB, "Active energy delta base value"},
    {0xFFFC, "Active energy resettable delta base value"},
    {0xFFFD, "Voltage measured at phase level"},
    {0xFFFE, "Voltage measured at socket level"},
}};
static_assert(isSortedByCode(keyNames));

} // namespace

std::string keyName(unsigned short key) {
    auto const* const row = findRow(keyNames, key);
    if (row != nullptr) {
        return row->text;
    }
    return key == NO_KEY ? "UNKNOWN KEY" : "KEY_IDX_" + hexText(key, 1);
}

} // namespace shm
