// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tools/replay/csv/Recordings.h"

#include "tools/common/InputError.h"

#include <algorithm>
#include <utility>

namespace qel::tools {

Recordings Recordings::read(std::vector<std::string> const& paths) {
    Recordings recordings;
    for (auto const& path : paths) {
        recordings.add(CsvTable::read(path));
    }
    return recordings;
}

void Recordings::add(CsvTable table) {
    constexpr std::size_t headerLine = 1;
    for (auto const& column : table.columns()) {
        for (auto const& other : tables_) {
            if (other.find(column.point, column.key)) {
                throw InputError({table.path(), headerLine, column.name},
                                 "the column stands in " + other.path() + " too",
                                 "each column in one file only");
            }
        }
    }
    tables_.push_back(std::move(table));
}

bool Recordings::has(PointId const& point, unsigned short key) const {
    return std::any_of(tables_.begin(), tables_.end(),
                       [&](CsvTable const& table) { return table.find(point, key).has_value(); });
}

std::size_t Recordings::rowCount() const {
    std::size_t count = 0;
    for (auto const& table : tables_) {
        count += table.rowCount();
    }
    return count;
}

} // namespace qel::tools
