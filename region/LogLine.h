/// @file
/// One line of the log.
#pragma once

#include <log4cpp/Priority.hh>

#include <optional>
#include <sstream>
#include <string_view>

namespace log4cpp {
class Category;
}

namespace shm {

/// Collects a line that starts with the name of the logging operation and ": " and hands it to the category when it
/// goes out of scope. Numbers come out in hexadecimal with 0x (std::hex, std::showbase; a zero is a bare 0) unless the
/// line says std::dec. Nothing is formatted while the category does not take the level.
///
/// Threads: a line belongs to one thread; categories are thread-safe.
class LogLine {
public:
    LogLine(log4cpp::Category& category, log4cpp::Priority::Value level, std::string_view operation);
    ~LogLine();
    LogLine(LogLine const&) = delete;
    LogLine& operator=(LogLine const&) = delete;

    template <typename Item>
    LogLine& operator<<(Item const& item) {
        if (text_) {
            *text_ << item;
        }
        return *this;
    }

    /// For std::hex, std::dec and their like.
    LogLine& operator<<(std::ios_base& (*manipulator)(std::ios_base&)) {
        if (text_) {
            *text_ << manipulator;
        }
        return *this;
    }

private:
    log4cpp::Category& category_;
    log4cpp::Priority::Value level_;
    std::optional<std::ostringstream> text_;
};

/// The library's categories. Each is looked up once per process.
log4cpp::Category& accessLog();
log4cpp::Category& writerLog();
log4cpp::Category& readerLog();
log4cpp::Category& statesLog();
log4cpp::Category& formatLog();

} // namespace shm
