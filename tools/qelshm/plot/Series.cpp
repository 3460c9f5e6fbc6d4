// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tools/qelshm/plot/Series.h"

#include <algorithm>

namespace qel::plot {

Series::Series(std::uint64_t from, std::uint64_t until, std::size_t columns)
    : from_(from),
      until_(std::max(from, until)),
      columns_(std::max<std::size_t>(columns, 1)) {}

void Series::add(std::uint64_t time, std::optional<double> number, inspect::StateClass state) {
    auto const at = std::clamp(time, from_, until_);
    markUpTo(at);
    mark_ = state == inspect::StateClass::Alarm     ? Mark::Alarm
            : state == inspect::StateClass::Warning ? Mark::Warning
                                                    : Mark::None;
    auto& column = columns_[columnAt(at)];
    column.mark = std::max(column.mark, mark_);
    if (!number) {
        isBroken_ = true;
        return;
    }
    PlotPoint const point{at, *number};
    if (column.count == 0) {
        column.isBroken = isBroken_;
        column.first = column.least = column.greatest = point;
    }
    column.least = point.number < column.least.number ? point : column.least;
    column.greatest = point.number > column.greatest.number ? point : column.greatest;
    column.last = point;
    ++column.count;
    isBroken_ = false;
    least_ = count_ == 0 ? *number : std::min(least_, *number);
    greatest_ = count_ == 0 ? *number : std::max(greatest_, *number);
    last_ = *number;
    ++count_;
}

void Series::pause(std::uint64_t time) {
    markUpTo(std::clamp(time, from_, until_));
    mark_ = Mark::None;
    isBroken_ = true;
}

void Series::end(std::uint64_t time) {
    markUpTo(std::clamp(time, from_, until_));
    columns_[marked_].mark = std::max(columns_[marked_].mark, mark_);
}

std::vector<std::vector<PlotPoint>> Series::pieces() const {
    std::vector<std::vector<PlotPoint>> pieces;
    for (auto const& column : columns_) {
        if (column.count == 0) {
            continue;
        }
        if (pieces.empty() || column.isBroken) {
            pieces.emplace_back();
        }
        std::vector<PlotPoint> points{column.first, column.least, column.greatest, column.last};
        std::stable_sort(points.begin(), points.end(), [](PlotPoint const& left, PlotPoint const& right) {
            return left.time < right.time;
        });
        for (auto const& point : points) {
            auto& piece = pieces.back();
            if (piece.empty() || piece.back().time != point.time || piece.back().number != point.number) {
                piece.push_back(point);
            }
        }
    }
    return pieces;
}

std::vector<PlotSpan> Series::spans() const {
    std::vector<PlotSpan> spans;
    for (std::size_t column = 0; column < columns_.size(); ++column) {
        auto const mark = columns_[column].mark;
        if (mark == Mark::None) {
            continue;
        }
        bool const isAlarm = mark == Mark::Alarm;
        if (!spans.empty() && spans.back().until == timeAt(column) && spans.back().isAlarm == isAlarm) {
            spans.back().until = timeAt(column + 1);
        } else {
            spans.push_back({timeAt(column), timeAt(column + 1), isAlarm});
        }
    }
    return spans;
}

std::size_t Series::columnAt(std::uint64_t time) const {
    if (until_ == from_) {
        return 0;
    }
    auto const part = static_cast<double>(time - from_) / static_cast<double>(until_ - from_);
    auto const column = static_cast<std::size_t>(part * static_cast<double>(columns_.size()));
    return std::min(column, columns_.size() - 1);
}

std::uint64_t Series::timeAt(std::size_t column) const {
    auto const part = static_cast<double>(column) / static_cast<double>(columns_.size());
    return from_ + static_cast<std::uint64_t>(part * static_cast<double>(until_ - from_));
}

/// The state of the last sample holds in the columns up to the next one.
void Series::markUpTo(std::uint64_t time) {
    auto const column = columnAt(time);
    for (auto index = marked_; mark_ != Mark::None && index < column; ++index) {
        columns_[index].mark = std::max(columns_[index].mark, mark_);
    }
    marked_ = column;
}

} // namespace qel::plot
