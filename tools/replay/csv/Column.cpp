// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tools/replay/csv/Column.h"

#include "tools/common/Numbers.h"
#include "tools/replay/unit/Topology.h"

#include "format/ValueKeys.h"

#include <array>
#include <cstdint>

namespace qel::tools {

namespace key = shm::key;

namespace {

/// A '#' in the name stands for the point's number, from 1 to `number`. Without '#', `number` is the point's.
struct KnownColumn {
    std::string_view name;
    PointKind kind;
    unsigned number;
    unsigned short key;
};

constexpr std::array<KnownColumn, 34> knownColumns{{
    {"frequency_Hz", PointKind::Inlet, threePhaseInlet.number, key::frequency},
    {"inlet#_active_energy_Wh", PointKind::Inlet, 1, key::activeEnergy},
    {"inlet#_active_power_W", PointKind::Inlet, 1, key::activePower},
    {"inlet#_apparent_power_VA", PointKind::Inlet, 1, key::apparentPower},
    {"inlet#_current_A", PointKind::Inlet, 1, key::current},
    {"inlet#_frequency_Hz", PointKind::Inlet, 1, key::frequency},
    {"inlet#_power_factor", PointKind::Inlet, 1, key::powerFactor},
    {"inlet#_reactive_power_var", PointKind::Inlet, 1, key::reactivePower},
    {"inlet#_voltage_V", PointKind::Inlet, 1, key::voltage},
    {"outlet#_active_energy_Wh", PointKind::Socket, outletCount, key::activeEnergy},
    {"outlet#_active_power_W", PointKind::Socket, outletCount, key::activePower},
    {"outlet#_apparent_power_VA", PointKind::Socket, outletCount, key::apparentPower},
    {"outlet#_current_A", PointKind::Socket, outletCount, key::current},
    {"outlet#_frequency_Hz", PointKind::Socket, outletCount, key::frequency},
    {"outlet#_power_factor", PointKind::Socket, outletCount, key::powerFactor},
    {"outlet#_reactive_power_var", PointKind::Socket, outletCount, key::reactivePower},
    {"outlet#_voltage_V", PointKind::Socket, outletCount, key::voltage},
    {"phase#_active_energy_Wh", PointKind::Phase, 3, key::activeEnergy},
    {"phase#_active_power_W", PointKind::Phase, 3, key::activePower},
    {"phase#_apparent_power_VA", PointKind::Phase, 3, key::apparentPower},
    {"phase#_current_A", PointKind::Phase, 3, key::current},
    {"phase#_power_factor", PointKind::Phase, 3, key::powerFactor},
    {"phase#_reactive_power_var", PointKind::Phase, 3, key::reactivePower},
    {"phase#_voltage_V", PointKind::Phase, 3, key::voltage},
    {"phase12_voltage_V", PointKind::Inlet, threePhaseInlet.number, key::deltaVoltage12},
    {"phase23_voltage_V", PointKind::Inlet, threePhaseInlet.number, key::deltaVoltage23},
    {"phase31_voltage_V", PointKind::Inlet, threePhaseInlet.number, key::deltaVoltage31},
    {"sensor#_relative_humidity_percent", PointKind::Sensor, 1, key::humidity},
    {"sensor#_temperature_degC", PointKind::Sensor, 1, key::temperature},
    {"total_active_energy_Wh", PointKind::Inlet, threePhaseInlet.number, key::activeEnergy},
    {"total_active_power_W", PointKind::Inlet, threePhaseInlet.number, key::activePower},
    {"total_apparent_power_VA", PointKind::Inlet, threePhaseInlet.number, key::apparentPower},
    {"total_power_factor", PointKind::Inlet, threePhaseInlet.number, key::powerFactor},
    {"total_reactive_power_var", PointKind::Inlet, threePhaseInlet.number, key::reactivePower},
}};

constexpr bool isSortedAndUnique() {
    for (std::size_t row = 1; row < knownColumns.size(); ++row) {
        if (!(knownColumns[row - 1].name < knownColumns[row].name)) {
            return false;
        }
    }
    return true;
}
static_assert(isSortedAndUnique());

/// The number that stands for the '#' of a pattern, without leading zeros; nothing when the name does not
/// match.
std::optional<std::uint64_t> numberIn(std::string_view name, std::string_view pattern) {
    auto const mark = pattern.find('#');
    auto const head = pattern.substr(0, mark);
    auto const tail = pattern.substr(mark + 1);
    if (name.size() <= head.size() + tail.size() || name.substr(0, head.size()) != head ||
        name.substr(name.size() - tail.size()) != tail || name[head.size()] == '0') {
        return std::nullopt;
    }
    return parseDigits(name.substr(head.size(), name.size() - head.size() - tail.size()));
}

std::optional<unsigned> pointNumber(std::string_view name, KnownColumn const& known) {
    if (known.name.find('#') == std::string_view::npos) {
        return name == known.name ? std::optional<unsigned>(known.number) : std::nullopt;
    }
    auto const number = numberIn(name, known.name);
    return number && *number <= known.number ? std::optional(static_cast<unsigned>(*number)) : std::nullopt;
}

} // namespace

std::optional<Column> parseColumn(std::string_view name) {
    for (auto const& known : knownColumns) {
        if (auto const number = pointNumber(name, known)) {
            return Column{std::string(name), {known.kind, *number}, known.key};
        }
    }
    return std::nullopt;
}

} // namespace qel::tools
