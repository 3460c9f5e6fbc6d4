// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tools/common/Logging.h"

#include "tools/common/Choices.h"

#include "domain/Logger.h"

#include <CLI/App.hpp>
#include <CLI/Config.hpp>
#include <CLI/Formatter.hpp>
#include <CLI/Validators.hpp>
#include <log4cpp/Category.hh>
#include <log4cpp/OstreamAppender.hh>
#include <log4cpp/PatternLayout.hh>
#include <log4cpp/Priority.hh>

#include <algorithm>
#include <array>
#include <iostream>
#include <memory>
#include <string_view>
#include <vector>

namespace qel::tools {

namespace {

struct Level {
    std::string_view name;
    log4cpp::Priority::Value priority;
};

constexpr std::array<Level, 5> levels{{{"crit", log4cpp::Priority::CRIT},
                                       {"error", log4cpp::Priority::ERROR},
                                       {"warn", log4cpp::Priority::WARN},
                                       {"info", log4cpp::Priority::INFO},
                                       {"debug", log4cpp::Priority::DEBUG}}};

} // namespace

void addLogOption(CLI::App& app, std::string& level) {
    std::vector<std::string> names;
    names.reserve(levels.size());
    for (auto const& known : levels) {
        names.emplace_back(known.name);
    }
    app.add_option("--log-level", level, "Write the library's log to standard error, from this level up")
        ->transform(oneOf(names, LetterCase::Ignored))
        ->type_name("crit|error|warn|info|debug");
}

void logToStandardError(std::string const& level) {
    auto const* const known = std::find_if(levels.begin(), levels.end(),
                                           [&](Level const& candidate) { return candidate.name == level; });
    if (known == levels.end()) {
        return;
    }
    auto layout = std::make_unique<log4cpp::PatternLayout>();
    layout->setConversionPattern("%d{%H:%M:%S.%l} %-5p %c %m%n");
    auto appender = std::make_unique<log4cpp::OstreamAppender>("standard error", &std::cerr);
    appender->setLayout(layout.release());
    auto& category = Logger::getInstance().getCategory("qel");
    category.setAppender(appender.release());
    category.setPriority(known->priority);
}

} // namespace qel::tools
