// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// Changes as CSV.
#pragma once

#include "tools/qelshm/stream/ChangeCount.h"
#include "tools/qelshm/stream/ISink.h"

#include <cstdint>
#include <iosfwd>
#include <optional>
#include <string_view>

namespace qel::stream {

/// Writes a header, a row "picture" for each value and selected point of each new picture, and a row "change" for each
/// change. Fields with commas or quotes are in quotes, as in RFC 4180; lines end with LF.
///
/// Threads: reentrant.
class CsvSink : public ISink {
public:
    /// @param out   must outlive the sink
    /// @param count number of changes to write; none for no limit
    CsvSink(std::ostream& out, watch::WatchedNames names, std::optional<std::uint64_t> count);

    void take(Report const& report) override;
    bool isDone() const override;

private:
    struct Row;

    void picture(Report const& report);
    void write(Row const& row);

    std::ostream& out_;
    watch::WatchedNames names_;
    ChangeCount count_;
};

} // namespace qel::stream
