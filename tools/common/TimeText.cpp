// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tools/common/TimeText.h"

#include <algorithm>
#include <array>
#include <cinttypes>
#include <cstddef>
#include <cstdio>

namespace qel::tools {

namespace {

constexpr std::uint64_t msPerSecond = 1000;
constexpr std::uint64_t secondsPerDay = 86400;
constexpr unsigned firstYear = 1970;

bool isLeap(unsigned year) {
    return (year % 4 == 0 && year % 100 != 0) || year % 400 == 0;
}

unsigned daysOfMonth(unsigned year, unsigned month) {
    constexpr std::array<unsigned, 12> days{31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
    return month == 2 && isLeap(year) ? 29 : days.at(month - 1);
}

bool isDigit(char character) {
    return character >= '0' && character <= '9';
}

unsigned number(std::string_view digits) {
    unsigned result = 0;
    for (char const digit : digits) {
        result = result * 10 + static_cast<unsigned>(digit - '0');
    }
    return result;
}

// A pattern holds 'd' for a digit; every other character stands for itself.
bool matches(std::string_view text, std::string_view pattern) {
    return std::equal(text.begin(), text.end(), pattern.begin(), pattern.end(),
                      [](char character, char expected) {
                          return expected == 'd' ? isDigit(character) : character == expected;
                      });
}

// The calendar repeats every 400 years. Years are counted from March here, so that a leap day ends its year.
constexpr std::uint64_t daysPerEra = 146097;
constexpr std::uint64_t yearsPerEra = 400;
constexpr std::uint64_t daysPerCentury = 36524;
constexpr std::uint64_t daysPerFourYears = 1461;
constexpr std::uint64_t daysPerYear = 365;
constexpr std::uint64_t firstDay = 719468; // 1970-01-01, counted from 0000-03-01
constexpr unsigned monthsBeforeMarch = 2;
constexpr unsigned monthsPerYear = 12;

/// Days of a year that begins in March before a month, which counts from 0 for March.
constexpr std::uint64_t daysBefore(std::uint64_t month) {
    constexpr std::uint64_t daysPerFiveMonths = 153; // 31, 30, 31, 30, 31, over and over
    return (daysPerFiveMonths * month + 2) / 5;
}

std::uint64_t daysSince1970(unsigned year, unsigned month, unsigned day) {
    bool const isInPreviousYear = month <= monthsBeforeMarch;
    std::uint64_t const marchYear = isInPreviousYear ? year - 1 : year;
    std::uint64_t const monthOfYear = month + (isInPreviousYear ? monthsPerYear : 0) - monthsBeforeMarch - 1;
    auto const leapDays = marchYear / 4 - marchYear / 100 + marchYear / yearsPerEra;
    return marchYear * daysPerYear + leapDays + daysBefore(monthOfYear) + day - 1 - firstDay;
}

struct Date {
    std::uint64_t year;
    unsigned month;
    unsigned day;
};

/// Takes the same time for every day.
Date dateOf(std::uint64_t daysSince1970) {
    auto const days = daysSince1970 + firstDay;
    auto const dayOfEra = days % daysPerEra;
    // The last day of four years, of a century and of an era is the leap day of the year that it ends.
    auto const yearOfEra = (dayOfEra - dayOfEra / (daysPerFourYears - 1) + dayOfEra / daysPerCentury -
                            dayOfEra / (daysPerEra - 1)) /
                           daysPerYear;
    auto const dayOfYear = dayOfEra - (yearOfEra * daysPerYear + yearOfEra / 4 - yearOfEra / 100);
    auto const month = static_cast<unsigned>((5 * dayOfYear + 2) / 153); // from 0 for March
    bool const isInNextYear = month + monthsBeforeMarch >= monthsPerYear;
    return {days / daysPerEra * yearsPerEra + yearOfEra + (isInNextYear ? 1 : 0),
            month + monthsBeforeMarch + 1 - (isInNextYear ? monthsPerYear : 0),
            static_cast<unsigned>(dayOfYear - daysBefore(month)) + 1};
}

// ".5", ".50" and ".500" are all 500 ms.
std::optional<std::uint64_t> fraction(std::string_view text) {
    if (text.empty()) {
        return 0;
    }
    if (text.size() < 2 || text.size() > 4 || text.front() != '.' ||
        !std::all_of(text.begin() + 1, text.end(), isDigit)) {
        return std::nullopt;
    }
    std::uint64_t milliseconds = number(text.substr(1));
    for (auto digits = text.size() - 1; digits < 3; ++digits) {
        milliseconds *= 10;
    }
    return milliseconds;
}

} // namespace

std::optional<std::uint64_t> parseTime(std::string_view text) {
    constexpr std::string_view pattern = "dddd-dd-ddTdd:dd:dd";
    if (text.size() <= pattern.size() || text.back() != 'Z' ||
        !matches(text.substr(0, pattern.size()), pattern)) {
        return std::nullopt;
    }
    auto const milliseconds = fraction(text.substr(pattern.size(), text.size() - pattern.size() - 1));
    unsigned const year = number(text.substr(0, 4));
    unsigned const month = number(text.substr(5, 2));
    unsigned const day = number(text.substr(8, 2));
    unsigned const hour = number(text.substr(11, 2));
    unsigned const minute = number(text.substr(14, 2));
    unsigned const second = number(text.substr(17, 2));
    if (!milliseconds || year < firstYear || month < 1 || month > 12 || day < 1 ||
        day > daysOfMonth(year, month) || hour > 23 || minute > 59 || second > 59) {
        return std::nullopt;
    }
    std::uint64_t const seconds =
        daysSince1970(year, month, day) * secondsPerDay + (std::uint64_t{hour} * 60 + minute) * 60 + second;
    return seconds * msPerSecond + *milliseconds;
}

std::string timeText(std::uint64_t time) {
    std::uint64_t const seconds = time / msPerSecond;
    auto const milliseconds = static_cast<unsigned>(time % msPerSecond);
    auto const ofDay = static_cast<unsigned>(seconds % secondsPerDay);
    auto const date = dateOf(seconds / secondsPerDay);
    std::array<char, 64> buffer{};
    auto const length =
        std::snprintf(buffer.data(), buffer.size(), "%04" PRIu64 "-%02u-%02uT%02u:%02u:%02u", date.year,
                      date.month, date.day, ofDay / 3600, ofDay / 60 % 60, ofDay % 60);
    std::string text(buffer.data(), static_cast<std::size_t>(length));
    if (milliseconds != 0) {
        auto const digits = std::to_string(milliseconds);
        text += '.' + std::string(3 - digits.size(), '0') + digits;
    }
    return text + 'Z';
}

bool isCalendarTime(std::uint64_t time) {
    constexpr std::uint64_t firstOfYear10000 = 253402300800000;
    return time < firstOfYear10000;
}

std::string momentText(std::uint64_t time) {
    if (time == 0) {
        return "-";
    }
    return isCalendarTime(time) ? timeText(time) : std::to_string(time);
}

} // namespace qel::tools
