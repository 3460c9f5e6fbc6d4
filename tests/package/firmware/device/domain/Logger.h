// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include <string>

namespace log4cpp {
class Category;
}

struct Logger {
    static Logger& getInstance();
    log4cpp::Category& getCategory(std::string const& name);
    std::string prefix = "device.";
};
