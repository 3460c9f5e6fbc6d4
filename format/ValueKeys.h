// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// The value keys: what the low 16 bits of a value's sensor id say about the value.
#pragma once

namespace shm {

/// Energies are delivered in Wh, VAh or varh and stored in kWh, kVAh or kvarh: updateMV() divides them by this.
constexpr double energyFactor = 1000.0;

} // namespace shm

/// One constant for each key that has a name (see shm::keyName()): the name in camel case. Brackets hold the unit of
/// the stored number, with which it is also shown; values of the other keys are shown without one.
///
/// Energies are stored in another unit than they are delivered in: "from Wh, factor 1000" (see shm::energyFactor).
/// A point state belongs to the point: updateMV() puts its time and state into the point's slot and drops its number.
namespace shm::key {

// Electrical measurements.
constexpr unsigned short guid = 0x00;                  ///< identifier of the point; not a measurement
constexpr unsigned short voltage = 0x01;               ///< voltage [V]
constexpr unsigned short peakVoltage = 0x02;           ///< peak value of the voltage [V]
constexpr unsigned short current = 0x04;               ///< current [A]
constexpr unsigned short peakCurrent = 0x05;           ///< peak value of the current [A]
constexpr unsigned short differentialCurrentAc = 0x07; ///< residual current, AC part [mA]
constexpr unsigned short differentialCurrentDc = 0x08; ///< residual current, DC part [mA]
constexpr unsigned short neutralCurrent = 0x09;        ///< current in the neutral conductor [A]
constexpr unsigned short phaseAngle = 0x10;            ///< angle between voltage and current [°]
constexpr unsigned short powerFactor = 0x11;           ///< active power divided by apparent power
constexpr unsigned short apparentPower = 0x12;         ///< apparent power [VA]
constexpr unsigned short activePower = 0x13;           ///< active power [W]
constexpr unsigned short peakActivePower = 0x14;       ///< peak value of the active power [W]
constexpr unsigned short reactivePower = 0x16;         ///< reactive power [var]
constexpr unsigned short frequency = 0x17;             ///< mains frequency [Hz]
constexpr unsigned short peakNeutralCurrent = 0x18;    ///< peak value of the neutral current [A]

// Energies.
constexpr unsigned short apparentEnergy = 0x20;      ///< apparent energy [kVAh]; from VAh, factor 1000
constexpr unsigned short apparentEnergyDelta = 0x21; ///< since its base value [kVAh]; from VAh, factor 1000
constexpr unsigned short reactiveEnergy = 0x22;      ///< reactive energy [kvarh]; from varh, factor 1000
constexpr unsigned short reactiveEnergyDelta = 0x23; ///< since its base value [kvarh]; from varh, factor 1000
constexpr unsigned short activeEnergy = 0x24;        ///< active energy [kWh]; from Wh, factor 1000
constexpr unsigned short activeEnergyDelta = 0x25;   ///< since its base value [kWh]; from Wh, factor 1000
constexpr unsigned short activeEnergyResettable = 0x26; ///< since its reset [kWh]; from Wh, factor 1000

// States and presence.
constexpr unsigned short fuseState = 0x30;        ///< point state of a fuse
constexpr unsigned short orientation = 0x31;      ///< how the unit is mounted; a code
constexpr unsigned short usb = 0x32;              ///< USB port; a code
constexpr unsigned short socket = 0x33;           ///< point state of a socket
constexpr unsigned short pduState = 0x34;         ///< point state of the unit
constexpr unsigned short sensorState = 0x35;      ///< point state of a sensor
constexpr unsigned short circuitState = 0x36;     ///< point state of a circuit
constexpr unsigned short phaseState = 0x37;       ///< point state of a phase
constexpr unsigned short rcdState = 0x38;         ///< point state of a residual-current device
constexpr unsigned short socketGroupState = 0x39; ///< point state of a socket group
constexpr unsigned short globalState = 0x3A;      ///< point state that stands for the whole unit
constexpr unsigned short state = 0x3B;            ///< point state of any other point

// Type codes.
constexpr unsigned short sensorType = 0x40;  ///< type code of a sensor
constexpr unsigned short circuitType = 0x41; ///< type code of a circuit
constexpr unsigned short fuseType = 0x42;    ///< type code of a fuse
constexpr unsigned short socketType = 0x43;  ///< type code of a socket
constexpr unsigned short socketColor = 0x44; ///< colour of a socket; a code
constexpr unsigned short phaseType = 0x45;   ///< type code of a phase
constexpr unsigned short pduType = 0x46;     ///< type code of the unit
constexpr unsigned short rcmType = 0x47;     ///< type code of a residual-current monitor
constexpr unsigned short type = 0x48;        ///< type code of any other point

// Line-to-line voltages.
constexpr unsigned short deltaVoltage12 = 0x50; ///< voltage between phases 1 and 2 [V]
constexpr unsigned short deltaVoltage23 = 0x51; ///< voltage between phases 2 and 3 [V]
constexpr unsigned short deltaVoltage31 = 0x52; ///< voltage between phases 3 and 1 [V]

// Environment, inputs and outputs.
constexpr unsigned short temperature = 0x100; ///< air temperature [°C]
constexpr unsigned short humidity = 0x101;    ///< relative humidity [%]
constexpr unsigned short input1 = 0x102;      ///< contact or pulse counter, as configured
constexpr unsigned short input2 = 0x103;      ///< like input1
constexpr unsigned short input3 = 0x104;      ///< like input1
constexpr unsigned short input4 = 0x105;      ///< like input1
constexpr unsigned short output1 = 0x106;     ///< switched output; its state tells how it stands
constexpr unsigned short output2 = 0x107;     ///< like output1
constexpr unsigned short output3 = 0x108;     ///< like output1
constexpr unsigned short output4 = 0x109;     ///< like output1
constexpr unsigned short dewPoint = 0x10A;    ///< dew point of the air [°C]

// The device.
constexpr unsigned short deviceLocation = 0x200;                ///< where the device stands
constexpr unsigned short deviceContact = 0x201;                 ///< whom to ask about the device
constexpr unsigned short deviceSerialNumber = 0x202;            ///< serial number
constexpr unsigned short deviceItemNumber = 0x203;              ///< item number
constexpr unsigned short deviceSoftwareVersion = 0x204;         ///< version of the software
constexpr unsigned short deviceHardwareVersion = 0x205;         ///< version of the hardware
constexpr unsigned short deviceFirmwareVersion = 0x206;         ///< version of the firmware
constexpr unsigned short deviceOperatingSystemVersion = 0x207;  ///< version of the operating system
constexpr unsigned short deviceArchitecture = 0x208;            ///< processor architecture
constexpr unsigned short deviceModbusAddress = 0x209;           ///< address on the Modbus
constexpr unsigned short deviceBuildNumber = 0x20A;             ///< number of the software's build
constexpr unsigned short deviceProductionDate = 0x20B;          ///< date of production
constexpr unsigned short deviceBootloaderVersion = 0x20C;       ///< version of the boot loader
constexpr unsigned short deviceActivePartition = 0x20D;         ///< partition that the device runs from
constexpr unsigned short deviceSerialNumberBaseUnit = 0x210;    ///< serial number of the base unit
constexpr unsigned short deviceItemNumberBaseUnit = 0x211;      ///< item number of the base unit
constexpr unsigned short deviceHardwareVersionBaseUnit = 0x212; ///< hardware version of the base unit
constexpr unsigned short deviceProductionDateBaseUnit = 0x213;  ///< production date of the base unit

// Internal to the hardware side.
constexpr unsigned short slaveFactoryResetSignaling = 0xFFF7;   ///< a slave was reset to factory settings
constexpr unsigned short voltageAbove20V = 0xFFF8;              ///< whether the voltage exceeds 20 V
constexpr unsigned short apparentEnergyDeltaBaseValue = 0xFFF9; ///< in kVAh; from VAh, factor 1000
constexpr unsigned short reactiveEnergyDeltaBaseValue = 0xFFFA; ///< in kvarh; from varh, factor 1000
constexpr unsigned short activeEnergyDeltaBaseValue = 0xFFFB;   ///< in kWh; from Wh, factor 1000
constexpr unsigned short activeEnergyResettableDeltaBaseValue = 0xFFFC; ///< in kWh; from Wh, factor 1000
constexpr unsigned short voltageMeasuredAtPhaseLevel = 0xFFFD;          ///< voltage of a phase, in V
constexpr unsigned short voltageMeasuredAtSocketLevel = 0xFFFE;         ///< voltage of a socket, in V

} // namespace shm::key
