// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tools/qelshm/watch/WatchedNames.h"

#include <algorithm>

namespace qel::watch {

WatchedNames::WatchedNames(std::vector<std::string> const& names) : patterns_(names.begin(), names.end()) {}

bool WatchedNames::hasPoint(long long point) const {
    return isEverything() ||
           std::any_of(patterns_.begin(), patterns_.end(), [&](inspect::ValuePattern const& pattern) {
               return !pattern.hasKey() && pattern.matchesPoint(point);
           });
}

bool WatchedNames::hasValue(long long point, unsigned short key) const {
    return isEverything() ||
           std::any_of(patterns_.begin(), patterns_.end(),
                       [&](inspect::ValuePattern const& pattern) { return pattern.matches(point, key); });
}

} // namespace qel::watch
