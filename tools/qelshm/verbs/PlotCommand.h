// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// The verb "plot".
#pragma once

#include "tools/qelshm/plot/PlotData.h"
#include "tools/qelshm/verbs/CaptureArguments.h"

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

namespace qel::tools {

/// Draws values of a capture over time.
///
/// Threads: thread-bound to the main thread.
class PlotCommand : public ICommand {
public:
    CLI::App& define(CLI::App& app, OptionalOptions const& optional) override;

    /// @throws inspect::CaptureError, CaptureTimeError, inspect::NotFoundError, inspect::ImageFileError,
    ///         plot::GnuplotError
    int run(CommandContext const& context) override;

private:
    plot::PlotData data(inspect::CaptureTimeline const& timeline, std::size_t columns) const;
    void printOnTerminal(CommandContext const& context, inspect::CaptureTimeline const& timeline) const;

    CaptureArguments arguments_;
    std::string output_; ///< "" for the terminal
    std::vector<std::string> limits_;
    std::optional<std::size_t> width_;  ///< columns
    std::optional<std::size_t> height_; ///< lines
    bool isAscii_ = false;
};

} // namespace qel::tools
