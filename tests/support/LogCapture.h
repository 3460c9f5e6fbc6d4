// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// Captures what the library logs.
#pragma once

#include <log4cpp/Priority.hh>

#include <chrono>
#include <memory>
#include <ostream>
#include <string>
#include <vector>

namespace qel::test {

struct LogEntry {
    std::string category;
    int level;
    std::string text;

    bool operator==(LogEntry const& other) const {
        return category == other.category && level == other.level && text == other.text;
    }
};

std::ostream& operator<<(std::ostream& out, LogEntry const& entry);

/// While the object exists, an appender is attached to a category and all below it, and its threshold is set.
///
/// Threads: thread-safe.
class LogCapture {
public:
    explicit LogCapture(std::string const& category = "qel",
                        log4cpp::Priority::Value threshold = log4cpp::Priority::DEBUG);
    ~LogCapture();
    LogCapture(LogCapture const&) = delete;
    LogCapture& operator=(LogCapture const&) = delete;

    /// Everything so far, oldest first.
    std::vector<LogEntry> entries() const;

    /// Everything so far; clears the capture.
    std::vector<LogEntry> take();

    bool contains(LogEntry const& entry) const;
    std::size_t count(LogEntry const& entry) const;

    /// Waits for a line.
    /// @return false on timeout
    bool waitFor(LogEntry const& entry, std::chrono::milliseconds timeout = std::chrono::seconds(20)) const;

private:
    class Appender;
    std::string category_;
    Appender* appender_; // owned by log4cpp
    int formerThreshold_;
};

} // namespace qel::test
