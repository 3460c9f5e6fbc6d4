// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// Log lines as a plain build writes them: the category is looked up by its name for every line.
#pragma once

#include "domain/Logger.h"

#include <log4cpp/Category.hh>
#include <log4cpp/CategoryStream.hh>
#include <log4cpp/Priority.hh>

#include <ios>

namespace bench::literal {

constexpr char writerCategory[] = "qel.shm.access.writer";
constexpr char readerCategory[] = "qel.shm.access.reader";

/// One line; logged when it goes out of scope.
class Line {
public:
    Line(char const* category, log4cpp::Priority::Value level, char const* operation)
        : stream_(Logger::getInstance().getCategory(category).getStream(level)) {
        stream_ << operation << ": " << std::hex << std::showbase;
    }

    template <typename Item>
    Line& operator<<(Item const& item) {
        stream_ << item;
        return *this;
    }

private:
    log4cpp::CategoryStream stream_;
};

} // namespace bench::literal
