// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tools/qelshm/watch/LinePrinter.h"

#include "tools/common/TimeText.h"
#include "tools/qelshm/terminal/Style.h"
#include "tools/qelshm/terminal/Utf8Text.h"

#include "format/StateName.h"
#include "format/ValueFormatter.h"
#include "region/QelShmMVal.h"

#include <algorithm>
#include <ostream>
#include <utility>

namespace qel::watch {

namespace {

// The longest usual text of each; a longer one shifts the rest of its line.
constexpr std::size_t pathWidth = 32;
constexpr std::size_t nameWidth = 16;
constexpr std::size_t numberWidth = 14;
constexpr std::uint64_t noHistory = 0;

std::string column(std::string const& text, std::size_t width) {
    return text.size() < width ? tools::fitted(text, width) : text;
}

} // namespace

LinePrinter::LinePrinter(std::ostream& out, WatchedNames names, bool isColoured,
                         std::optional<std::uint64_t> lines)
    : out_(out),
      isColoured_(isColoured),
      linesLeft_(lines),
      structure_(std::move(names)),
      tracker_(noHistory) {}

void LinePrinter::update(Snapshot const& snapshot, inspect::RegionStatus const& status) {
    structure_.update(status.condition == inspect::Condition::Active ? snapshot.image : inspect::Image());
    for (auto const& change : tracker_.update(structure_, snapshot.image, snapshot.ticks)) {
        if (isDone()) {
            break;
        }
        print(snapshot, structure_.values()[change.value]);
    }
    out_ << std::flush;
}

void LinePrinter::print(Snapshot const& snapshot, UnitValue const& value) {
    auto const& slot = snapshot.image.region().values[value.pos];
    auto const state = shm::stateName(slot.state);
    out_ << (slot.at == 0 ? "-" : tools::timeText(slot.at)) << "  "
         << column(structure_.points()[value.point].path, pathWidth) << "  " << column(value.name, nameWidth)
         << "  " << column(tav::ValueFormatter::str(shm::QelShmMVal(&slot)), numberWidth) << "  "
         << (isColoured_ ? tools::styled(state, tools::stateStyle(slot.state)) : std::string(state)) << '\n';
    if (linesLeft_) {
        --*linesLeft_;
    }
}

bool LinePrinter::isDone() const {
    return linesLeft_ == std::uint64_t{0} || !out_;
}

} // namespace qel::watch
