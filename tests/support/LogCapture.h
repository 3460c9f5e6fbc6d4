// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// What the library logged while a test ran.
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

/// Attaches an appender to a category (and so to all below it) for as long as the object lives, and sets its
/// threshold. Threads: thread-safe.
class LogCapture {
public:
    explicit LogCapture(std::string const& category = "qel",
                        log4cpp::Priority::Value threshold = log4cpp::Priority::DEBUG);
    ~LogCapture();
    LogCapture(LogCapture const&) = delete;
    LogCapture& operator=(LogCapture const&) = delete;

    /// Everything so far, oldest first.
    std::vector<LogEntry> entries() const;

    /// Everything so far; the capture starts anew.
    std::vector<LogEntry> take();

    bool contains(LogEntry const& entry) const;
    std::size_t count(LogEntry const& entry) const;

    /// Waits until a line stands in the log; false when it did not come in time.
    bool waitFor(LogEntry const& entry, std::chrono::milliseconds timeout = std::chrono::seconds(20)) const;

private:
    class Appender;
    std::string category_;
    Appender* appender_; // owned by log4cpp
    int formerThreshold_;
};

} // namespace qel::test
