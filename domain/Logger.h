// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// The system's logger façade.
#pragma once

#include <string>

namespace log4cpp {
class Category;
}

/// Gives access to the log categories of the process. Appenders and thresholds are the host application's to set.
/// Threads: any thread.
class Logger {
public:
    static Logger& getInstance();

    /// The category of that name, created at the first request; it lives until the process ends.
    log4cpp::Category& getCategory(std::string const& name);

    Logger(Logger const&) = delete;
    Logger& operator=(Logger const&) = delete;

private:
    Logger() = default;
    ~Logger() = default;
};
