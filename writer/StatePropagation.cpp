// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "writer/StatePropagation.h"

#include "region/RegionFields.h"
#include "states/StateRules.h"

namespace shm {

namespace {

/// Collects the reported states in a list.
struct ListSink {
    std::list<eStatus_Bits>& out;
    void add(eStatus_Bits state) const { out.push_back(state); }
};

} // namespace

eStatus_Bits StatePropagation::combineAll() const {
    ChildFold reported;
    for (auto const head : {loadLink(region_.root.devices), loadLink(region_.root.groups)}) {
        // Once for each list: whoever goes on from each top-level point to its later siblings, too, combines the k-th
        // of them k times, with the same stores and the same result.
        siblings(head, reported);
    }
    return combineStates(eStatus_On, ValueFold().result(), reported.result());
}

void StatePropagation::combineSiblings(QelShmMP& first, std::list<eStatus_Bits>& out) const {
    ListSink sink{out};
    ChildFold children;
    siblings(loadLink(first.children), children);
    sink.add(combine(first, children.result()));
    siblings(loadLink(first.next), sink);
}

// Recursion only per level of nesting, with small frames: a tree may be MP_COUNT levels deep.
template <typename Sink>
void StatePropagation::siblings(std::uint32_t pos, Sink& sink) const {
    while (pos < MP_COUNT) {
        auto& mp = region_.points[pos];
        ChildFold children;
        if (auto const first = loadLink(mp.children); first < MP_COUNT) {
            siblings(first, children);
        }
        sink.add(combine(mp, children.result()));
        pos = loadLink(mp.next);
    }
}

eStatus_Bits StatePropagation::combine(QelShmMP& mp, eStatus_Bits children) const {
    ValueFold values;
    for (auto pos = loadLink(mp.mvs); pos < MV_COUNT;) {
        auto const& value = region_.values[pos];
        pos = loadLink(value.next);
        if (!values.add(value.state)) {
            break;
        }
    }
    auto const state = combineStates(ownPart(mp.state), values.result(), children);
    if (state != mp.state) {
        storeField(mp.state, state);
    }
    return reportedState(mp.guid, state);
}

} // namespace shm
