// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// One line of the log.
#pragma once

#include <log4cpp/Priority.hh>

#include <optional>
#include <sstream>
#include <string>
#include <string_view>

namespace log4cpp {
class Category;
}

namespace shm {

/// One of the library's log categories, or none. The first look-up of a category takes memory, and so may fail: then
/// there is none, and no level of it is enabled.
///
/// Threads: thread-safe.
class LogCategory {
public:
    /// @param category not owned, lives until the process ends; null for none
    explicit LogCategory(log4cpp::Category* category) noexcept : category_(category) {}

    /// @param level of log4cpp
    /// @return whether the category takes lines of this level
    bool isPriorityEnabled(log4cpp::Priority::Value level) const noexcept;

    /// @return the category's name, "" for none
    std::string getName() const;

    /// @return the category, null for none
    log4cpp::Category* get() const noexcept { return category_; }

private:
    log4cpp::Category* category_;
};

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
    LogLine(LogCategory category, log4cpp::Priority::Value level, std::string_view operation) noexcept;

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

    LogCategory category_;
    log4cpp::Priority::Value level_;
    std::optional<std::ostringstream> text_;
};

/// @name The library's categories
/// Each is looked up once per process.
///
/// Threads: thread-safe.
/// @{

/// @return "qel.shm.access"
LogCategory accessLog() noexcept;
/// @return "qel.shm.access.writer"
LogCategory writerLog() noexcept;
/// @return "qel.shm.access.reader"
LogCategory readerLog() noexcept;
/// @return "qel.shm.access.states"
LogCategory statesLog() noexcept;
/// @return "qel.shm.access.format"
LogCategory formatLog() noexcept;
/// @}

} // namespace shm
