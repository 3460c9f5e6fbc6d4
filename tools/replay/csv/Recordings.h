// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// All recordings of one replay.
#pragma once

#include "tools/replay/csv/CsvTable.h"

#include <string>
#include <vector>

namespace qel::tools {

/// The tables of several files. No value of the unit is fed by two of them.
///
/// Threads: immutable; any thread.
class Recordings {
public:
    /// @throws InputError as CsvTable::read(), or when a column stands in two files
    static Recordings read(std::vector<std::string> const& paths);

    /// In the order of the paths.
    std::vector<CsvTable> const& tables() const { return tables_; }

    /// Whether some file has a column for the value.
    bool has(PointId const& point, unsigned short key) const;

    std::size_t rowCount() const;

private:
    void add(CsvTable table);

    std::vector<CsvTable> tables_;
};

} // namespace qel::tools
