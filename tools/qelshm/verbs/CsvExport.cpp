// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tools/qelshm/verbs/CsvExport.h"

#include "tools/common/TimeText.h"
#include "tools/qelshm/terminal/CsvText.h"
#include "tools/qelshm/terminal/ExactText.h"

#include "format/KeyTable.h"
#include "format/StateName.h"
#include "inspect/naming/ValuePath.h"

#include <utility>

namespace qel::tools {

namespace {

using inspect::SelectedValues;

constexpr std::string_view lineEnd = "\n";

std::string numberCell(std::optional<double> number) {
    return number ? exactText(*number) : std::string();
}

std::string columnName(SelectedValues::Name const& name) {
    auto const unit = shm::keyUnit(name.key);
    auto const path = inspect::valuePath(name.point, name.key);
    return unit.empty() ? path : path + " (" + std::string(unit) + ')';
}

shm::record::QelShmMVal const* valueIn(SelectedValues const* selected, std::size_t index) {
    return selected == nullptr ? nullptr : selected->value(index);
}

/// The rows between two samples.
class RowTimes {
public:
    RowTimes(std::uint64_t from, std::uint64_t until, std::uint64_t interval)
        : next_(from),
          until_(until),
          interval_(interval) {}

    /// The next row before a time, or up to the end.
    std::optional<std::uint64_t> take(std::optional<std::uint64_t> before) {
        if (isOver_ || (before && next_ >= *before)) {
            return std::nullopt;
        }
        auto const time = next_;
        isOver_ = until_ - next_ < interval_;
        next_ += isOver_ ? 0 : interval_;
        return time;
    }

private:
    std::uint64_t next_;
    std::uint64_t until_;
    std::uint64_t interval_;
    bool isOver_ = false;
};

} // namespace

CsvExport::CsvExport(std::vector<inspect::ValuePattern> patterns, Values values, CsvLayout layout,
                     std::optional<std::uint64_t> interval)
    : patterns_(std::move(patterns)),
      values_(std::move(values)),
      layout_(layout),
      interval_(interval) {}

void CsvExport::write(inspect::CaptureTimeline const& timeline, CaptureRange const& range,
                      Output const& output) const {
    if (interval_ && (range.until - range.from) / *interval_ >= mostRows) {
        throw TooManyRowsError("more than " + std::to_string(mostRows) +
                               " rows; choose a longer --interval, or a part with --from and --to");
    }
    auto text = header();
    auto const add = [&](std::string const& lines) {
        constexpr std::size_t piece = 65536; // bytes written at once
        text += lines;
        if (text.size() >= piece) {
            output(text);
            text.clear();
        }
    };
    SelectedValues selected(patterns_);
    RowTimes times(range.from, range.until, interval_.value_or(1));
    auto const pause = timeline.longestPause();
    forEachSample(timeline, range.from, range.until, [&](inspect::CaptureReader const& reader, auto next) {
        selected.follow(reader.region());
        auto const moment = reader.moment();
        if (!interval_) {
            if (moment >= range.from) {
                add(rows(moment, &selected));
            }
            return;
        }
        while (auto const time = times.take(next)) {
            bool const isGap = *time > moment && *time - moment > pause;
            add(rows(*time, isGap ? nullptr : &selected));
        }
    });
    output(text);
}

std::string CsvExport::header() const {
    std::string line("timestamp_utc");
    if (layout_ == CsvLayout::Long) {
        return line.append(",name,number,unit,state").append(lineEnd);
    }
    for (auto const& value : values_) {
        line.append(",").append(csvText(columnName(value)));
    }
    return line.append(lineEnd);
}

std::string CsvExport::rows(std::uint64_t time, SelectedValues const* selected) const {
    if (layout_ == CsvLayout::Long) {
        return longRows(time, selected);
    }
    auto line = momentText(time);
    for (std::size_t index = 0; index < values_.size(); ++index) {
        line.append(",").append(numberCell(inspect::deliveredNumber(valueIn(selected, index))));
    }
    return line.append(lineEnd);
}

std::string CsvExport::longRows(std::uint64_t time, SelectedValues const* selected) const {
    std::string lines;
    auto const moment = momentText(time);
    for (std::size_t index = 0; index < values_.size(); ++index) {
        auto const& name = values_[index];
        auto const* const value = valueIn(selected, index);
        auto const state = value == nullptr ? std::string_view() : shm::stateName(value->state);
        lines.append(moment)
            .append(",")
            .append(csvText(inspect::valuePath(name.point, name.key)))
            .append(",")
            .append(numberCell(inspect::deliveredNumber(value)))
            .append(",")
            .append(csvText(shm::keyUnit(name.key)))
            .append(",")
            .append(csvText(state))
            .append(lineEnd);
    }
    return lines;
}

} // namespace qel::tools
