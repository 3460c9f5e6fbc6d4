// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// Names of states and keys as words that people type.
#pragma once

#include "domain/eStatus_Bits.h"

#include <optional>
#include <string>
#include <string_view>

namespace qel::inspect {

/// A name as one word: lower-case letters and digits, with one hyphen for whatever stands between them; "on-alarm" for
/// "On, Alarm". Reentrant.
std::string nameWord(std::string_view name);

/// The name of a state as a word: "high-alarm"; its number for one without a name. Reentrant.
std::string stateWord(eStatus_Bits state);

/// Reads a state: its name with any letter case, with blanks, commas or hyphens; or its number. Reentrant.
/// @return none if there is no such state
std::optional<eStatus_Bits> parseState(std::string_view text);

} // namespace qel::inspect
