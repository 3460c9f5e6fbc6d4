// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// Changes of states in the system's log.
#pragma once

#include "tools/qelshm/stream/ISink.h"

#include <functional>
#include <string>

namespace qel::stream {

/// Writes a line for each change of a state: "unit1/inlet1:active-power 4000.0 W: No Error => High Alarm". The priority is
/// that of the new state: an alarm is an error, a warning a warning, what ends one of them a notice, all others
/// information.
///
/// Threads: thread-bound to the main thread.
class SyslogSink : public ISink {
public:
    /// Writes a message without control characters.
    /// @param priority of syslog(3)
    using Write = std::function<void(int priority, std::string const& message)>;

    /// To syslog(3), facility "daemon", as "qelshm".
    SyslogSink();
    explicit SyslogSink(Write write);

    void take(Report const& report) override;

private:
    Write write_;
};

} // namespace qel::stream
