// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "inspect/capture/CaptureLog.h"

#include "inspect/image/PointTree.h"
#include "inspect/naming/PointFinder.h"

#include <algorithm>

namespace qel::inspect {

namespace {

/// Whether values that stayed where they were lost their time of delivery: only a new region begins without.
bool isRestart(Image const& before, Image const& after) {
    PointTree const tree(after);
    auto const& old = before.region();
    auto const& now = after.region();
    return std::any_of(tree.nodes().begin(), tree.nodes().end(), [&](PointNode const& node) {
        auto const values = tree.valuesOf(node);
        return old.points[node.pos].guid == now.points[node.pos].guid &&
               std::any_of(values.begin(), values.end(), [&](std::uint32_t pos) {
                   auto const& former = old.values[pos];
                   return former.key == now.values[pos].key && former.at != 0 && now.values[pos].at == 0;
               });
    });
}

/// Compares samples one by one.
class Reading {
public:
    using Take = std::function<void(CaptureEvent)>;

    Reading(std::uint64_t pause, Take take) : pause_(pause), take_(std::move(take)) {}

    void add(CaptureReader const& reader) {
        auto const time = reader.moment();
        if (reader.samples() > 1 && time - time_ > pause_) {
            take_({time, CaptureEvent::Kind::Gap, time - time_, std::nullopt});
        }
        time_ = time;
        auto const& region = reader.region();
        if (!region.isActive()) {
            if (last_ && !wasLeft_) {
                take_({time, CaptureEvent::Kind::Inactive, 0, std::nullopt});
            }
            wasLeft_ = last_.has_value();
        } else if (!last_) {
            last_ = region.image();
        } else if (wasLeft_ || region.hasChangedStates() || region.hasClearedTimes()) {
            compare(region.image());
        }
    }

private:
    void compare(Image const& image) {
        if (wasLeft_ || isRestart(*last_, image)) {
            take_({time_, CaptureEvent::Kind::Restart, 0, std::nullopt});
        }
        wasLeft_ = false;
        for (auto& difference : differences(*last_, image)) {
            if (difference.kind != DifferenceKind::ValueNumber &&
                difference.kind != DifferenceKind::Version) {
                take_({time_, CaptureEvent::Kind::Change, 0, std::move(difference)});
            }
        }
        last_ = image;
    }

    std::uint64_t pause_;
    Take take_;
    std::uint64_t time_ = 0;
    std::optional<Image> last_; ///< the states of the newest active sample; its numbers may be older
    bool wasLeft_ = false;      ///< the newest sample is not active, but one before was
};

} // namespace

char const* eventName(CaptureEvent const& event) {
    switch (event.kind) {
    case CaptureEvent::Kind::Inactive:
        return "inactive";
    case CaptureEvent::Kind::Restart:
        return "restart";
    case CaptureEvent::Kind::Gap:
        return "gap";
    case CaptureEvent::Kind::Change:
        break;
    }
    return differenceName(event.difference.value().kind);
}

void CaptureLog::read(CaptureTimeline const& timeline, std::uint64_t from, std::uint64_t until,
                      Handler const& handler) const {
    Reading reading(timeline.longestPause(), [&](CaptureEvent const& event) {
        bool const isWanted = !event.difference || isSelected(*event.difference);
        if (isWanted && event.time >= from && event.time <= until) {
            handler(event);
        }
    });
    forEachSample(timeline, timeline.first(), until,
                  [&](CaptureReader const& reader, auto /*next*/) { reading.add(reader); });
}

std::optional<std::size_t> CaptureLog::unmatched(CaptureTimeline const& timeline, std::uint64_t from,
                                                 std::uint64_t until) const {
    std::vector<bool> isMatched(patterns_.size());
    auto const match = [&](Image const& image) {
        PointTree const tree(image);
        PointFinder const finder(image, tree);
        for (std::size_t index = 0; index < patterns_.size(); ++index) {
            isMatched[index] = isMatched[index] || finder.hasMatch(patterns_[index]);
        }
    };
    std::optional<Image> before; // the last active one: what has vanished since then is an event
    bool isFirst = true;
    anySample(timeline, timeline.first(), until, [&](CaptureReader const& reader, auto /*next*/) {
        auto const& region = reader.region();
        bool const isOther = region.isActive() && (isFirst || region.hasChangedStates());
        isFirst = isFirst && !isOther;
        if (reader.moment() < from) {
            if (isOther) {
                before = region.image();
            }
            return false;
        }
        if (before) {
            match(*before);
            before.reset();
        }
        if (isOther) {
            match(region.image());
        }
        return std::find(isMatched.begin(), isMatched.end(), false) == isMatched.end();
    });
    if (before) {
        match(*before);
    }
    auto const none = std::find(isMatched.begin(), isMatched.end(), false);
    return none == isMatched.end() ? std::nullopt
                                   : std::optional(static_cast<std::size_t>(none - isMatched.begin()));
}

bool CaptureLog::isSelected(Difference const& difference) const {
    return patterns_.empty() ||
           std::any_of(patterns_.begin(), patterns_.end(), [&](ValuePattern const& pattern) {
               if (difference.kind == DifferenceKind::GlobalState) {
                   return false;
               }
               if (difference.key) {
                   return pattern.matches(difference.svid, *difference.key);
               }
               // Of a point that only counts for a value, its own state does not matter.
               return pattern.matchesPoint(difference.svid) &&
                      (!pattern.hasKey() || difference.kind != DifferenceKind::PointState);
           });
}

} // namespace qel::inspect
