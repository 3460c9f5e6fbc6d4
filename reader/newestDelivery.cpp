// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "reader/newestDelivery.h"

#include "region/RegionFields.h"

#include <algorithm>
#include <array>
#include <bitset>
#include <cstddef>
#include <limits>

namespace shm {

namespace {

/// Reads a time once from memory that others write.
std::uint64_t timeOf(std::uint64_t const& at) {
    std::uint64_t const time = *const_cast<std::uint64_t const volatile*>(&at);
    return time == std::numeric_limits<std::uint64_t>::max() ? 0 : time;
}

/// Positions of points that are still to be visited. Each is entered at most once.
class PendingPoints {
public:
    void enter(std::uint32_t pos) {
        if (pos < MP_COUNT && !entered_[pos]) {
            entered_[pos] = true;
            positions_.at(count_++) = static_cast<std::uint16_t>(pos);
        }
    }
    bool empty() const { return count_ == 0; }
    std::uint16_t take() { return positions_.at(--count_); }

private:
    std::array<std::uint16_t, MP_COUNT> positions_{};
    std::bitset<MP_COUNT> entered_;
    std::size_t count_ = 0;
};

} // namespace

std::uint64_t newestDelivery(record::Region const& region) {
    PendingPoints pending;
    std::bitset<MV_COUNT> seen;
    std::uint64_t newest = 0;
    pending.enter(loadLink(region.root.devices));
    pending.enter(loadLink(region.root.groups));
    while (!pending.empty()) {
        auto const& point = region.points[pending.take()];
        newest = std::max(newest, timeOf(point.at));
        for (auto pos = loadLink(point.mvs); pos < MV_COUNT && !seen[pos];
             pos = loadLink(region.values[pos].next)) {
            seen[pos] = true;
            newest = std::max(newest, timeOf(region.values[pos].at));
        }
        pending.enter(loadLink(point.children));
        pending.enter(loadLink(point.next));
    }
    return newest;
}

} // namespace shm
