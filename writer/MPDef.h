// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// Definition of one measurement point: its slot and its values.
#pragma once

#include "region/QelExport.h"
#include "region/QelShmRecords.h"

#include <iosfwd>
#include <map>
#include <mutex>

namespace shm {

/// Describes a point to the writer, and is the writer's own record of a point it has added. The members stand
/// in the order of the binary contract.
///
/// Threads: mutex guards mvs; whoever shares a definition between threads locks it around each look-up and
/// change. pos has no lock: the writer sets it before it knows the point and changes it only when the point
/// goes. Copying, moving and printing take no lock and so belong to whoever owns the definition alone.
struct QEL_EXPORT MPDef {
    /// No slot and no values.
    MPDef() = default;
    /// @param position the point's slot, NO_POSITION for none; the writer only reads the one in its own
    /// records
    /// @param values   see mvs
    MPDef(unsigned int position, std::map<unsigned short, unsigned int> values);

    /// Copy or move slot and values; the new object's mutex is its own and unlocked, an assigned one keeps
    /// its own.
    MPDef(MPDef const& other);
    MPDef(MPDef&& other) noexcept;
    MPDef& operator=(MPDef const& other);
    MPDef& operator=(MPDef&& other) noexcept;
    ~MPDef() = default;

    /// Slot of the point, NO_POSITION (none) or any number of MP_COUNT or more while it has none.
    unsigned int pos = NO_POSITION;

    /// Value key to slot of the value; in a definition that is handed to the writer only the keys count.
    std::map<unsigned short, unsigned int> mvs;

    mutable std::mutex mutex;
};

/// Writes "MPDef {pos = 7, mvs = [<Voltage;1>, <Current;2>]}", numbers in the stream's current base, keys
/// ascending.
QEL_EXPORT std::ostream& operator<<(std::ostream& out, MPDef const& definition);

} // namespace shm
