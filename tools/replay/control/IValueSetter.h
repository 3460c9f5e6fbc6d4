// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// Values of a running replay that are set by hand.
#pragma once

#include "tools/replay/control/Assignment.h"

#include <cstdint>
#include <string>
#include <vector>

namespace qel::tools {

/// Replaces recorded values until they are released.
///
/// Threads: thread-bound to the thread that made it.
class IValueSetter {
public:
    IValueSetter() = default;
    IValueSetter(IValueSetter const&) = delete;
    IValueSetter& operator=(IValueSetter const&) = delete;
    virtual ~IValueSetter() = default;

    /// Stores a number and a state in the values of a pattern and folds all states. Later rows do not change them.
    /// @param due now, in ms after the start in recorded time
    /// @return the names of the values that were set; empty if the unit has none of them now
    virtual std::vector<std::string> set(Assignment const& assignment, std::uint64_t due) = 0;

    /// Lets the values of a pattern follow the recording again, from its last row on.
    /// @return the names of the values that had been set and are released
    virtual std::vector<std::string> unset(inspect::ValuePattern const& pattern, std::uint64_t due) = 0;
};

} // namespace qel::tools
