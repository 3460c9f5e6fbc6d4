// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// The rules by which states are combined, once more and in plain numbers.
#pragma once

#include <cstdint>
#include <vector>

namespace qel::test::reference {

/// A state as the region stores it.
using State = std::int32_t;
using States = std::vector<State>;

// Threads: reentrant, all of them.

/// What a point is by itself: its stored state without the alarms and warnings that were combined into it.
State ownState(State stored);

/// What the states of a point's values come to, in the order of their chain; -1 for nothing.
State foldValues(States const& values);

/// What the states that a point's children report come to, in the order of their list; -1 for nothing.
State foldChildren(States const& children);

/// The new state of a point. The global state is that of a point whose stored state is 17.
State pointState(State stored, States const& values, States const& children);

/// What a point of this state counts as for its parent.
State reportedState(std::int64_t svid, State state);

} // namespace qel::test::reference
