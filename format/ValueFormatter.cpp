// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "format/ValueFormatter.h"

#include "format/KeyTable.h"
#include "format/NumberText.h"
#include "format/Scale.h"
#include "format/StateName.h"
#include "format/Units.h"
#include "format/ValueKeys.h"
#include "region/LogLine.h"
#include "region/QelShmMVal.h"
#include "region/QelShmRecords.h"
#include "region/TableLookup.h"

#include "domain/GPIOSensor.h"
#include "domain/eStatus_Bits.h"

#include <log4cpp/Priority.hh>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <exception>
#include <limits>
#include <string_view>

namespace tav {

namespace {

namespace key = shm::key;

constexpr char missing[] = "--";
constexpr char notYet[] = "n/a";
constexpr char displaySeparator[] = "|";
constexpr std::string_view degreeSign = "\u00B0";
constexpr char displayDegree = '^';

constexpr std::array<shm::TextRow<eStatus_Bits>, 6> switchTexts{{
    {eStatus_NoError, "S0"},
    {eStatus_On, "On"},
    {eStatus_Off, "Off"},
    {eStatus_High, "Hi"},
    {eStatus_Low, "Lo"},
    {eStatus_Disabled, missing},
}};
static_assert(shm::isSortedByCode(switchTexts));

/// The text of a value that cannot be shown, null for one that can.
char const* placeholder(unsigned short key, eStatus_Bits state) {
    if (key == shm::NO_KEY || state == eStatus_UndefinedValue) {
        return missing;
    }
    return state == eStatus_ExpectedValue ? notYet : nullptr;
}

char const* placeholder(shm::QelShmMVal const& mv) {
    return mv ? placeholder(mv->key, mv->state) : missing;
}

/// What follows the number in the key's format.
std::string suffix(shm::KeyRow const& keyed, std::string const& separator) {
    return keyed.unit ? separator + unitText(*keyed.unit) : std::string();
}

/// What printf makes of a format without conversions: it ends at a terminating zero, and "%%" becomes "%".
std::string printed(std::string text) {
    text.resize(std::min(text.find('\0'), text.size()));
    for (auto at = text.find("%%"); at != std::string::npos; at = text.find("%%", at + 1)) {
        text.erase(at, 1);
    }
    return text;
}

// Deliberate: only the first of the degree sign's two bytes is replaced; the display's sign is this pair.
void markDegrees(std::string& text) {
    for (auto at = text.find(degreeSign); at != std::string::npos; at = text.find(degreeSign, at + 1)) {
        text[at] = displayDegree;
    }
}

std::string gpioText(shm::QelShmMVal const& mv, dbdata::GPIOSensorConfig const& config, bool noContactState) {
    using Config = dbdata::GPIOSensorConfig;
    auto const mode = config.mode(mv->key);
    if (mode == Config::PulseCounter) {
        return ValueFormatter::str(key::activeEnergy, mv->value / static_cast<double>(config.pc(mv->key)),
                                   " ");
    }
    if (mode == Config::State || (mode == Config::Contact && !noContactState)) {
        return std::string(shm::stateName(mv->state));
    }
    return missing;
}

} // namespace

std::string ValueFormatter::format(unsigned short key, std::string const& separator) {
    auto const& keyed = shm::keyRow(key);
    return "%." + std::to_string(keyed.decimals) + 'f' + suffix(keyed, separator);
}

std::string ValueFormatter::str(unsigned short key, double value, std::string const& separator) {
    constexpr std::size_t longest = 31;
    auto const& keyed = shm::keyRow(key);
    auto text = shm::fixedText(value, keyed.decimals) + printed(suffix(keyed, separator));
    if (text.size() > longest) {
        text.resize(longest);
    }
    return text;
}

std::string ValueFormatter::str(shm::QelShmMVal const& mv) {
    auto const* const text = placeholder(mv);
    return text != nullptr ? text : str(mv->key, mv->value, " ");
}

std::string ValueFormatter::str(shm::QelShmMVal const& mv, dbdata::GPIOSensorData const& gpio,
                                bool noContactState) {
    auto const* const text = placeholder(mv);
    if (text != nullptr) {
        return text;
    }
    try {
        return gpioText(mv, gpio.config(), noContactState);
    } catch (std::exception const& error) {
        // Deliberate: the reader's category; it is readers that ask for GPIO texts.
        shm::LogLine(shm::readerLog, log4cpp::Priority::ERROR, "str") << error.what();
        return missing;
    }
}

std::string ValueFormatter::strForDisplay(unsigned short key, double value, eStatus_Bits state) {
    auto const* const text = placeholder(key, state);
    if (text != nullptr) {
        return text;
    }
    if (key >= key::input1 && key <= key::output4) {
        return std::string(shm::textOf(switchTexts, state, "?"));
    }
    auto const shown = str(key, value, displaySeparator);
    if (key == key::temperature || key == key::humidity) {
        auto marked = displaySeparator + shown;
        markDegrees(marked);
        return marked;
    }
    return key == key::powerFactor ? shown + displaySeparator : shown;
}

long long ValueFormatter::scale(unsigned short key, double value) {
    using Limits = std::numeric_limits<long long>;
    constexpr double beyondMax = 9223372036854775808.0; // 2^63; the highest long long itself is no double
    constexpr double half = 0.5;
    // Deliberate: the half is added to negative values too.
    double const scaled = value * scaleFactor(scalepos(key)) + half;
    if (std::isnan(scaled)) {
        return 0;
    }
    if (scaled >= beyondMax) {
        return Limits::max();
    }
    return scaled < -beyondMax ? Limits::min() : static_cast<long long>(scaled);
}

double ValueFormatter::scale(unsigned short key, long long value) {
    return static_cast<double>(value) * inverseScaleFactor(scalepos(key));
}

} // namespace tav
