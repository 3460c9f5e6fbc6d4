// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

// The functions that the headers of the stand-in declare, as a device implements them: a libQelDomain.so.1 of its own.

#include "domain/ElectricalSensorIdentifier.h"
#include "domain/GPIOSensor.h"
#include "domain/Logger.h"
#include "domain/MeasureValue.h"

#include <log4cpp/Category.hh>

#include <cstdint>
#include <ostream>
#include <stdexcept>

std::ostream& SensorType::operator<<(std::ostream& out, SensorType type) {
    return out << "kind " + std::to_string(static_cast<int>(type));
}

SensorIdentifier::Parts::Parts(long long svid) {
    for (std::size_t part = 0; part < bytes_.size(); ++part) {
        bytes_.at(part) =
            static_cast<signed char>((static_cast<std::uint64_t>(svid) >> (56U - 8U * part)) & 0xFFU);
    }
}

SensorIdentifier::SensorIdentifier(SensorType::SensorType kind) {
    setPart(Kind, kind);
}

SensorIdentifier::~SensorIdentifier() = default;

SensorIdentifier::Parts SensorIdentifier::getSensorIdParts(long long svid) {
    return Parts(svid);
}

SensorType::SensorType SensorIdentifier::extractSensorType(long long svid) {
    return static_cast<SensorType::SensorType>(Parts(svid)[Kind]);
}

unsigned short SensorIdentifier::getKey(long long svid) {
    return static_cast<unsigned short>(svid);
}

std::string SensorIdentifier::explain(long long svid) {
    return "number " + std::to_string(svid) + " of the device";
}

long long SensorIdentifier::getSensorVariableID(unsigned short key) const {
    std::uint64_t svid = 0;
    for (auto const level : levels_) {
        svid = svid * 256U + static_cast<unsigned char>(level);
    }
    return static_cast<long long>(svid * 65536U + key);
}

ElectricalSensorIdentifier::ElectricalSensorIdentifier(signed char inlet, signed char phase,
                                                       signed char circuit, signed char socket)
    : SensorIdentifier(SensorType::Electrical) {
    set(Inlet, inlet);
    set(Phase, phase);
    set(Circuit, circuit);
    set(Socket, socket);
}

void ElectricalSensorIdentifier::set(unsigned int index, signed char value) {
    setPart(static_cast<Part>(index), value);
}

void ElectricalSensorIdentifier::setDevice(signed char device) {
    setPart(Device, device);
}

std::string measval::mvtToStr(MeasureValueType type) {
    return "device type " + std::to_string(static_cast<int>(type));
}

measval::MeasureValueType measval::MeasureValue::type() const {
    constexpr MeasureValueType types[] = {Double, Integer, Bool, String};
    return types[value_.index()];
}

measval::MeasureValue::DoubleResult measval::MeasureValue::toDouble() const {
    switch (value_.index()) {
    case 0:
        return {Double, std::get<double>(value_)};
    case 1:
        return {Double, static_cast<double>(std::get<long long>(value_))};
    case 2:
        return {Double, std::get<bool>(value_) ? 1.0 : 0.0};
    default:
        return {String, 0.0};
    }
}

dbdata::GPIOSensorConfig::Input const& dbdata::GPIOSensorConfig::input(long long key) const {
    auto const found = inputs_.find(key);
    if (found == inputs_.end()) {
        throw std::out_of_range("the device has no such input");
    }
    return found->second;
}

void dbdata::GPIOSensorConfig::set(long long key, int mode, long long pulseConstant) {
    inputs_[key] = {mode, pulseConstant};
}

int dbdata::GPIOSensorConfig::mode(long long key) const {
    return input(key).mode;
}

long long dbdata::GPIOSensorConfig::pc(long long key) const {
    return input(key).pulseConstant;
}

dbdata::GPIOSensorData::GPIOSensorData(GPIOSensorConfig config) : config_(std::move(config)) {}

Logger& Logger::getInstance() {
    static Logger instance;
    return instance;
}

log4cpp::Category& Logger::getCategory(std::string const& name) {
    return log4cpp::Category::getInstance("device." + name);
}
