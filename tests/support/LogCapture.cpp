// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tests/support/LogCapture.h"

#include <log4cpp/AppenderSkeleton.hh>
#include <log4cpp/Category.hh>

#include <algorithm>
#include <condition_variable>
#include <exception>
#include <mutex>
#include <utility>

namespace qel::test {

std::ostream& operator<<(std::ostream& out, LogEntry const& entry) {
    return out << '[' << entry.category << ", " << entry.level << "] " << entry.text;
}

class LogCapture::Appender : public log4cpp::AppenderSkeleton {
public:
    explicit Appender(std::string const& name) : AppenderSkeleton(name) {}

    void close() override {}
    bool requiresLayout() const override { return false; }
    void setLayout(log4cpp::Layout* layout) override { delete layout; }

    mutable std::mutex mutex;
    mutable std::condition_variable grown;
    std::vector<LogEntry> entries;

protected:
    // Throws nothing, as log4cpp demands: what a test leaves no memory for is missing.
    void _append(log4cpp::LoggingEvent const& event) override {
        try {
            std::lock_guard<std::mutex> const lock(mutex);
            entries.push_back({event.categoryName, event.priority, event.message});
        } catch (std::exception const&) {
            return;
        }
        grown.notify_all();
    }
};

LogCapture::LogCapture(std::string const& category, log4cpp::Priority::Value threshold)
    : category_(category),
      appender_(new Appender("test capture")),
      formerThreshold_(log4cpp::Category::getInstance(category).getPriority()) {
    auto& target = log4cpp::Category::getInstance(category_);
    target.addAppender(appender_);
    target.setPriority(threshold);
}

LogCapture::~LogCapture() {
    auto& target = log4cpp::Category::getInstance(category_);
    target.setPriority(formerThreshold_);
    target.removeAppender(appender_);
}

std::vector<LogEntry> LogCapture::entries() const {
    std::lock_guard<std::mutex> const lock(appender_->mutex);
    return appender_->entries;
}

std::vector<LogEntry> LogCapture::take() {
    std::lock_guard<std::mutex> const lock(appender_->mutex);
    return std::exchange(appender_->entries, {});
}

std::size_t LogCapture::count(LogEntry const& entry) const {
    std::lock_guard<std::mutex> const lock(appender_->mutex);
    return static_cast<std::size_t>(std::count(appender_->entries.begin(), appender_->entries.end(), entry));
}

bool LogCapture::contains(LogEntry const& entry) const {
    return count(entry) != 0;
}

bool LogCapture::waitFor(LogEntry const& entry, std::chrono::milliseconds timeout) const {
    std::unique_lock<std::mutex> lock(appender_->mutex);
    return appender_->grown.wait_for(lock, timeout, [&] {
        return std::find(appender_->entries.begin(), appender_->entries.end(), entry) !=
               appender_->entries.end();
    });
}

} // namespace qel::test
