// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "region/LogLine.h"

#include "domain/Logger.h"

#include <log4cpp/Category.hh>
#include <log4cpp/LoggingEvent.hh>
#include <log4cpp/NDC.hh>

#include <cstddef>
#include <locale>
#include <new>

namespace shm {

namespace {

/// Throws std::bad_alloc unless the memory that appenders usually need for a line of this length is available. log4cpp
/// ends the process when an appender throws, so a lack of memory has to show here.
void requireMemoryForAppenders(std::size_t length) {
    constexpr std::size_t atLeast = 4096;
    constexpr std::size_t perCharacter = 8;
    // Calls of the functions: a compiler may remove a pair of new and delete expressions.
    ::operator delete(::operator new(atLeast + perCharacter * length));
}

} // namespace

log4cpp::Category* LogCategory::get() const noexcept {
    auto* category = known_.load(std::memory_order_acquire);
    if (category == nullptr) {
        try {
            category = &Logger::getInstance().getCategory(name_);
            known_.store(category, std::memory_order_release);
        } catch (...) {
            return nullptr;
        }
    }
    return category;
}

bool LogCategory::isPriorityEnabled(log4cpp::Priority::Value level) const noexcept {
    auto const* const category = get();
    return category != nullptr && category->isPriorityEnabled(level);
}

LogLine::LogLine(LogCategory const& category, log4cpp::Priority::Value level,
                 std::string_view operation) noexcept
    : category_(category.get()),
      level_(level) {
    if (category_ == nullptr || !category_->isPriorityEnabled(level_)) {
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
        log4cpp::LoggingEvent const event(category_->getName(), text_->str(), log4cpp::NDC::get(), level_);
        requireMemoryForAppenders(event.message.size());
        category_->callAppenders(event);
    } catch (...) {
        return; // dropped
    }
}

} // namespace shm
