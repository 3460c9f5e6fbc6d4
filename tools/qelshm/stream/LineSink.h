// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// Changes as lines of text.
#pragma once

#include "tools/qelshm/stream/ISink.h"
#include "tools/qelshm/watch/LinePrinter.h"

#include <utility>

namespace qel::stream {

/// Writes what watch writes without a terminal.
///
/// Threads: reentrant.
class LineSink : public ISink {
public:
    explicit LineSink(watch::LinePrinter printer) : printer_(std::move(printer)) {}

    void take(Report const& report) override { printer_.update(report.snapshot, report.status); }
    bool isDone() const override { return printer_.isDone(); }

private:
    watch::LinePrinter printer_;
};

} // namespace qel::stream
