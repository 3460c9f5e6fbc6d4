// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// What the low 16 bits of a sensor id, the value key, mean to the writer.
#pragma once

namespace shm {

/// Keys of values that are the state of the point itself ("Fuse State", "Socket" to "State"): such a value
/// goes to the point's slot and its number is dropped.
constexpr bool isPointStateKey(unsigned short key) {
    return key >= 0x30 && (key == 0x30 || (key >= 0x33 && key <= 0x3B));
}

/// Keys of values that are delivered in thousandths of the unit they are stored in: energies ("Apparent
/// Energy" to "Active Energy Resettable") and their delta base values.
constexpr bool isInThousandths(unsigned short key) {
    return key >= 32 && (key <= 38 || (key >= 0xFFF9 && key <= 0xFFFC));
}

} // namespace shm
