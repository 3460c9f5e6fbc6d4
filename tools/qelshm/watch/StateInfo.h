// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// What a watcher has to know about states.
#pragma once

#include "domain/eStatus_Bits.h"

#include <string>

namespace qel::watch {

struct StateInfo {
    std::string text; ///< the state's name: "High Alarm"
};

/// Looks a state up; every number is allowed. The result lives as long as the program. Any thread.
StateInfo const& stateInfo(eStatus_Bits state);

} // namespace qel::watch
