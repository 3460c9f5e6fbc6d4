// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "region/LogLine.h"

#include "domain/Logger.h"

#include <log4cpp/Category.hh>
#include <log4cpp/LoggingEvent.hh>
#include <log4cpp/NDC.hh>

#include <atomic>
#include <cstddef>
#include <locale>
#include <new>

namespace shm {

namespace {

using KnownCategory = std::atomic<log4cpp::Category*>;

LogCategory lookUp(KnownCategory& known, char const* name) noexcept {
    auto* category = known.load(std::memory_order_acquire);
    if (category == nullptr) {
        try {
            category = &Logger::getInstance().getCategory(name);
            known.store(category, std::memory_order_release);
        } catch (...) {
            category = nullptr; // the next line tries again
        }
    }
    return LogCategory(category);
}

/// Throws std::bad_alloc unless there is as much memory as appenders usually need for a line of this length.
/// log4cpp ends the process when an appender throws, so a lack of memory should show here first.
void requireMemoryForAppenders(std::size_t length) {
    constexpr std::size_t atLeast = 4096;
    constexpr std::size_t perCharacter = 8;
    // Calls of the functions: a compiler may remove a pair of new and delete expressions.
    ::operator delete(::operator new(atLeast + perCharacter * length));
}

} // namespace

bool LogCategory::isPriorityEnabled(log4cpp::Priority::Value level) const noexcept {
    return category_ != nullptr && category_->isPriorityEnabled(level);
}

std::string LogCategory::getName() const {
    return category_ != nullptr ? category_->getName() : std::string();
}

LogLine::LogLine(LogCategory category, log4cpp::Priority::Value level, std::string_view operation) noexcept
    : category_(category),
      level_(level) {
    if (!category_.isPriorityEnabled(level_)) {
        return;
    }
    try {
        text_.emplace();
        text_->imbue(std::locale::classic()); // no digit grouping, whatever the process's locale
        *text_ << std::hex << std::showbase << operation << ": ";
    } catch (...) {
        text_.reset();
    }
}

LogLine::~LogLine() {
    // A failed stream has swallowed an exception of a formatted output function, so the text has a gap.
    if (!text_ || text_->fail()) {
        return;
    }
    try {
        // Not by Category::log(): it is declared not to throw and would end the process without memory.
        log4cpp::LoggingEvent const event(category_.get()->getName(), text_->str(), log4cpp::NDC::get(),
                                          level_);
        requireMemoryForAppenders(event.message.size());
        category_.get()->callAppenders(event);
    } catch (...) {
        return; // dropped
    }
}

LogCategory accessLog() noexcept {
    static KnownCategory known{nullptr};
    return lookUp(known, "qel.shm.access");
}

LogCategory writerLog() noexcept {
    static KnownCategory known{nullptr};
    return lookUp(known, "qel.shm.access.writer");
}

LogCategory readerLog() noexcept {
    static KnownCategory known{nullptr};
    return lookUp(known, "qel.shm.access.reader");
}

LogCategory statesLog() noexcept {
    static KnownCategory known{nullptr};
    return lookUp(known, "qel.shm.access.states");
}

LogCategory formatLog() noexcept {
    static KnownCategory known{nullptr};
    return lookUp(known, "qel.shm.access.format");
}

} // namespace shm
