// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tools/replay/csv/Recording.h"

#include "tools/common/Numbers.h"
#include "tools/common/TimeText.h"
#include "tools/replay/csv/CsvReader.h"
#include "tools/replay/csv/InputError.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>

namespace qel::tools {

/// Takes the rows of the file one by one and checks each.
class Recording::Builder {
public:
    explicit Builder(Recording& recording) : recording_(recording) {}

    void addRow(std::vector<std::string> const& cells, std::size_t line) {
        if (line == 1) {
            readHeader(cells);
        } else {
            readRow(cells, line);
        }
        lines_ = line;
    }

    void finish() const {
        if (lines_ == 0) {
            throw InputError({recording_.path_}, "the file is empty",
                             "a header line that starts with " + std::string(timestampColumn));
        }
        if (recording_.times_.empty()) {
            throw InputError({recording_.path_, lines_ + 1}, "the file ends after its header",
                             "at least one row");
        }
    }

private:
    void readHeader(std::vector<std::string> const& names) {
        constexpr std::size_t headerLine = 1;
        if (names.empty() || names.front() != timestampColumn) {
            throw InputError({recording_.path_, headerLine},
                             "the first column is " + inQuotes(names.empty() ? "" : names.front()),
                             inQuotes(timestampColumn));
        }
        for (auto name = names.begin() + 1; name != names.end(); ++name) {
            auto column = parseColumn(*name);
            if (!column) {
                throw InputError({recording_.path_, headerLine}, "unknown column " + inQuotes(*name),
                                 columnGrammar);
            }
            if (recording_.find(column->point, column->key)) {
                throw InputError({recording_.path_, headerLine, *name}, "duplicate column",
                                 "each column once");
            }
            recording_.columns_.push_back(std::move(*column));
        }
        if (recording_.columns_.empty()) {
            throw InputError({recording_.path_, headerLine}, "no column after the time",
                             "at least one column of readings");
        }
    }

    void readRow(std::vector<std::string> const& cells, std::size_t line) {
        auto const expected = recording_.columns_.size() + 1;
        if (cells.empty()) {
            throw InputError({recording_.path_, line}, "the line is empty",
                             "rows without empty lines between them");
        }
        if (cells.size() != expected) {
            throw InputError({recording_.path_, line},
                             "the row has " + std::to_string(cells.size()) + " cells",
                             std::to_string(expected) + ", as in the header");
        }
        recording_.times_.push_back(readTime(cells.front(), line));
        for (std::size_t column = 0; column < recording_.columns_.size(); ++column) {
            recording_.cells_.push_back(
                readNumber(cells[column + 1], line, recording_.columns_[column].name));
        }
    }

    std::uint64_t readTime(std::string const& text, std::size_t line) const {
        InputPlace const place{recording_.path_, line, timestampColumn};
        auto const time = parseTime(text);
        if (!time) {
            throw InputError(place, inQuotes(text) + " is not a time",
                             "ISO 8601 UTC, such as 2023-06-09T07:34:38Z");
        }
        if (!recording_.times_.empty() && *time <= recording_.times_.back()) {
            throw InputError(place, inQuotes(text) + " is not later than the previous row",
                             "a time after " + timeText(recording_.times_.back()));
        }
        return *time;
    }

    double readNumber(std::string const& text, std::size_t line, std::string const& column) const {
        if (text.empty()) {
            return std::numeric_limits<double>::quiet_NaN();
        }
        auto const number = parseNumber(text);
        if (!number) {
            throw InputError({recording_.path_, line, column}, inQuotes(text) + " is not a number",
                             "a decimal number or an empty cell");
        }
        return *number;
    }

    Recording& recording_;
    std::size_t lines_ = 0;
};

Recording Recording::read(std::string const& path) {
    Recording recording(path);
    Builder builder(recording);
    readCsv(path,
            [&](std::vector<std::string> const& cells, std::size_t line) { builder.addRow(cells, line); });
    builder.finish();
    return recording;
}

std::optional<std::size_t> Recording::find(PointId const& point, unsigned short key) const {
    auto const found = std::find_if(columns_.begin(), columns_.end(), [&](Column const& column) {
        return column.point == point && column.key == key;
    });
    if (found == columns_.end()) {
        return std::nullopt;
    }
    return static_cast<std::size_t>(found - columns_.begin());
}

std::optional<double> Recording::cell(std::size_t row, std::size_t column) const {
    double const number = cells_.at(row * columns_.size() + column);
    return std::isnan(number) ? std::nullopt : std::optional<double>(number);
}

Recordings Recordings::read(std::vector<std::string> const& paths) {
    Recordings recordings;
    for (auto const& path : paths) {
        recordings.add(Recording::read(path));
    }
    return recordings;
}

void Recordings::add(Recording recording) {
    constexpr std::size_t headerLine = 1;
    for (auto const& column : recording.columns()) {
        for (auto const& other : all_) {
            if (other.find(column.point, column.key)) {
                throw InputError({recording.path(), headerLine, column.name},
                                 "the column is also in " + other.path(), "each column in one file only");
            }
        }
    }
    all_.push_back(std::move(recording));
}

bool Recordings::has(PointId const& point, unsigned short key) const {
    return std::any_of(all_.begin(), all_.end(),
                       [&](Recording const& recording) { return recording.find(point, key).has_value(); });
}

std::size_t Recordings::rowCount() const {
    std::size_t count = 0;
    for (auto const& recording : all_) {
        count += recording.rowCount();
    }
    return count;
}

} // namespace qel::tools
