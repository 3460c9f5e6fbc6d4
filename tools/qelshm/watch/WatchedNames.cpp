// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tools/qelshm/watch/WatchedNames.h"

namespace qel::watch {

WatchedNames::WatchedNames(std::vector<std::string> const& names) : patterns_(names.begin(), names.end()) {}

bool WatchedNames::hasPoint(long long point) const {
    return inspect::selectsPoint(patterns_, point);
}

bool WatchedNames::hasValue(long long point, unsigned short key) const {
    return inspect::selectsValue(patterns_, point, key);
}

} // namespace qel::watch
