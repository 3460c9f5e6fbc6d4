// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// Changes as JSON documents, one a line.
#pragma once

#include "tools/qelshm/stream/ChangeCount.h"
#include "tools/qelshm/stream/ISink.h"

#include <cstdint>
#include <iosfwd>
#include <optional>

namespace qel::tools {

/// Writes a document "picture" with all selected values for each new picture, a document "change" for each change, and a
/// document "condition" when the region is not active any more.
///
/// Threads: reentrant.
class WatchJson : public stream::ISink {
public:
    /// @param out   must outlive the sink
    /// @param count number of changes to write; none for no limit
    WatchJson(std::ostream& out, std::optional<std::uint64_t> count) : out_(out), count_(count) {}

    void take(stream::Report const& report) override;
    bool isDone() const override;

private:
    std::ostream& out_;
    stream::ChangeCount count_;
};

} // namespace qel::tools
