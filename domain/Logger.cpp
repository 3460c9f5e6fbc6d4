// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "domain/Logger.h"

#include <log4cpp/Category.hh>

Logger& Logger::getInstance() {
    static Logger instance;
    return instance;
}

// A member so that a device's façade can keep state of its own.
log4cpp::Category& Logger::getCategory(std::string const& name) {
    return log4cpp::Category::getInstance(name);
}
