// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "states/QelSharedMemoryStates.h"

#include "states/StateRules.h"

namespace shm {

QelSharedMemoryStates::~QelSharedMemoryStates() = default;

eStatus_Bits QelSharedMemoryStates::mpInitial(eStatus_Bits state) const {
    return ownPart(state);
}

eStatus_Bits QelSharedMemoryStates::mvState(std::list<eStatus_Bits> const& values) const {
    ValueFold fold;
    for (auto const value : values) {
        if (!fold.add(value)) {
            break;
        }
    }
    return fold.result();
}

eStatus_Bits QelSharedMemoryStates::mpState(std::list<eStatus_Bits> const& children) const {
    ChildFold fold;
    for (auto const child : children) {
        fold.add(child);
    }
    return fold.result();
}

// Deliberate: not const, as programs already compiled call it.
// NOLINTNEXTLINE(readability-make-member-function-const): its constness is part of the binary interface.
eStatus_Bits QelSharedMemoryStates::mpState(eStatus_Bits own, std::list<eStatus_Bits> const& values,
                                            std::list<eStatus_Bits> const& children) {
    return combineStates(mpInitial(own), mvState(values), mpState(children));
}

} // namespace shm
