// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tools/replay/csv/Limits.h"

#include "tools/common/Numbers.h"
#include "tools/replay/csv/Column.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <charconv>
#include <cstring>
#include <fstream>
#include <initializer_list>

namespace qel::tools {

namespace {

constexpr std::string_view limitGrammar =
    "COLUMN:SETTING=NUMBER[,...] with high-alarm, high-warning, low-warning, low-alarm, hysteresis";
constexpr std::string_view blanks = " \t\r";

std::string_view trimmed(std::string_view text) {
    auto const begin = text.find_first_not_of(blanks);
    if (begin == std::string_view::npos) {
        return {};
    }
    return text.substr(begin, text.find_last_not_of(blanks) - begin + 1);
}

std::string numberText(double number) {
    std::array<char, 32> buffer{};
    auto const written = std::to_chars(buffer.data(), buffer.data() + buffer.size(), number);
    return {buffer.data(), written.ptr};
}

double readNumber(std::string_view text, InputPlace const& place) {
    auto const number = parseNumber(text);
    if (!number) {
        throw InputError(place, inQuotes(text) + " is not a number", "a decimal number");
    }
    return *number;
}

struct Threshold {
    std::string_view name;
    std::optional<double> Limit::*member;
};

constexpr std::array<Threshold, 4> thresholds{{{"high-alarm", &Limit::highAlarm},
                                               {"high-warning", &Limit::highWarning},
                                               {"low-warning", &Limit::lowWarning},
                                               {"low-alarm", &Limit::lowAlarm}}};
constexpr std::string_view hysteresisName = "hysteresis";

/// The settings of one limit, read one after the other.
class SettingsReader {
public:
    explicit SettingsReader(InputPlace const& place) : place_(place) {}

    void read(std::string_view text) {
        auto const equals = text.find('=');
        if (equals == std::string_view::npos) {
            throw InputError(place_, inQuotes(text) + " is not a setting", "SETTING=NUMBER");
        }
        auto const name = trimmed(text.substr(0, equals));
        auto const value = trimmed(text.substr(equals + 1));
        if (name == hysteresisName) {
            refuseSecond(hasHysteresis_, name);
            hasHysteresis_ = true;
            limit_.hysteresis = readNumber(value, place_);
            return;
        }
        auto const* const threshold = std::find_if(
            thresholds.begin(), thresholds.end(), [&](Threshold const& known) { return known.name == name; });
        if (threshold == thresholds.end()) {
            throw InputError(place_, "unknown setting " + inQuotes(name),
                             "high-alarm, high-warning, low-warning, low-alarm or hysteresis");
        }
        refuseSecond((limit_.*threshold->member).has_value(), name);
        limit_.*threshold->member = readNumber(value, place_);
    }

    Limit finish() const {
        bool const hasThreshold =
            std::any_of(thresholds.begin(), thresholds.end(),
                        [&](Threshold const& known) { return (limit_.*known.member).has_value(); });
        if (!hasThreshold) {
            throw InputError(place_, "no threshold", limitGrammar);
        }
        if (limit_.hysteresis < 0.0) {
            throw InputError(place_, "hysteresis=" + numberText(limit_.hysteresis) + " is negative",
                             "a hysteresis of 0 or more");
        }
        checkOrder("high-warning", limit_.highWarning, "high-alarm", limit_.highAlarm);
        checkOrder("low-alarm", limit_.lowAlarm, "low-warning", limit_.lowWarning);
        checkBand();
        return limit_;
    }

private:
    void refuseSecond(bool isThere, std::string_view name) const {
        if (isThere) {
            throw InputError(place_, inQuotes(name) + " is set twice", "each setting once");
        }
    }

    void checkOrder(std::string_view lowerName, std::optional<double> const& lower,
                    std::string_view upperName, std::optional<double> const& upper) const {
        if (lower && upper && *lower > *upper) {
            throw InputError(place_,
                             std::string(lowerName) + '=' + numberText(*lower) + " is above " +
                                 std::string(upperName) + '=' + numberText(*upper),
                             std::string(lowerName) + " at or below " + std::string(upperName));
        }
    }

    void checkBand() const {
        for (auto const& low : {limit_.lowWarning, limit_.lowAlarm}) {
            for (auto const& high : {limit_.highWarning, limit_.highAlarm}) {
                if (low && high && *high - *low <= limit_.hysteresis) {
                    throw InputError(place_,
                                     "the low threshold " + numberText(*low) + " and the high threshold " +
                                         numberText(*high) + " are too close",
                                     "low thresholds below high ones by more than hysteresis=" +
                                         numberText(limit_.hysteresis));
                }
            }
        }
    }

    InputPlace place_;
    Limit limit_;
    bool hasHysteresis_ = false;
};

bool reachesHigh(std::optional<double> const& threshold, double hysteresis, bool holds, double value) {
    return threshold && (holds ? value >= *threshold - hysteresis : value >= *threshold);
}

bool reachesLow(std::optional<double> const& threshold, double hysteresis, bool holds, double value) {
    return threshold && (holds ? value <= *threshold + hysteresis : value <= *threshold);
}

} // namespace

eStatus_Bits LimitState::update(double value) {
    highAlarm_ = reachesHigh(limit_.highAlarm, limit_.hysteresis, highAlarm_, value);
    highWarning_ = reachesHigh(limit_.highWarning, limit_.hysteresis, highWarning_, value);
    lowWarning_ = reachesLow(limit_.lowWarning, limit_.hysteresis, lowWarning_, value);
    lowAlarm_ = reachesLow(limit_.lowAlarm, limit_.hysteresis, lowAlarm_, value);
    if (highAlarm_) {
        return eStatus_HighAlarm;
    }
    if (lowAlarm_) {
        return eStatus_LowAlarm;
    }
    if (highWarning_) {
        return eStatus_HighWarning;
    }
    return lowWarning_ ? eStatus_LowWarning : eStatus_NoError;
}

void LimitSet::add(std::string_view text, InputPlace const& place) {
    auto const colon = text.find(':');
    if (colon == std::string_view::npos) {
        throw InputError(place, inQuotes(text) + " is not a limit", limitGrammar);
    }
    std::string const column(trimmed(text.substr(0, colon)));
    if (!parseColumn(column)) {
        throw InputError(place, "unknown column " + inQuotes(column), columnGrammar);
    }
    InputPlace const columnPlace{place.file, place.line, column};
    if (find(column) != nullptr) {
        throw InputError(columnPlace, "the column already has a limit", "one limit per column");
    }
    SettingsReader settings(columnPlace);
    for (auto rest = text.substr(colon + 1);;) {
        auto const comma = rest.find(',');
        settings.read(rest.substr(0, comma));
        if (comma == std::string_view::npos) {
            break;
        }
        rest.remove_prefix(comma + 1);
    }
    entries_.push_back({column, settings.finish(), std::string(place.file), place.line});
}

void LimitSet::addFile(std::string const& path) {
    constexpr std::size_t longestLine = 4096;
    std::ifstream file(path);
    std::array<char, longestLine + 1> buffer{};
    std::size_t line = 1;
    for (; file.getline(buffer.data(), buffer.size()); ++line) {
        auto const size = static_cast<std::size_t>(file.gcount()) - (file.eof() ? 0 : 1);
        std::string_view const text(buffer.data(), size);
        auto const limit = trimmed(text.substr(0, text.find('#')));
        if (!limit.empty()) {
            add(limit, {path, line});
        }
    }
    if (file.gcount() == longestLine) {
        throw InputError({path, line}, "the line has more than " + std::to_string(longestLine) + " bytes",
                         "one limit per line");
    }
    // The loop also ends when reading fails.
    if (!file.eof()) {
        throw InputError({path}, std::string("cannot be read (") + std::strerror(errno) + ')',
                         "a readable file of limits");
    }
}

void LimitSet::checkColumns(std::vector<Recording> const& recordings) const {
    for (auto const& entry : entries_) {
        bool const isThere =
            std::any_of(recordings.begin(), recordings.end(), [&](Recording const& recording) {
                auto const& columns = recording.columns();
                return std::any_of(columns.begin(), columns.end(),
                                   [&](Column const& column) { return column.name == entry.column; });
            });
        if (!isThere) {
            throw InputError({entry.file, entry.line, entry.column}, "no recording has this column",
                             "a column of the FILEs");
        }
    }
}

Limit const* LimitSet::find(std::string_view column) const {
    auto const found = std::find_if(entries_.begin(), entries_.end(),
                                    [&](Entry const& entry) { return entry.column == column; });
    return found == entries_.end() ? nullptr : &found->limit;
}

} // namespace qel::tools
