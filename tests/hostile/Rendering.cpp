// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tests/hostile/Rendering.h"

#include "format/Print.h"
#include "format/ValueFormatter.h"
#include "format/ValueKeys.h"

#include "domain/GPIOSensor.h"

#include <cstddef>
#include <sstream>

namespace qel::test {

namespace {

/// A printed line has a name of at most 45 characters, a state of 34, a value of 31 and numbers; a line that is longer
/// than this took its text from elsewhere.
constexpr std::size_t longestLine = 256;
constexpr std::size_t longestNumber = 31;
constexpr std::size_t longestDisplay = longestNumber + 1;
constexpr std::size_t longestName = 45;

dbdata::GPIOSensorData const& inputs() {
    static auto const data = [] {
        dbdata::GPIOSensorConfig config;
        config.set(shm::key::input1, dbdata::GPIOSensorConfig::Contact, 0);
        config.set(0x103, dbdata::GPIOSensorConfig::State, 0);
        config.set(0x104, dbdata::GPIOSensorConfig::PulseCounter, 1000);
        config.set(0x105, dbdata::GPIOSensorConfig::PulseCounter, 0);
        return dbdata::GPIOSensorData(config);
    }();
    return data;
}

} // namespace

std::string renderedTooLong(shm::QelShmMPnt const& point) {
    std::ostringstream out;
    out << point;
    if (out.str().size() > longestLine) {
        return "printed point: " + out.str();
    }
    auto const type = point.tstr();
    return type.size() > longestName ? "type text: " + type : std::string();
}

std::string renderedTooLong(shm::QelShmMVal const& value) {
    using tav::ValueFormatter;
    std::ostringstream out;
    out << value;
    if (out.str().size() > longestLine) {
        return "printed value: " + out.str();
    }
    for (auto const& text :
         {ValueFormatter::str(value), ValueFormatter::str(value->key, value->value, "|")}) {
        if (text.size() > longestNumber) {
            return "value text: " + text;
        }
    }
    for (bool const noContactState : {false, true}) {
        auto const text = ValueFormatter::str(value, inputs(), noContactState);
        if (text.size() > longestName) {
            return "input text: " + text;
        }
    }
    auto const display = ValueFormatter::strForDisplay(value->key, value->value, value->state);
    ValueFormatter::scale(value->key, ValueFormatter::scale(value->key, value->value));
    return display.size() > longestDisplay ? "display text: " + display : std::string();
}

} // namespace qel::test
