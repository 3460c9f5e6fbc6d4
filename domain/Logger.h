// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// Access to the process's log categories.
#pragma once

#include <string>

namespace log4cpp {
class Category;
}

/// Gives access to the log4cpp categories of the process. The host application sets their appenders and thresholds.
///
/// Threads: thread-safe.
class Logger {
public:
    /// @return the logger of the process
    static Logger& getInstance();

    /// @param name of the category, such as "qel.shm.access"
    /// @return the category; it is created by the first request and lives until the process ends
    log4cpp::Category& getCategory(std::string const& name);

    Logger(Logger const&) = delete;
    Logger& operator=(Logger const&) = delete;

private:
    Logger() = default;
    ~Logger() = default;
};
