// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

// A program of somebody else: lays out a small unit, stores two values and prints what is there.

#include "domain/MeasureValue.h"
#include "format/Names.h"
#include "format/Print.h"
#include "format/ValueFormatter.h"
#include "format/ValueKeys.h"
#include "region/Exceptions.h"
#include "writer/QelSharedMemoryWriter.h"

#include <iostream>
#include <map>
#include <memory>

int main() {
    constexpr long long unit = 0x0100FFFFFFFF0000;
    constexpr long long inlet = 0x010001FFFFFF0000;
    using shm::key::activeEnergy;
    using shm::key::peakVoltage;
    using shm::key::voltage;

    shm::QelSharedMemoryWriter writer;
    std::map<long long, shm::MPDef, shm::SvidCmp> definitions;
    definitions[unit];
    definitions[inlet].mvs = {{voltage, 0}, {activeEnergy, 0}};
    std::cout << std::boolalpha << "added: " << writer.addStructure(definitions) << '\n';
    writer.setActive();

    auto const store = [&](unsigned short key, double number, eStatus_Bits state) {
        return writer.updateMV(inlet | key, std::make_unique<measval::MeasureValue>(number, 1000U, state));
    };
    std::cout << "stored: " << store(voltage, 253.46, eStatus_HighAlarm) << ' '
              << store(activeEnergy, 12500.0, eStatus_NoError) << ' '
              << store(peakVoltage, 0.0, eStatus_NoError) << '\n';
    writer.propagateStates();

    std::cout << writer.tree() << writer.root() << '\n'
              << std::dec << std::noshowbase << shm::keyName(voltage) << ": "
              << tav::ValueFormatter::str(voltage, 253.46, " ") << "; " << shm::key::activeEnergy
              << ": factor " << shm::energyFactor << '\n';
    try {
        definitions[0x0100020101010000];
        writer.addStructure(definitions);
    } catch (ex::InvalidSensorIdException const& error) {
        std::cout << error.what() << '\n';
    }
    return 0;
}
