// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// Names of the measured values.
#pragma once

#include "region/QelExport.h"

#include <string>

namespace shm {

/// Name of a value key (see format/ValueKeys.h): "Voltage", "Active Energy", ... A key without a name gives "KEY_IDX_"
/// and the key in hexadecimal ("KEY_IDX_0x3"), the key 0xFFFF of a slot without a value "UNKNOWN KEY".
///
/// Threads: reentrant.
/// @param key any number
/// @return the name
QEL_EXPORT std::string keyName(unsigned short key);

} // namespace shm
