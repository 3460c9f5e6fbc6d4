// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// One-line renderings of the region's records for logs and tools.
#pragma once

#include "region/QelExport.h"

#include <iosfwd>

namespace shm {

class QelShmMPnt;
class QelShmMVal;
class QelShmRoot;

// Each operator writes one line without its end, whatever the slot holds, and gives back the stream. The
// flags named below are changed on the caller's stream and deliberately stay so; nothing else of it is set.
//
// Threads: reentrant; a slot that the writer is changing may show as a mix of old and new fields.

/// QSMV {key = 0x0001 [Voltage], value = 230.1 V, state = No Error, at = 1234}
/// Leaves the stream decimal. A null handle gives "QSMV {}" and changes no flag.
QEL_EXPORT std::ostream& operator<<(std::ostream& out, QelShmMVal const& mv);

/// QSMP {guid = 0x0000010203050000, pos = 7, State = On, Type = Schuko, mvs = true, children = false}
/// The position is in the stream's base. Leaves the stream with booleans as words (std::boolalpha). A null
/// handle gives "QSMP {}" and changes no flag.
QEL_EXPORT std::ostream& operator<<(std::ostream& out, QelShmMPnt const& mp);

/// QSR {valid = true, version = 0x20, State = On, devices = 0x2, groups = 0}
/// Leaves the stream with booleans as words and, unless the handle is null, in hexadecimal with base prefix.
/// A null handle gives "QSR {valid = false}". The top-level lists must not be cyclic (see QelShmRoot::cnt()).
QEL_EXPORT std::ostream& operator<<(std::ostream& out, QelShmRoot const& root);

} // namespace shm
