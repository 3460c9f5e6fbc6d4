// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

// Lays out a fixed unit with fixed times, states and numbers, and writes the region's bytes to standard output. What
// differs between processors is among them: signs of bytes and states, times and ids that need 64 bits, odd doubles.

#include "format/ValueKeys.h"
#include "writer/QelSharedMemoryWriter.h"

#include <array>
#include <cstdint>
#include <exception>
#include <fstream>
#include <iostream>
#include <limits>
#include <memory>
#include <stdexcept>
#include <string>
#include <unordered_set>
#include <vector>

namespace qel::test {

namespace {

namespace key = shm::key;
using Definitions = shm::QelSharedMemoryWriter::Definitions;
using Numbers = std::numeric_limits<double>;

constexpr std::uint64_t start = 1700000000000; // ms since 1970, more than 32 bits

constexpr long long unit = 0x0100FFFFFFFF0000;
constexpr long long inlet = 0x010001FFFFFF0000;
constexpr long long circuit = 0x010001FF01FF0000;
constexpr long long socket = 0x010001FF01010000;
constexpr long long offSocket = 0x010001FF01020000;
constexpr long long removedSocket = 0x010001FF01030000;
constexpr long long newSocket = 0x010001FF01040000;
constexpr long long sensor = 0x01010101FFFF0000;
constexpr long long group = 0x0102FFFFFF010000;
constexpr long long monitor = 0x010401FFFFFF0000;
// A device whose number is negative as a signed byte.
constexpr auto farUnit = static_cast<long long>(0xC800FFFFFFFF0000ULL);

Definitions points() {
    Definitions definitions;
    definitions[unit].mvs = {{key::voltage, 0}, {key::current, 0}, {key::activeEnergy, 0}};
    definitions[inlet];
    definitions[circuit].mvs = {{key::voltage, 0}};
    definitions[socket].mvs = {{key::voltage, 0},
                               {key::current, 0},
                               {key::activePower, 0},
                               {key::activeEnergy, 0},
                               {key::activeEnergyDeltaBaseValue, 0}};
    definitions[offSocket].mvs = {{key::voltage, 0}, {key::current, 0}, {999, 0}};
    definitions[removedSocket].mvs = {{key::voltage, 0}, {key::current, 0}};
    definitions[sensor].mvs = {{40, 0}, {41, 0}, {key::input1, 0}};
    definitions[group].mvs = {{key::activePower, 0}};
    definitions[monitor].mvs = {{key::peakCurrent, 0}};
    definitions[farUnit].mvs = {{key::voltage, 0}, {key::current, 0}};
    return definitions;
}

struct Update {
    long long svid;
    double number;
    std::uint64_t at;
    eStatus_Bits state;
};

constexpr std::array updates{
    Update{unit | key::voltage, 230.1, start, eStatus_NoError},
    Update{unit | key::current, -0.0, start + 1, eStatus_NoError},
    Update{unit | key::activeEnergy, 1234567.0, start + 2, eStatus_NoError}, // energies are divided by 1000
    Update{circuit | key::voltage, Numbers::quiet_NaN(), start + 3, eStatus_NoError},
    Update{socket | key::voltage, 253.46, start + 4, eStatus_HighAlarm},
    Update{socket | key::current, Numbers::denorm_min(), 0, eStatus_UndefinedValue},
    Update{socket | key::activePower, Numbers::max(), std::numeric_limits<std::uint64_t>::max(),
           eStatus_NoError},
    Update{socket | key::activeEnergy, 1.0, 0x8000000000000000, eStatus_HighWarning},
    Update{socket | key::activeEnergyDeltaBaseValue, 0.1, 0xFFFFFFFF, eStatus_NoError},
    Update{socket | key::fuseState, 0.0, start + 5, eStatus_On}, // the point's own state
    Update{offSocket | key::voltage, -Numbers::infinity(), 0x100000000, eStatus_Lost},
    Update{offSocket | 999, 1.0 / 3.0, start + 6, static_cast<eStatus_Bits>(-2000000000)},
    Update{offSocket | key::fuseState, 0.0, start + 7, eStatus_Off},
    Update{sensor | 40, -12.35, start + 8, eStatus_LowWarning},
    Update{sensor | key::input1, 1.0, start + 9, eStatus_High},
    Update{group | key::activePower, 2749.4, start + 10, eStatus_NoError},
    Update{monitor | key::peakCurrent, 0.03, start + 11, eStatus_NoError},
    Update{farUnit | key::voltage, 400.0, start + 12, eStatus_LowWarning},
};

/// Every point and value that stays, and a socket that is new.
std::unordered_set<long long> sensorsAfterChange() {
    std::unordered_set<long long> svids{newSocket | key::voltage, newSocket | key::current, inlet};
    for (auto const& [svid, definition] : points()) {
        for (auto const& value : definition.mvs) {
            if (svid != removedSocket) {
                svids.insert(svid | value.first);
            }
        }
    }
    return svids;
}

void check(bool done, std::string const& step) {
    if (!done) {
        throw std::runtime_error(step + " failed");
    }
}

void layOut(shm::QelSharedMemoryWriter& writer) {
    check(writer.addStructure(points()), "addStructure");
    check(writer.modifyStructure(sensorsAfterChange()), "modifyStructure");
    writer.injectTypes({{unit, 4}, {inlet, 11}, {circuit, 21}, {socket, 30}, {sensor, -3}, {farUnit, 200}});
    writer.setActive();
    for (auto const& [svid, number, at, state] : updates) {
        check(writer.updateMV(svid, std::make_unique<measval::MeasureValue>(number, at, state)), "updateMV");
    }
    check(writer.updateMV(newSocket | key::voltage, std::make_unique<measval::MeasureValue>(
                                                        9007199254740993LL, start, eStatus_NoError)),
          "updateMV of an integer");
    check(!writer.updateMV(newSocket | key::current,
                           std::make_unique<measval::MeasureValue>("text", start + 13, eStatus_LowAlarm)),
          "refusal of a text");
    writer.propagateStates();
}

} // namespace

} // namespace qel::test

int main() {
    try {
        shm::QelSharedMemoryWriter writer;
        qel::test::layOut(writer);
        std::cout << std::ifstream("/dev/shm/QelSharedMemory", std::ios::binary).rdbuf() << std::flush;
        return std::cout ? 0 : 1;
    } catch (std::exception const& failure) {
        std::cerr << "image-writer: " << failure.what() << '\n';
        return 1;
    }
}
