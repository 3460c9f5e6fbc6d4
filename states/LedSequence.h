// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// The colours of the status LED over time.
#pragma once

#include "domain/eStatus_Bits.h"
#include "states/LedTables.h"

#include <cstddef>

namespace shm {

/// Follows the requested state and steps through the colours of the shown state. Logs as "run" in
/// "qel.shm.access.states".
///
/// Threads: thread-bound to the LED thread.
class LedSequence {
public:
    /// @note Logs at ERROR a state without colours.
    /// @param tables not owned, must outlive the object
    /// @param shown  the state to begin with
    /// @throws ex::TAVSimpleException when that state has no colours
    LedSequence(LedTables const& tables, eStatus_Bits shown);

    /// Does one step: begins the colours of a newly requested state, or goes on to the next colour. A requested state
    /// without colours is ignored.
    /// @note Logs a change of state at INFO, a requested state without colours at WARN.
    /// @param requested the state to show
    /// @param shown     the state whose colours are shown; set when that changes
    /// @return the levels to show now; null when they do not change or the colour has no levels
    LedLevels const* tick(eStatus_Bits requested, eStatus_Bits& shown);

    /// Notes whether the levels of the last tick() are known to be shown. If not, the next tick() gives levels even if
    /// the colour stays.
    /// @param surely whether all channels were written
    void markShown(bool surely) { surelyShown_ = surely; }

    /// @return what was noted last; true at first
    bool isSurelyShown() const { return surelyShown_; }

private:
    void begin(ColorSequence const& sequence);

    LedTables const& tables_;
    ColorSequence const* sequence_ = nullptr;
    // An index past the end means "no colour yet", so the first colour differs from it and is shown.
    std::size_t current_ = 0;
    std::size_t next_ = 0;
    bool surelyShown_ = true;
};

} // namespace shm
