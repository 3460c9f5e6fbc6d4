// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "inspect/compare/UpdateRates.h"

#include "inspect/image/PointTree.h"
#include "inspect/image/RecordBytes.h"

#include <algorithm>
#include <stdexcept>

namespace qel::inspect {

namespace {

using shm::record::QelShmMVal;

long long valueId(long long point, unsigned short key) {
    return static_cast<long long>(static_cast<std::uint64_t>(point) | key);
}

bool hasSameContent(QelShmMVal const& left, QelShmMVal const& right) {
    return left.state == right.state && hasSameBits(left.value, right.value);
}

} // namespace

bool mayBeHigher(UpdateRate const& rate) {
    constexpr std::uint64_t fewLooks = 10; // tell nothing
    return rate.looks >= fewLooks && rate.count * 2 > rate.looks;
}

void UpdateRates::add(Image const& image, Time time) {
    if (images_ != 0 && time < newest_) {
        throw std::invalid_argument("an image is older than the one before");
    }
    newest_ = time;
    ++images_;
    PointTree const tree(image);
    for (auto const& node : tree.nodes()) {
        for (auto const pos : tree.valuesOf(node)) {
            auto const& value = image.region().values[pos];
            take(valueId(image.region().points[node.pos].guid, value.key), value, time);
        }
    }
}

void UpdateRates::take(long long svid, QelShmMVal const& value, Time time) {
    auto const [entry, isNew] = trackOf_.emplace(svid, tracks_.size());
    if (isNew) {
        tracks_.push_back({svid, value, time, time, images_, false, 0, 0, {}, {}, {}});
        return;
    }
    auto& track = tracks_[entry->second];
    if (track.newestImage == images_) {
        return; // a second value of this id
    }
    bool const isTimeNew = value.at != track.last.at;
    // The writer stores the time first: a change without a new time, in the next image, belongs to the same update.
    if (isTimeNew || (!hasSameContent(value, track.last) && !track.isTimeNew)) {
        if (track.lastUpdate) {
            std::chrono::nanoseconds const gap = time - *track.lastUpdate;
            track.shortest = std::min(track.shortest.value_or(gap), gap);
            track.longest = std::max(track.longest.value_or(gap), gap);
        }
        track.lastUpdate = time;
        ++track.count;
    }
    ++track.looks;
    track.isTimeNew = isTimeNew;
    track.last = value;
    track.newest = time;
    track.newestImage = images_;
}

std::vector<UpdateRate> UpdateRates::rates() const {
    std::vector<UpdateRate> rates;
    rates.reserve(tracks_.size());
    for (auto const& track : tracks_) {
        std::chrono::nanoseconds const observed = track.newest - track.first;
        std::optional<double> perSecond;
        if (observed.count() > 0) {
            perSecond = static_cast<double>(track.count) / std::chrono::duration<double>(observed).count();
        }
        rates.push_back({track.svid, track.count, track.last.at, track.looks, observed, perSecond,
                         track.shortest, track.longest, track.newestImage == images_});
    }
    return rates;
}

} // namespace qel::inspect
