// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// The verb "export".
#pragma once

#include "tools/qelshm/verbs/CaptureArguments.h"
#include "tools/qelshm/verbs/CsvExport.h"

#include <optional>
#include <string>

namespace qel::tools {

/// Writes values of a capture as CSV.
///
/// Threads: thread-bound to the main thread.
class ExportCommand : public ICommand {
public:
    CLI::App& define(CLI::App& app, OptionalOptions const& optional) override;

    /// @throws inspect::CaptureError, CaptureTimeError, inspect::NotFoundError, inspect::ImageFileError
    int run(CommandContext const& context) override;

private:
    CaptureArguments arguments_;
    bool isCsv_ = false;
    std::string layout_ = "wide";
    std::optional<double> interval_; ///< s
    std::string output_;             ///< "" for standard output
};

} // namespace qel::tools
