// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tools/qelshm/watch/RowCursor.h"

#include "region/SvidParts.h"

#include <algorithm>
#include <utility>

namespace qel::watch {

void RowCursor::show(std::vector<Row> rows) {
    rows_ = std::move(rows);
    keepSelection();
}

void RowCursor::keepSelection() {
    if (rows_.empty()) {
        selected_ = 0;
        top_ = 0;
        return;
    }
    auto row = find(isPointSelected_, selectedId_);
    if (!row && !isPointSelected_) {
        row = find(true, shm::pointSvid(selectedId_));
    }
    select(row.value_or(std::min(selected_, rows_.size() - 1)));
}

void RowCursor::setPage(std::size_t lines) {
    page_ = std::max<std::size_t>(lines, 1);
    keepSelection();
}

std::size_t RowCursor::end() const {
    return std::min(rows_.size(), top_ + page_);
}

std::optional<std::size_t> RowCursor::find(bool isPoint, long long svid) const {
    auto const found = std::find_if(rows_.begin(), rows_.end(), [&](Row const& row) {
        return row.isPoint == isPoint && row.svid == svid;
    });
    return found == rows_.end() ? std::nullopt
                                : std::optional(static_cast<std::size_t>(found - rows_.begin()));
}

void RowCursor::select(std::size_t row) {
    if (row >= rows_.size()) {
        return;
    }
    selected_ = row;
    isPointSelected_ = rows_[row].isPoint;
    selectedId_ = rows_[row].svid;
    auto const lowest = row + 1 > page_ ? row + 1 - page_ : 0;
    top_ = std::min(std::clamp(top_, lowest, row), lastTop());
}

bool RowCursor::select(bool isPoint, long long svid) {
    auto const row = find(isPoint, svid);
    if (row) {
        select(*row);
    }
    return row.has_value();
}

void RowCursor::moveBy(std::size_t rows, bool isDown) {
    if (!isEmpty()) {
        select(isDown ? std::min(selected_ + rows, rows_.size() - 1) : selected_ - std::min(selected_, rows));
    }
}

void RowCursor::scrollBy(std::size_t rows, bool isDown) {
    if (isEmpty()) {
        return;
    }
    top_ = isDown ? std::min(top_ + rows, lastTop()) : top_ - std::min(top_, rows);
    select(std::clamp(selected_, top_, end() - 1));
}

} // namespace qel::watch
