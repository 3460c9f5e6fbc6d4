// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// The colours of the status LED over time.
#pragma once

#include "domain/eStatus_Bits.h"
#include "states/LedTables.h"

#include <cstddef>

namespace shm {

/// Follows the requested state and steps through the colours of the state that is shown. Logs as "run" in
/// "qel.shm.access.states".
///
/// Threads: belongs to one thread.
class LedSequence {
public:
    /// @param tables must outlive the object
    /// @param shown  the state to begin with
    /// Throws ex::TAVSimpleException when that state has no colours, after an ERROR line.
    LedSequence(LedTables const& tables, eStatus_Bits shown);

    /// One tick: turns to the requested state if it has colours, at its first colour, or goes on to the next
    /// colour. Logs a change of state at INFO, and a requested state without colours at WARN.
    /// @param shown the state whose colours are shown; changed when the LED turns to another state
    /// @return the levels to show now, null when they stay as they are or the colour has no levels
    LedLevels const* tick(eStatus_Bits requested, eStatus_Bits& shown);

    /// Says whether the levels that tick() gave last were surely shown. If not, the next tick() gives levels even if
    /// the colour stays.
    void markShown(bool surely) { surelyShown_ = surely; }

    /// What was said last; true to begin with.
    bool isSurelyShown() const { return surelyShown_; }

private:
    void begin(ColorSequence const& sequence);

    LedTables const& tables_;
    ColorSequence const* sequence_ = nullptr;
    // A place past the end stands for "no colour yet", so the first colour differs from it and is shown.
    std::size_t current_ = 0;
    std::size_t next_ = 0;
    bool surelyShown_ = true;
};

} // namespace shm
