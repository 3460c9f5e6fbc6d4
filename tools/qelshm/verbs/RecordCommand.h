// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// The verb "record".
#pragma once

#include "tools/qelshm/app/ICommand.h"
#include "tools/qelshm/app/RegionInput.h"

#include "inspect/capture/ICaptureSink.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace qel::tools {

/// Captures the live region's changes until a signal, a time or a number of samples ends it: to a file, to files of
/// bounded size and number, or to a file for each alarm. It goes on while there is no region.
///
/// Threads: thread-bound to the main thread.
class RecordCommand : public ICommand {
public:
    CLI::App& define(CLI::App& app, OptionalOptions const& optional) override;

    /// @throws NothingThereError, inspect::CaptureError
    int run(CommandContext const& context) override;

private:
    std::unique_ptr<inspect::ICaptureSink> sink(std::uint64_t now) const;
    /// Tells names that nothing has yet.
    void tellUnmatched(RegionInput const& input, CommandContext const& context) const;
    void print(CommandContext const& context, RegionInput const& input,
               inspect::ICaptureSink const& sink) const;

    std::string file_;
    std::vector<std::string> names_; ///< of values whose alarms are wanted; none for all
    double interval_ = 1;            ///< s between two samples
    std::optional<double> duration_; ///< s
    std::optional<std::uint64_t> count_;
    std::string maxSize_; ///< see parseBytes(); "" for none
    std::optional<std::size_t> maxFiles_;
    std::string onAlarm_; ///< see parseMargins(); "" to record everything
};

} // namespace qel::tools
