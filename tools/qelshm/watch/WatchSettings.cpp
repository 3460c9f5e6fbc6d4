// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tools/qelshm/watch/WatchSettings.h"

#include "tools/qelshm/watch/Histories.h"

#include <nlohmann/json.hpp>

#include <array>
#include <stdexcept>

namespace qel::watch {

namespace {

constexpr std::array<SortOrder, 4> orders{SortOrder::Tree, SortOrder::State, SortOrder::Name, SortOrder::Age};
constexpr std::array<char const*, historyFactors.size()> spanNames{"minutes", "half-hour", "hours"};

SortOrder orderFrom(std::string const& name) {
    for (auto const order : orders) {
        if (name == sortName(order)) {
            return order;
        }
    }
    throw std::runtime_error("\"sort\" is none of tree, state, name and age");
}

std::size_t spanFrom(std::string const& name) {
    for (std::size_t span = 0; span < spanNames.size(); ++span) {
        if (name == spanNames.at(span)) {
            return span;
        }
    }
    throw std::runtime_error("\"graph-span\" is none of minutes, half-hour and hours");
}

} // namespace

std::string settingsText(WatchSettings const& settings) {
    nlohmann::json const document{{"sort", sortName(settings.order)},
                                  {"statistics", settings.hasStatistics},
                                  {"graph-span", spanNames.at(settings.span)}};
    return document.dump(2) + '\n';
}

WatchSettings settingsFrom(std::string_view text) {
    auto const document = nlohmann::json::parse(text.begin(), text.end());
    if (!document.is_object()) {
        throw std::runtime_error("it is no JSON object");
    }
    WatchSettings settings;
    settings.order = orderFrom(document.value("sort", sortName(settings.order)));
    settings.hasStatistics = document.value("statistics", settings.hasStatistics);
    settings.span = spanFrom(document.value("graph-span", spanNames.at(settings.span)));
    return settings;
}

} // namespace qel::watch
