// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// Values as names that people read and type: the path of the point, a colon, the name of the key in lower case with
/// hyphens. `unit1/inlet1:active-power` is the active power of an inlet.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace qel::inspect {

/// The name of a key as a part of a value's name: "active-power", "device-serial-number-base-unit"; the number, "0x0302",
/// for a key without a name. Different keys have different names. Reentrant.
std::string keyWord(unsigned short key);

/// Reads a key: its number in decimal or hexadecimal (0x), or its name with any letter case, with blanks or hyphens.
/// Reentrant.
/// @return none if there is no such key
std::optional<unsigned short> parseKey(std::string_view text);

/// The name of a value: "unit1/inlet1:active-power". Reentrant.
/// @param point id of the value's point; a key in it is ignored
std::string valuePath(long long point, unsigned short key);

} // namespace qel::inspect
