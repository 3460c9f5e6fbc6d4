// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// The two sets of value keys that the writer treats apart: KeyKind as comparisons, for updateMV().
#pragma once

#include "format/ValueKeys.h"

namespace shm {

/// Keys of values that are the state of the point itself ("Fuse State", "Socket" to "State"): such a value
/// goes to the point's slot and its number is dropped.
constexpr bool isPointStateKey(unsigned short key) {
    return key >= key::fuseState && (key == key::fuseState || (key >= key::socket && key <= key::state));
}

/// Keys of energies ("Apparent Energy" to "Active Energy Resettable") and of their delta base values: delivered in
/// Wh, VAh or varh, stored in kWh, kVAh or kvarh.
constexpr bool isEnergyKey(unsigned short key) {
    return key >= key::apparentEnergy &&
           (key <= key::activeEnergyResettable ||
            (key >= key::apparentEnergyDeltaBaseValue && key <= key::activeEnergyResettableDeltaBaseValue));
}

} // namespace shm
