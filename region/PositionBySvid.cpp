// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "region/PositionBySvid.h"

namespace shm {

void PositionBySvid::remove(long long svid) {
    auto hole = placeOf(svid);
    if (table_[hole] == none) {
        return;
    }
    // Fills the hole with each later entry whose probe would cross it, so that no probe ends early.
    for (auto place = (hole + 1) % places; table_[place] != none; place = (place + 1) % places) {
        auto const home = homeOf(svids_[table_[place]]);
        if ((place - home) % places >= (place - hole) % places) {
            table_[hole] = table_[place];
            hole = place;
        }
    }
    table_[hole] = none;
}

} // namespace shm
