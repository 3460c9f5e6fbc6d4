// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tools/qelshm/watch/WatchedNames.h"

#include "inspect/naming/PointPath.h"
#include "inspect/naming/Svid.h"

#include <algorithm>
#include <optional>

namespace qel::watch {

namespace {

std::optional<long long> svidOf(std::string const& name) {
    auto const svid = inspect::parseSvid(name);
    return svid ? svid : inspect::parsePath(name);
}

} // namespace

WatchedNames::WatchedNames(std::vector<std::string> const& names) {
    for (auto const& name : names) {
        if (auto const svid = svidOf(name)) {
            svids_.push_back(*svid);
        }
    }
}

bool WatchedNames::isName(std::string const& text) {
    return svidOf(text).has_value();
}

bool WatchedNames::has(long long svid) const {
    return std::find(svids_.begin(), svids_.end(), svid) != svids_.end();
}

} // namespace qel::watch
