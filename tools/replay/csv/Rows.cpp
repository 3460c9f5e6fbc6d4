// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tools/replay/csv/Rows.h"

#include "format/ValueKeys.h"

#include <algorithm>
#include <limits>

namespace qel::tools {

namespace key = shm::key;

RecordingRows::RecordingRows(Recording const& recording, std::size_t first, bool isEndless)
    : recording_(&recording),
      first_(first),
      isEndless_(isEndless),
      row_(first),
      raises_(recording.columns().size(), 0.0) {}

std::optional<std::uint64_t> RecordingRows::due() const {
    if (row_ == recording_->rowCount()) {
        return std::nullopt;
    }
    return recording_->time(row_) + shift_ - startTime();
}

Row RecordingRows::next() {
    Row row{recording_->time(row_) + shift_, {}};
    row.cells.reserve(raises_.size());
    for (std::size_t column = 0; column < raises_.size(); ++column) {
        auto cell = recording_->cell(row_, column);
        if (cell) {
            *cell += raises_[column];
        }
        row.cells.push_back(cell);
    }
    ++row_;
    if (isEndless_ && row_ == recording_->rowCount()) {
        startOver();
    }
    return row;
}

void RecordingRows::startOver() {
    shift_ += recording_->time(row_ - 1) - startTime() + lastStep();
    for (std::size_t column = 0; column < raises_.size(); ++column) {
        if (recording_->columns()[column].key == key::activeEnergy) {
            raises_[column] += counted(column);
        }
    }
    row_ = first_;
}

// A recording of one row has no time step; it is repeated every second.
std::uint64_t RecordingRows::lastStep() const {
    constexpr std::uint64_t second = 1000;
    auto const count = recording_->rowCount();
    return count < 2 ? second : recording_->time(count - 1) - recording_->time(count - 2);
}

double RecordingRows::counted(std::size_t column) const {
    std::optional<double> begin;
    std::optional<double> end;
    for (auto row = first_; row < recording_->rowCount(); ++row) {
        auto const cell = recording_->cell(row, column);
        if (cell && !begin) {
            begin = cell;
        }
        if (cell) {
            end = cell;
        }
    }
    return begin ? *end - *begin : 0.0;
}

MergedRows::MergedRows(Recordings const& recordings, RowSelection const& selection)
    : rowsLeft_(selection.rowLimit) {
    std::uint64_t total = 0;
    for (auto const& recording : recordings.all()) {
        auto const index = rows_.size();
        auto const first = index < selection.firstRows.size() ? selection.firstRows[index] : 0;
        rows_.emplace_back(recording, first, selection.isEndless);
        total += recording.rowCount() - first;
    }
    total_ = selection.isEndless ? std::nullopt : std::optional(total);
}

std::size_t MergedRows::earliest() const {
    constexpr auto never = std::numeric_limits<std::uint64_t>::max();
    auto const first = std::min_element(rows_.begin(), rows_.end(),
                                        [&](RecordingRows const& left, RecordingRows const& right) {
                                            return left.due().value_or(never) < right.due().value_or(never);
                                        });
    return static_cast<std::size_t>(first - rows_.begin());
}

bool MergedRows::isStopped() const {
    return rowsLeft_ == 0U && !rows_.empty() && rows_[earliest()].due().has_value();
}

std::optional<std::uint64_t> MergedRows::due() const {
    if (rows_.empty() || rowsLeft_ == 0U) {
        return std::nullopt;
    }
    return rows_[earliest()].due();
}

MergedRows::Step MergedRows::next() {
    auto const recording = earliest();
    if (rowsLeft_) {
        --*rowsLeft_;
    }
    return {recording, rows_[recording].next()};
}

} // namespace qel::tools
