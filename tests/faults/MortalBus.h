// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// A message bus that a test can let die.
#pragma once

#include "tests/reader/BusFailures.h"
#include "tests/support/ChildProcess.h"

#include <optional>
#include <string>

namespace qel::test {

/// A bus daemon of the test's own, which is the system bus of the process while the object lives. Comes before
/// anything in the test uses the bus.
///
/// Threads: thread-bound to the thread that made it.
class MortalBus {
public:
    /// @param config of the daemon, by default that of the surroundings
    explicit MortalBus(std::string config = "/sys/bus.conf");

    /// Takes the daemon away from one moment to the next; its socket stays behind, and nobody listens.
    void kill();

    /// Starts a daemon again, at the same address. Throws std::runtime_error when it does not get ready.
    void start();

private:
    SystemBusAddress const address_;
    std::string config_;
    std::optional<ChildProcess> daemon_;
};

/// Keeps the process alive when its present connection to the bus ends; GLib ends it otherwise, by SIGTERM. Somebody,
/// such as a reader, holds that connection already.
void surviveBusLoss();

} // namespace qel::test
