// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tools/replay/csv/CsvTable.h"

#include "tools/common/InputError.h"
#include "tools/common/TimeText.h"
#include "tools/replay/csv/CsvReader.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <limits>
#include <system_error>
#include <utility>

namespace qel::tools {

/// Takes the rows of the file one by one and checks each.
class CsvTable::Builder {
public:
    explicit Builder(CsvTable& table) : table_(table) {}

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
            throw InputError({table_.path_}, "the file is empty",
                             "a header line that starts with " + std::string(timestampColumn));
        }
        if (table_.times_.empty()) {
            throw InputError({table_.path_, lines_ + 1}, "the file ends after its header",
                             "at least one row");
        }
    }

private:
    void readHeader(std::vector<std::string> const& names) {
        constexpr std::size_t headerLine = 1;
        if (names.empty() || names.front() != timestampColumn) {
            throw InputError({table_.path_, headerLine},
                             "the first column is " + inQuotes(names.empty() ? "" : names.front()),
                             inQuotes(timestampColumn));
        }
        for (auto name = names.begin() + 1; name != names.end(); ++name) {
            auto column = parseColumn(*name);
            if (!column) {
                throw InputError({table_.path_, headerLine}, "unknown column " + inQuotes(*name),
                                 columnGrammar);
            }
            if (table_.find(column->point, column->key)) {
                throw InputError({table_.path_, headerLine, *name}, "the column is there twice", "it once");
            }
            table_.columns_.push_back(std::move(*column));
        }
        if (table_.columns_.empty()) {
            throw InputError({table_.path_, headerLine}, "there is no column after the time",
                             "at least one column of readings");
        }
    }

    void readRow(std::vector<std::string> const& cells, std::size_t line) {
        auto const expected = table_.columns_.size() + 1;
        if (cells.size() != expected) {
            throw InputError({table_.path_, line}, "the row has " + std::to_string(cells.size()) + " cells",
                             std::to_string(expected) + ", as in the header");
        }
        table_.times_.push_back(readTime(cells.front(), line));
        for (std::size_t column = 0; column < table_.columns_.size(); ++column) {
            table_.cells_.push_back(readNumber(cells[column + 1], line, table_.columns_[column].name));
        }
    }

    std::uint64_t readTime(std::string const& text, std::size_t line) const {
        InputPlace const place{table_.path_, line, timestampColumn};
        auto const time = parseTime(text);
        if (!time) {
            throw InputError(place, inQuotes(text) + " is no time",
                             "an ISO 8601 UTC time such as 2023-06-09T07:34:38Z");
        }
        if (!table_.times_.empty() && *time <= table_.times_.back()) {
            throw InputError(place, inQuotes(text) + " is not after the row before",
                             "a time later than " + timeText(table_.times_.back()));
        }
        return *time;
    }

    double readNumber(std::string const& text, std::size_t line, std::string const& column) const {
        if (text.empty()) {
            return std::numeric_limits<double>::quiet_NaN();
        }
        double number = 0.0;
        auto const* const end = text.data() + text.size();
        auto const parsed = std::from_chars(text.data(), end, number);
        if (parsed.ec != std::errc() || parsed.ptr != end || !std::isfinite(number)) {
            throw InputError({table_.path_, line, column}, inQuotes(text) + " is no number",
                             "a decimal number or an empty cell");
        }
        return number;
    }

    CsvTable& table_;
    std::size_t lines_ = 0;
};

CsvTable CsvTable::read(std::string const& path) {
    CsvTable table(path);
    Builder builder(table);
    readCsv(path,
            [&](std::vector<std::string> const& cells, std::size_t line) { builder.addRow(cells, line); });
    builder.finish();
    return table;
}

std::optional<std::size_t> CsvTable::find(PointId const& point, unsigned short key) const {
    auto const found = std::find_if(columns_.begin(), columns_.end(), [&](Column const& column) {
        return column.point == point && column.key == key;
    });
    if (found == columns_.end()) {
        return std::nullopt;
    }
    return static_cast<std::size_t>(found - columns_.begin());
}

std::optional<double> CsvTable::cell(std::size_t row, std::size_t column) const {
    double const number = cells_.at(row * columns_.size() + column);
    return std::isnan(number) ? std::nullopt : std::optional<double>(number);
}

} // namespace qel::tools
