// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tools/qelshm/watch/LinesPane.h"

#include "tools/common/TimeText.h"

#include <algorithm>

namespace qel::watch {

void LinesPane::show(Pane kind) {
    kind_ = kind_ == kind ? Pane::Graph : kind;
    scrolled_ = 0;
}

std::vector<StyledLine> LinesPane::all(WatchedUnit const& unit, Row const* row) const {
    constexpr std::uint64_t second = 1000; // ms
    std::vector<StyledLine> lines;
    if (kind_ == Pane::Events) {
        lines.reserve(unit.events().events().size());
        for (auto const& event : unit.events().events()) {
            lines.push_back({tools::timeText(event.at / second * second) + "  " + event.text, event.style});
        }
    } else if (kind_ == Pane::Why && row != nullptr) {
        lines = whyLines(unit, row->isPoint ? row->index : unit.structure().values()[row->index].point);
    }
    return lines;
}

void LinesPane::scroll(bool isUp, WatchedUnit const& unit, Row const* row) {
    auto const count = all(unit, row).size();
    auto const hidden = count - std::min(count, size_);
    bool const isAway = isUp == (kind_ == Pane::Events); // from where it begins
    scrolled_ = isAway ? std::min(scrolled_ + 1, hidden) : scrolled_ - std::min<std::size_t>(scrolled_, 1);
}

std::vector<StyledLine> LinesPane::lines(WatchedUnit const& unit, Row const* row) const {
    auto const every = all(unit, row);
    auto const count = std::min(every.size(), size_);
    auto const scrolled = std::min(scrolled_, every.size() - count);
    auto const first = kind_ == Pane::Events ? every.size() - count - scrolled : scrolled;
    auto const begin = every.begin() + static_cast<std::ptrdiff_t>(first);
    return {begin, begin + static_cast<std::ptrdiff_t>(count)};
}

} // namespace qel::watch
