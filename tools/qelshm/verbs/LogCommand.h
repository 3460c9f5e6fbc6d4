// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// The verb "log".
#pragma once

#include "tools/qelshm/verbs/CaptureArguments.h"

namespace qel::tools {

/// Lists what happened during a capture.
///
/// Threads: thread-bound to the main thread.
class LogCommand : public ICommand {
public:
    CLI::App& define(CLI::App& app, OptionalOptions const& optional) override;

    /// @throws inspect::CaptureError, CaptureTimeError
    int run(CommandContext const& context) override;

private:
    CaptureArguments arguments_;
};

} // namespace qel::tools
