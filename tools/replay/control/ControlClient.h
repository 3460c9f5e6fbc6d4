// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// Sends commands to a running replay.
#pragma once

#include "reader/GLibPtr.h"

#include <gio/gio.h>

#include <string>

namespace qel::tools {

/// A connection to the control socket of a replay. Waits a few seconds at most for an answer.
///
/// Threads: reentrant.
class ControlClient {
public:
    /// @throws std::runtime_error if nobody takes commands there
    explicit ControlClient(std::string path);

    /// Sends a command and waits for its answer, both one line without its end.
    /// @throws std::runtime_error if there is no answer
    std::string ask(std::string const& command);

private:
    std::string path_;
    shm::GObjectPtr<GSocket> socket_;
};

} // namespace qel::tools
