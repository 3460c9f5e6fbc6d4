// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tools/replay/csv/Replayer.h"

#include <algorithm>
#include <limits>

namespace qel::tools {

Replayer::Replayer(Recordings const& recordings, Options const& options) : rowsLeft_(options.rowLimit) {
    for (auto const& table : recordings.tables()) {
        auto const index = sources_.size();
        auto const first = index < options.firstRows.size() ? options.firstRows[index] : 0;
        sources_.emplace_back(table, first, options.isEndless);
    }
}

std::size_t Replayer::earliest() const {
    constexpr auto never = std::numeric_limits<std::uint64_t>::max();
    auto const first = std::min_element(sources_.begin(), sources_.end(),
                                        [&](RowSource const& left, RowSource const& right) {
                                            return left.due().value_or(never) < right.due().value_or(never);
                                        });
    return static_cast<std::size_t>(first - sources_.begin());
}

std::optional<std::uint64_t> Replayer::due() const {
    if (sources_.empty() || rowsLeft_ == 0U) {
        return std::nullopt;
    }
    return sources_[earliest()].due();
}

Replayer::Step Replayer::next() {
    auto const recording = earliest();
    if (rowsLeft_) {
        --*rowsLeft_;
    }
    return {recording, sources_[recording].next()};
}

} // namespace qel::tools
