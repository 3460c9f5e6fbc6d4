// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tools/qelshm/watch/SnapshotSource.h"

#include <chrono>

namespace qel::watch {

namespace {

template <typename Clock>
std::uint64_t msOf() {
    auto const passed = Clock::now().time_since_epoch();
    return static_cast<std::uint64_t>(std::chrono::duration_cast<std::chrono::milliseconds>(passed).count());
}

} // namespace

SnapshotSource::SnapshotSource() : objects_(region_.isOpen() ? 1 : 0) {}

Snapshot SnapshotSource::take() {
    if (!region_.isOpen() || region_.isReplaced()) {
        region_ = inspect::LiveRegion();
        objects_ += region_.isOpen() ? 1 : 0;
    }
    return {region_.copy(), region_.source(), objects_, msOf<std::chrono::system_clock>(),
            msOf<std::chrono::steady_clock>()};
}

} // namespace qel::watch
