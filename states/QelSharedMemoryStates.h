// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// The rules that fold the states of values and child points into a point's state.
#pragma once

#include "domain/eStatus_Bits.h"
#include "region/QelExport.h"

#include <list>

namespace shm {

/// Pure functions of their arguments: no region is read and nothing is logged. States outside -2 to 43 are
/// legal and count as "other" in every rule. Which states count as alarm and as warning differs between
/// values and children.
///
/// Threads: thread-safe. No operation throws.
class QEL_EXPORT QelSharedMemoryStates {
public:
    // Virtual operations in slot order, part of the binary contract; new ones go last.

    virtual ~QelSharedMemoryStates();

    /// Strips what values and children contributed from a point's stored state.
    /// @return On (17), Off (18) or one of them with Identify (15, 16); -2, 5, 6, 34, 35, 36 and 43 come back
    /// unchanged
    eStatus_Bits mpInitial(eStatus_Bits state) const;

    /// Folds the states of a point's values: the first alarm, else the last warning, else the last other
    /// state. -2 and -1 are skipped.
    /// @return -1 when nothing is left to fold
    eStatus_Bits mvState(std::list<eStatus_Bits> const& values) const;

    /// Folds the reported states of child points: the first device update (34, 35), else the last alarm, else
    /// the last warning. Everything else is skipped.
    /// @return -1 when nothing is left to fold
    eStatus_Bits mpState(std::list<eStatus_Bits> const& children) const;

    /// The new state of a point. Updates of children outrank alarms of own values, those outrank alarms of
    /// children, then warnings of own values, then warnings of children.
    /// @param own      the stored state, see mpInitial()
    /// @param values   states of the point's values
    /// @param children reported states of its child points
    eStatus_Bits mpState(eStatus_Bits own, std::list<eStatus_Bits> const& values,
                         std::list<eStatus_Bits> const& children);
};

} // namespace shm
