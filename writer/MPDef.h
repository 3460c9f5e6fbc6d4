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

/// Describes a point to the writer. It is also the writer's own record of an added point. The order of the members
/// is part of the binary interface.
///
/// Threads: reentrant. mutex guards mvs: threads that share a definition lock it for each look-up and change. pos
/// has no lock: the writer sets it before other threads can find the point, and changes it only when it removes
/// the point. Copying, moving and printing take no lock.
struct QEL_EXPORT MPDef {
    /// No slot and no values.
    MPDef() = default;

    /// @param position see pos; the writer reads it only in its own records
    /// @param values   see mvs
    MPDef(unsigned int position, std::map<unsigned short, unsigned int> values);

    /// Copies slot and values. The mutex is a new one.
    /// @param other the original
    MPDef(MPDef const& other);

    /// Moves slot and values. The mutex is a new one.
    /// @param other the original
    MPDef(MPDef&& other) noexcept;

    /// Copies slot and values, not the mutex.
    /// @param other the original
    /// @return this object
    MPDef& operator=(MPDef const& other);

    /// Moves slot and values, not the mutex.
    /// @param other the original
    /// @return this object
    MPDef& operator=(MPDef&& other) noexcept;

    ~MPDef() = default;

    /// Position of the point's slot; NO_POSITION, or any number from MP_COUNT on, for none.
    unsigned int pos = NO_POSITION;

    /// Value key to position of the value's slot. Of a definition that is passed to the writer only the keys are used.
    std::map<unsigned short, unsigned int> mvs;

    /// Guards mvs.
    mutable std::mutex mutex;
};

/// Writes `MPDef {pos = 7, mvs = [<Voltage;1>, <Current;2>]}`: numbers in the stream's base, keys ascending.
///
/// Threads: reentrant.
/// @param out        the stream
/// @param definition to write
/// @return the stream
QEL_EXPORT std::ostream& operator<<(std::ostream& out, MPDef const& definition);

} // namespace shm
