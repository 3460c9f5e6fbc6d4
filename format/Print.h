// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// One-line texts of the region's records for logs and tools.
///
/// Each operator writes one line without its end, whatever the slot holds. It changes only those flags of the caller's
/// stream that are named below, and does not restore them.
///
/// Threads: reentrant. While the writer changes a slot, the line may show a mix of old and new fields.
#pragma once

#include "region/QelExport.h"

#include <iosfwd>

namespace shm {

class QelShmMPnt;
class QelShmMVal;
class QelShmRoot;

// Deliberate: the stream's flags stay changed.

/// Writes a value: `QSMV {key = 0x0001 [Voltage], value = 230.1 V, state = No Error, at = 1234}`. `at` is in ms since
/// 1970 UTC. Leaves the stream decimal. A null handle writes `QSMV {}` and changes no flag.
/// @param out the stream
/// @param mv  the value
/// @return the stream
QEL_EXPORT std::ostream& operator<<(std::ostream& out, QelShmMVal const& mv);

/// Writes a point: `QSMP {guid = 0x0000010203050000, pos = 7, State = On, Type = Schuko, mvs = true, children =
/// false}`. The position is in the stream's base. Leaves the stream with booleans as words (std::boolalpha). A
/// null handle writes `QSMP {}` and changes no flag.
/// @param out the stream
/// @param mp  the point
/// @return the stream
QEL_EXPORT std::ostream& operator<<(std::ostream& out, QelShmMPnt const& mp);

/// Writes the root: `QSR {valid = true, version = 0x20, State = On, devices = 0x2, groups = 0}`. Leaves the stream with
/// booleans as words and, unless the handle is null, in hexadecimal with the prefix 0x. A null handle writes
/// `QSR {valid = false}`. The top-level lists must not be cyclic (see QelShmRoot::cnt()).
/// @param out  the stream
/// @param root the root
/// @return the stream
QEL_EXPORT std::ostream& operator<<(std::ostream& out, QelShmRoot const& root);

} // namespace shm
