// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "region/SvidTable.h"

namespace shm {

void SvidTable::remove(long long svid) {
    auto hole = placeOf(svid);
    if (table_[hole] == none) {
        return;
    }
    // Closes the gap, so that no probe ends early: whatever may stand in the hole moves there.
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
