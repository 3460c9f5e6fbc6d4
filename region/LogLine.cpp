#include "region/LogLine.h"

#include "domain/Logger.h"

#include <log4cpp/Category.hh>

#include <locale>

namespace shm {

LogLine::LogLine(log4cpp::Category& category, log4cpp::Priority::Value level, std::string_view operation)
    : category_(category),
      level_(level) {
    if (category_.isPriorityEnabled(level_)) {
        text_.emplace();
        text_->imbue(std::locale::classic()); // no digit grouping, whatever the process's locale
        *text_ << std::hex << std::showbase << operation << ": ";
    }
}

LogLine::~LogLine() {
    if (text_) {
        category_.log(level_, text_->str());
    }
}

log4cpp::Category& accessLog() {
    static log4cpp::Category& category = Logger::getInstance().getCategory("qel.shm.access");
    return category;
}

log4cpp::Category& writerLog() {
    static log4cpp::Category& category = Logger::getInstance().getCategory("qel.shm.access.writer");
    return category;
}

log4cpp::Category& readerLog() {
    static log4cpp::Category& category = Logger::getInstance().getCategory("qel.shm.access.reader");
    return category;
}

log4cpp::Category& statesLog() {
    static log4cpp::Category& category = Logger::getInstance().getCategory("qel.shm.access.states");
    return category;
}

log4cpp::Category& formatLog() {
    static log4cpp::Category& category = Logger::getInstance().getCategory("qel.shm.access.format");
    return category;
}

} // namespace shm
