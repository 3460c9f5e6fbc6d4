// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tools/qelshm/watch/CurveMarks.h"

#include <algorithm>

namespace qel::watch {

bool CurveMarks::toggle(long long svid) {
    auto const marked = std::find(svids_.begin(), svids_.end(), svid);
    if (marked != svids_.end()) {
        svids_.erase(marked);
        return true;
    }
    if (svids_.size() == most) {
        return false;
    }
    svids_.push_back(svid);
    return true;
}

} // namespace qel::watch
