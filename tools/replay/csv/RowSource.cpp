// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tools/replay/csv/RowSource.h"

#include "format/ValueKeys.h"

namespace qel::tools {

RowSource::RowSource(CsvTable const& table, std::size_t first, bool isEndless)
    : table_(&table),
      first_(first),
      isEndless_(isEndless),
      row_(first),
      raises_(table.columns().size(), 0.0) {}

std::optional<std::uint64_t> RowSource::due() const {
    if (row_ == table_->rowCount()) {
        return std::nullopt;
    }
    return table_->time(row_) + shift_ - startTime();
}

Row RowSource::next() {
    Row row{table_->time(row_) + shift_, {}};
    row.cells.reserve(raises_.size());
    for (std::size_t column = 0; column < raises_.size(); ++column) {
        auto cell = table_->cell(row_, column);
        if (cell) {
            *cell += raises_[column];
        }
        row.cells.push_back(cell);
    }
    ++row_;
    if (isEndless_ && row_ == table_->rowCount()) {
        startOver();
    }
    return row;
}

void RowSource::startOver() {
    shift_ += table_->time(row_ - 1) - startTime() + lastStep();
    for (std::size_t column = 0; column < raises_.size(); ++column) {
        if (table_->columns()[column].key == shm::key::activeEnergy) {
            raises_[column] += counted(column);
        }
    }
    row_ = first_;
}

// A recording of one row has no step; it is repeated every second.
std::uint64_t RowSource::lastStep() const {
    constexpr std::uint64_t second = 1000;
    auto const count = table_->rowCount();
    return count < 2 ? second : table_->time(count - 1) - table_->time(count - 2);
}

double RowSource::counted(std::size_t column) const {
    std::optional<double> begin;
    std::optional<double> end;
    for (auto row = first_; row < table_->rowCount(); ++row) {
        auto const cell = table_->cell(row, column);
        if (cell && !begin) {
            begin = cell;
        }
        if (cell) {
            end = cell;
        }
    }
    return begin ? *end - *begin : 0.0;
}

} // namespace qel::tools
