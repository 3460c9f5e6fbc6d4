// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// One line of the log.
#pragma once

#include <log4cpp/Priority.hh>

#include <atomic>
#include <optional>
#include <sstream>
#include <string>
#include <string_view>

namespace log4cpp {
class Category;
}

namespace shm {

/// One of the library's categories. It is looked up once per process, with the first line for it, since that takes
/// memory.
///
/// Threads: thread-safe.
class LogCategory {
public:
    /// @param name must outlive the object
    constexpr explicit LogCategory(char const* name) noexcept : name_(name) {}

    /// @return null if there is no memory to look it up; the next call tries again
    log4cpp::Category* get() const noexcept;

    /// @param level of log4cpp
    /// @return whether the category takes lines of this level
    bool isPriorityEnabled(log4cpp::Priority::Value level) const noexcept;

private:
    char const* name_;
    mutable std::atomic<log4cpp::Category*> known_{nullptr};
};

inline LogCategory const accessLog{"qel.shm.access"};
inline LogCategory const writerLog{"qel.shm.access.writer"};
inline LogCategory const readerLog{"qel.shm.access.reader"};
inline LogCategory const statesLog{"qel.shm.access.states"};
inline LogCategory const formatLog{"qel.shm.access.format"};

/// One line of the log. It starts with the name of the logging operation and ": ", and goes to the category when
/// it is destroyed. Numbers are hexadecimal with 0x (std::hex, std::showbase; zero is a bare 0) unless the line
/// uses std::dec. Nothing is formatted while the category does not take the level.
///
/// No operation throws. A line reaches the category as a whole or not at all. It is dropped silently
/// - when memory runs out while it is built,
/// - when printing an item throws or leaves the stream in a failed state,
/// - when less memory is free than appenders usually need (4 KiB plus eight times the line's length).
///
/// An appender must not throw: log4cpp would end the process (Category::callAppenders is declared not to throw).
///
/// Threads: thread-bound to the thread that made the line.
class LogLine {
public:
    /// Starts the line.
    /// @param category  where it goes
    /// @param level     of log4cpp
    /// @param operation name of the logging operation
    LogLine(LogCategory const& category, log4cpp::Priority::Value level, std::string_view operation) noexcept;

    /// Hands the line to the category.
    ~LogLine();
    LogLine(LogLine const&) = delete;
    LogLine& operator=(LogLine const&) = delete;

    /// Appends an item by its own stream operator.
    /// @param item to print
    /// @return this line
    template <typename Item>
    LogLine& operator<<(Item const& item) noexcept {
        add([&item](std::ostream& text) { text << item; });
        return *this;
    }

    /// Applies std::hex, std::dec or the like to the items that follow.
    /// @param manipulator of std::ios_base
    /// @return this line
    LogLine& operator<<(std::ios_base& (*manipulator)(std::ios_base&)) noexcept {
        add([manipulator](std::ostream& text) { text << manipulator; });
        return *this;
    }

private:
    template <typename Print>
    void add(Print const& print) noexcept {
        if (text_) {
            try {
                print(*text_);
            } catch (...) {
                text_.reset(); // dropped
            }
        }
    }

    log4cpp::Category* category_;
    log4cpp::Priority::Value level_;
    std::optional<std::ostringstream> text_;
};

} // namespace shm
