// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// The rules that fold the states of values and child points into a point's state.
#pragma once

#include "domain/eStatus_Bits.h"
#include "region/QelExport.h"

#include <list>

namespace shm {

/// Pure functions of their arguments. They read no region, log nothing and throw nothing. States outside -2 to 43 are
/// legal and count as "other" in every rule. Values and children have different sets of alarms and warnings.
///
/// Threads: reentrant. There is no state.
class QEL_EXPORT QelSharedMemoryStates {
public:
    // Virtual operations in the order of their slots (binary interface); new ones go last.

    /// Does nothing.
    virtual ~QelSharedMemoryStates();

    /// Removes the contribution of values and children from a point's stored state.
    /// @param state the stored state
    /// @return On (17), Off (18), or one of them with Identify (15, 16); -2, 5, 6, 34, 35, 36 and 43 unchanged
    eStatus_Bits mpInitial(eStatus_Bits state) const;

    /// Folds the states of a point's values. Skips -2 and -1.
    /// @param values the states, in the order of the chain
    /// @return the first alarm, else the last warning, else the last other state; -1 when there is none
    eStatus_Bits mvState(std::list<eStatus_Bits> const& values) const;

    /// Folds the reported states of child points. Skips all other states.
    /// @param children the states, in the order of the list
    /// @return the first device update (34, 35), else the last alarm, else the last warning; -1 when there is none
    eStatus_Bits mpState(std::list<eStatus_Bits> const& children) const;

    /// Combines the new state of a point. The order of precedence is: device updates of children, alarms of own values,
    /// alarms of children, warnings of own values, warnings of children.
    /// @param own      the stored state, see mpInitial()
    /// @param values   states of the point's values
    /// @param children reported states of its child points
    /// @return the new state
    eStatus_Bits mpState(eStatus_Bits own, std::list<eStatus_Bits> const& values,
                         std::list<eStatus_Bits> const& children);
};

} // namespace shm
