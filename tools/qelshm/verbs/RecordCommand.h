// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// The verb "record".
#pragma once

#include "tools/qelshm/app/ICommand.h"

#include <cstdint>
#include <optional>
#include <string>

namespace qel::tools {

/// Captures the live region's changes to a file until a signal, a time or a number of samples ends it.
///
/// Threads: thread-bound to the main thread.
class RecordCommand : public ICommand {
public:
    CLI::App& define(CLI::App& app, OptionalOptions const& optional) override;

    /// @throws NothingThereError, inspect::CaptureError
    int run(CommandContext const& context) override;

private:
    std::string file_;
    double interval_ = 1;            ///< s between two samples
    std::optional<double> duration_; ///< s
    std::optional<std::uint64_t> count_;
};

} // namespace qel::tools
