// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// What a watcher has to know about states.
#pragma once

#include "domain/eStatus_Bits.h"

#include <cstdint>
#include <string>

namespace qel::watch {

/// How much a state asks for attention, from nothing to most.
enum class Severity : std::uint8_t {
    None,    ///< there is nothing to judge: no value yet, or a number that is no state
    Normal,  ///< as it shall be
    Notice,  ///< out of use or in transition: off, deactivated, identifying, updating
    Warning, ///< a warning, its own or one below
    Alarm,   ///< an alarm or a loss, its own or one below
};

struct StateInfo {
    Severity severity = Severity::None;
    std::string text;   ///< the state's name: "High Alarm"
    std::string folded; ///< the same in lower case, for searching
};

/// Looks a state up; every number is allowed. The result lives as long as the program. Any thread.
StateInfo const& stateInfo(eStatus_Bits state);

} // namespace qel::watch
