// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tests/model/ReferenceStates.h"

#include "tests/model/ReferenceSvid.h"

#include <algorithm>
#include <optional>
#include <set>

namespace qel::test::reference {

namespace {

constexpr State undefined = -1;

using Set = std::set<State>;

Set const valueAlarms{1, 2, 9, 10, 39};
Set const valueWarnings{3, 4, 13, 14, 40};
Set const childAlarms{5, 7, 8, 9, 10, 19, 20, 22, 23, 25, 39};
Set const childWarnings{11, 12, 13, 14, 21, 24, 40};
Set const childUpdates{34, 35};
Set const ownAlarms{5, 7, 8, 9, 10, 19, 20, 22, 23, 25, 35, 39};
Set const kept{-2, 5, 6, 34, 35, 36, 43};
Set const onIdentify{7, 11, 15};
Set const offIdentify{8, 12, 16};
Set const off{10, 14, 18, 20, 22};
Set const ownForGood{-2, 5, 6, 34, 36, 43}; // nothing below changes these

bool isIn(Set const& set, State state) {
    return set.count(state) != 0;
}

bool isPlain(State own) {
    return own >= 15 && own <= 18;
}

} // namespace

State ownState(State stored) {
    if (isIn(kept, stored)) {
        return stored;
    }
    if (isIn(onIdentify, stored)) {
        return 15;
    }
    if (isIn(offIdentify, stored)) {
        return 16;
    }
    if (isIn(off, stored)) {
        return 18;
    }
    return 17;
}

State foldValues(States const& values) {
    std::optional<State> lastWarning;
    std::optional<State> lastOther;
    for (auto const state : values) {
        if (isIn(valueAlarms, state)) {
            return state; // the first alarm
        }
        if (isIn(valueWarnings, state)) {
            lastWarning = state;
        } else if (state != -2 && state != undefined) {
            lastOther = state;
        }
    }
    return lastWarning.value_or(lastOther.value_or(undefined));
}

State foldChildren(States const& children) {
    std::optional<State> lastAlarm;
    std::optional<State> lastWarning;
    for (auto const state : children) {
        if (isIn(childUpdates, state)) {
            return state; // the first update
        }
        if (isIn(childAlarms, state)) {
            lastAlarm = state;
        } else if (isIn(childWarnings, state)) {
            lastWarning = state;
        }
    }
    return lastAlarm.value_or(lastWarning.value_or(undefined));
}

State pointState(State stored, States const& values, States const& children) {
    auto own = ownState(stored);
    if (isIn(ownForGood, own)) {
        return own;
    }
    auto const fromValues = foldValues(values);
    if (isPlain(own) && isIn(valueAlarms, fromValues)) {
        own -= 8; // 7 to 10
    } else if (isPlain(own) && isIn(valueWarnings, fromValues)) {
        own -= 4; // 11 to 14
    }
    auto const fromChildren = foldChildren(children);
    if (isIn(childUpdates, fromChildren)) {
        return fromChildren;
    }
    if (isIn(ownAlarms, own)) {
        return own;
    }
    bool const isOff = own == 18;
    if (isIn(childAlarms, fromChildren)) {
        return isOff ? 20 : 23;
    }
    if (isPlain(own) && isIn(childWarnings, fromChildren)) {
        return isOff ? 22 : 24;
    }
    return own;
}

State reportedState(std::int64_t svid, State state) {
    bool const isCircuit = levelOf(svid, kindLevel) == 0 && levelOf(svid, circuitLevel) != -1 &&
                           levelOf(svid, socketLevel) == -1;
    return isCircuit && state == 18 ? 39 : state;
}

} // namespace qel::test::reference
