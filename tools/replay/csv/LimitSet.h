// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// The limits that a user has set.
#pragma once

#include "tools/common/InputError.h"
#include "tools/replay/csv/CsvTable.h"
#include "tools/replay/csv/Limit.h"

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace qel::tools {

/// Limits by column, read from text such as
/// "outlet6_active_power_W:high-alarm=2500,high-warning=2000,hysteresis=50". Settings are high-alarm,
/// high-warning, low-warning, low-alarm and hysteresis, in any order, each at most once; at least one of them
/// must be a threshold.
class LimitSet {
public:
    /// Reads one limit.
    /// @param place where the text stands, for messages
    /// @throws InputError for text that is no limit, an unknown column or setting, a second limit of the same
    /// column,
    ///         a low threshold not below a high one by more than the hysteresis, a warning beyond its alarm,
    ///         a negative hysteresis
    void add(std::string_view text, InputPlace const& place);

    /// Reads a file with one limit a line; '#' starts a comment, empty lines do not count.
    /// @throws InputError as add(), or when the file cannot be read
    void addFile(std::string const& path);

    /// @throws InputError when a limit's column stands in none of the recordings
    void checkColumns(std::vector<CsvTable> const& tables) const;

    /// The limit of a column, null when it has none.
    Limit const* find(std::string_view column) const;

private:
    struct Entry {
        std::string column;
        Limit limit;
        std::string file; // where it was set
        std::size_t line;
    };

    std::vector<Entry> entries_;
};

} // namespace qel::tools
