// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

// A writing process: lays out a unit, activates the region and delivers values once a second until a signal ends it.
//
// usage: writer
//
// SIGUSR1 plugs in a temperature sensor, or unplugs it again. SIGINT and SIGTERM end the process.

#include "domain/Logger.h"
#include "domain/MeasureValue.h"
#include "domain/eStatus_Bits.h"
#include "format/ValueKeys.h"
#include "writer/QelSharedMemoryWriter.h"

#include <gio/gio.h>
#include <log4cpp/Category.hh>
#include <log4cpp/OstreamAppender.hh>
#include <log4cpp/Priority.hh>

#include <array>
#include <chrono>
#include <csignal>
#include <cstddef>
#include <cstdint>
#include <ctime>
#include <exception>
#include <iostream>
#include <memory>
#include <stdexcept>

namespace {

// A sensor id names, from its highest byte down: device, kind, inlet, phase, circuit, socket. 0xFF: no such level.
constexpr long long unit = 0x0100FFFFFFFF0000;
constexpr long long inlet = 0x010001FFFFFF0000;
constexpr long long phase = 0x01000101FFFF0000;
constexpr long long circuit = 0x0100010101FF0000;
constexpr long long socket1 = 0x0100010101010000;
constexpr long long socket2 = 0x0100010101020000;
constexpr long long sensor = 0x01010101FFFF0000; // kind 1: on the sensor bus

// Stands in for the meters of the unit.
class Meters {
public:
    double voltage() const { return 229.5 + 0.1 * static_cast<double>(second_ % 10); }
    double power(std::size_t socket) const { return watts_.at((second_ + 2 * socket) % watts_.size()); }
    double energy(std::size_t socket) const { return wattHours_.at(socket); }
    double temperature() const { return 24.0 + 0.1 * static_cast<double>(second_ % 5); }

    void measure() {
        ++second_;
        for (std::size_t socket = 0; socket < wattHours_.size(); ++socket) {
            wattHours_.at(socket) += power(socket) / 3600.0;
        }
    }

private:
    static constexpr std::array<double, 6> watts_{460.0, 480.0, 1210.0, 2120.0, 2390.0, 1180.0};

    std::size_t second_ = 0;
    std::array<double, 2> wattHours_{125000.0, 98000.0};
};

// The library does not judge values: the writing process gives each one its state.
eStatus_Bits stateOfPower(double power) {
    constexpr double highWarning = 2000.0;
    constexpr double highAlarm = 2300.0;
    if (power >= highAlarm) {
        return eStatus_HighAlarm;
    }
    return power >= highWarning ? eStatus_HighWarning : eStatus_NoError;
}

// [deliver]
std::uint64_t millisecondsSince1970() {
    using std::chrono::milliseconds;
    auto const passed = std::chrono::system_clock::now().time_since_epoch();
    return static_cast<std::uint64_t>(std::chrono::duration_cast<milliseconds>(passed).count());
}

template <typename Store>
void storeSockets(Store const& store, Meters const& meters) {
    std::size_t index = 0;
    for (auto const socket : {socket1, socket2}) {
        auto const power = meters.power(index);
        store(socket | shm::key::current, power / meters.voltage(), eStatus_NoError);
        store(socket | shm::key::activePower, power, stateOfPower(power));
        store(socket | shm::key::activeEnergy, meters.energy(index), eStatus_NoError); // Wh; stored in kWh
        ++index;
    }
}

void deliver(shm::QelSharedMemoryWriter& writer, Meters const& meters) {
    // [store]
    auto const now = millisecondsSince1970();
    auto const store = [&](long long svid, double number, eStatus_Bits state) {
        return writer.updateMV(svid, std::make_unique<measval::MeasureValue>(number, now, state));
    };
    store(inlet | shm::key::voltage, meters.voltage(), eStatus_NoError);
    store(inlet | shm::key::frequency, 50.0, eStatus_NoError);
    storeSockets(store, meters);
    store(sensor | shm::key::temperature, meters.temperature(), eStatus_NoError); // false while unplugged
    writer.propagateStates(); // after each batch: points, the whole unit, the status LED
    // [/store]
}
// [/deliver]

// [announce]
// Tells readers to look where points and values are now. Without a bus there are no readers to tell.
void announceStructure() {
    GError* failure = nullptr;
    GDBusConnection* const bus = g_bus_get_sync(G_BUS_TYPE_SYSTEM, nullptr, &failure);
    if (bus != nullptr) {
        if (g_dbus_connection_emit_signal(bus, nullptr, "/", "org.qel.HardwareManager", "shmStructureChanged",
                                          nullptr, &failure) != FALSE) {
            g_dbus_connection_flush_sync(bus, nullptr, &failure);
        }
        g_object_unref(bus);
    }
    if (failure != nullptr) {
        std::cerr << "writer: readers are not told of the structure: " << failure->message << '\n';
        g_error_free(failure);
    }
}
// [/announce]

// [change]
// Call it in the thread that delivers: no other call may run while the structure changes.
void togglePlug(shm::QelSharedMemoryWriter& writer, shm::QelSharedMemoryWriter::Definitions& points) {
    if (points.erase(sensor) == 0) {
        points[sensor].mvs = {{shm::key::temperature, 0}};
        writer.addStructure(points); // adds what is missing
    } else {
        writer.removeStructure(points); // removes what has no definition
    }
    std::cout << "writer: sensor " << (points.count(sensor) != 0 ? "plugged in" : "unplugged") << '\n';
}
// [/change]

// Without an appender the library's log goes nowhere. It says what is wrong with the region.
void logWarnings() {
    auto& log = Logger::getInstance().getCategory("qel");
    log.setAppender(std::make_unique<log4cpp::OstreamAppender>("standard error", &std::cerr).release());
    log.setPriority(log4cpp::Priority::WARN);
}

// Blocked signals wait until sigtimedwait() takes them. The writer's threads inherit the mask.
sigset_t blockSignals() {
    sigset_t signals;
    sigemptyset(&signals);
    for (int const number : {SIGINT, SIGTERM, SIGUSR1}) {
        sigaddset(&signals, number);
    }
    pthread_sigmask(SIG_BLOCK, &signals, nullptr);
    return signals;
}

void run() {
    auto const signals = blockSignals();
    logWarnings();
    // [start]
    shm::QelSharedMemoryWriter writer; // creates the region; readers see it inactive
    if (!writer.root()) {
        throw std::runtime_error("there is no region; the log above says why");
    }
    shm::QelSharedMemoryWriter::Definitions points; // with the keys of their values; a point needs its parent
    points[unit];
    points[inlet].mvs = {{shm::key::voltage, 0}, {shm::key::frequency, 0}};
    points[phase];
    points[circuit];
    for (auto const id : {socket1, socket2}) {
        points[id].mvs = {{shm::key::current, 0}, {shm::key::activePower, 0}, {shm::key::activeEnergy, 0}};
    }
    writer.addStructure(points);
    writer.setActive(); // readers may begin
    // [/start]
    Meters meters;
    deliver(writer, meters);
    announceStructure(); // to readers that have the region of a killed writer mapped
    std::cout << "writer: region active\n";

    std::timespec const period{1, 0};
    for (;;) {
        int const signal = sigtimedwait(&signals, nullptr, &period);
        if (signal == SIGINT || signal == SIGTERM) {
            break;
        }
        if (signal == SIGUSR1) {
            togglePlug(writer, points);
            deliver(writer, meters); // what is new has a value before readers hear of it
            announceStructure();
        } else {
            meters.measure();
            deliver(writer, meters);
        }
    }
    std::cout << "writer: ends and removes the region\n";
}

} // namespace

int main() {
    std::cout << std::unitbuf; // each line at once, also into a pipe
    try {
        run();
        return 0;
    } catch (std::exception const& error) {
        std::cerr << "writer: " << error.what() << '\n';
        return 1;
    }
}
