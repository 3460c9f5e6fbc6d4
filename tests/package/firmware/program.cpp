// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

// A program of the firmware: takes each way from the library into the domain library, and prints what comes back.

#include "domain/GPIOSensor.h"
#include "domain/MeasureValue.h"
#include "format/Print.h"
#include "format/ValueFormatter.h"
#include "format/ValueKeys.h"
#include "region/Exceptions.h"
#include "region/QelShmMVal.h"
#include "region/QelShmRecords.h"
#include "writer/QelSharedMemoryWriter.h"

#include <log4cpp/Category.hh>
#include <log4cpp/OstreamAppender.hh>
#include <log4cpp/PatternLayout.hh>

#include <cstddef>
#include <cstdint>
#include <iostream>
#include <map>
#include <memory>
#include <string>
#include <utility>

namespace {

constexpr long long unit = 0x0100FFFFFFFF0000;
constexpr long long inlet = 0x010001FFFFFF0000;
constexpr long long phase = 0x01000101FFFF0000;
constexpr long long gpio = 0x01010101FFFF0000;
constexpr long long loose = 0x0104FFFFFFFF0000;  // of a type that no list holds
constexpr long long orphan = 0x0100020101010000; // its parent does not exist

constexpr std::uint64_t time = 1700000000123;

using Points = std::map<long long, shm::MPDef, shm::SvidCmp>;

// Warnings and errors go to standard output, after the name of the category that the domain library chose.
void showLog() {
    auto layout = std::make_unique<log4cpp::PatternLayout>();
    layout->setConversionPattern("%c %p %m%n");
    auto appender = std::make_unique<log4cpp::OstreamAppender>("output", &std::cout);
    appender->setLayout(layout.release());
    log4cpp::Category::getRoot().setPriority(log4cpp::Priority::WARN);
    log4cpp::Category::getRoot().addAppender(appender.release());
}

Points structure() {
    Points points;
    points[unit];
    points[inlet].mvs = {{shm::key::voltage, 0}, {shm::key::activeEnergy, 0}};
    points[phase].mvs = {{shm::key::current, 0}};
    points[gpio].mvs = {{shm::key::input1, 0}, {shm::key::input2, 0}};
    points[loose];
    return points;
}

class Writer : public shm::QelSharedMemoryWriter {
public:
    // The value's slot; the slots are taken in the order of the structure.
    shm::QelShmMVal slot(std::size_t position) const { return shm::QelShmMVal(&region()->values[position]); }
};

template <typename Number>
void store(Writer& writer, long long svid, Number number, eStatus_Bits state) {
    auto value = std::make_unique<measval::MeasureValue>(std::move(number), time, state);
    std::cout << "stored: " << writer.updateMV(svid, std::move(value)) << '\n';
}

void storeValues(Writer& writer) {
    store(writer, inlet | shm::key::voltage, 253.46, eStatus_HighAlarm);
    store(writer, inlet | shm::key::activeEnergy, 12500LL, eStatus_NoError);
    store(writer, phase | shm::key::current, std::string("high"), eStatus_Lost);
    store(writer, gpio | shm::key::input1, true, eStatus_On);
    store(writer, gpio | shm::key::input2, 1500.0, eStatus_NoError);
    writer.propagateStates();
    for (std::size_t position = 0; position < 5; ++position) {
        std::cout << writer.slot(position) << '\n';
    }
}

// The text of an input depends on the mode that the domain library knows.
void showInputs() {
    dbdata::GPIOSensorConfig config;
    config.set(shm::key::input1, dbdata::GPIOSensorConfig::State, 0);
    config.set(shm::key::input2, dbdata::GPIOSensorConfig::PulseCounter, 1000);
    dbdata::GPIOSensorData const sensor(std::move(config));
    for (auto const key : {shm::key::input1, shm::key::input2, shm::key::input3}) {
        shm::record::QelShmMVal slot{};
        slot.key = key;
        slot.value = 1500.0;
        slot.state = eStatus_On;
        auto const text = tav::ValueFormatter::str(shm::QelShmMVal(&slot), sensor, false); // may log
        std::cout << "input: " << text << '\n';
    }
}

void showExceptions(Writer& writer) {
    std::cout << ex::InvalidTypeException(measval::String).what() << '\n';
    try {
        Points points;
        points[orphan];
        writer.addStructure(points);
    } catch (ex::InvalidSensorIdException const& error) {
        std::cout << error.what() << '\n';
    }
}

} // namespace

int main() {
    showLog();
    Writer writer;
    bool const isAdded = writer.addStructure(structure());
    std::cout << std::boolalpha << "added: " << isAdded << '\n';
    writer.setActive();
    storeValues(writer);
    std::cout << writer.tree() << writer.root() << '\n';
    showInputs();
    showExceptions(writer);
    log4cpp::Category::shutdown();
    return 0;
}
