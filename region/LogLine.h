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

/// One of the library's categories, or none: looking a category up for the first time takes memory. Nothing is enabled
/// in none.
///
/// Threads: thread-safe.
class LogCategory {
public:
    /// @param category lives until the process ends; null for none
    explicit LogCategory(log4cpp::Category* category) noexcept : category_(category) {}

    bool isPriorityEnabled(log4cpp::Priority::Value level) const noexcept;

    /// "" for none.
    std::string getName() const;

    /// Null for none.
    log4cpp::Category* get() const noexcept { return category_; }

private:
    log4cpp::Category* category_;
};

/// Collects a line that starts with the name of the logging operation and ": " and hands it to the category when it
/// goes out of scope. Numbers come out in hexadecimal with 0x (std::hex, std::showbase; a zero is a bare 0) unless the
/// line says std::dec. Nothing is formatted while the category does not take the level.
///
/// Nothing is thrown by making a line, filling it and letting it go. A line reaches the category as a whole or not at
/// all: it is dropped without a word when memory ends meanwhile, when an item's own printing throws, and when an item
/// leaves the stream in a failed state. It is also dropped when not even the memory is there that appenders usually
/// need (4 KiB and eight times the line). An appender itself must not throw: log4cpp ends the process then
/// (Category::callAppenders is declared not to throw).
///
/// Threads: a line belongs to one thread; categories are thread-safe.
class LogLine {
public:
    LogLine(LogCategory category, log4cpp::Priority::Value level, std::string_view operation) noexcept;
    ~LogLine();
    LogLine(LogLine const&) = delete;
    LogLine& operator=(LogLine const&) = delete;

    template <typename Item>
    LogLine& operator<<(Item const& item) noexcept {
        add([&item](std::ostream& text) { text << item; });
        return *this;
    }

    /// For std::hex, std::dec and their like.
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

/// The library's categories. Each is looked up once per process.
LogCategory accessLog() noexcept;
LogCategory writerLog() noexcept;
LogCategory readerLog() noexcept;
LogCategory statesLog() noexcept;
LogCategory formatLog() noexcept;

} // namespace shm
