// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tools/replay/csv/Column.h"

#include "format/ValueKeys.h"
#include "tests/tools/replay/ShippedRecordings.h"

#include <gtest/gtest.h>

#include <map>
#include <string>
#include <vector>

namespace qel::tools {

namespace {

namespace key = shm::key;

struct Quantity {
    std::string name;
    unsigned short key;
};

// Written from the headers of the recordings: what each kind of point has, with its key.
std::vector<Quantity> const measured{{"active_energy_Wh", key::activeEnergy},
                                     {"active_power_W", key::activePower},
                                     {"apparent_power_VA", key::apparentPower},
                                     {"current_A", key::current},
                                     {"power_factor", key::powerFactor},
                                     {"reactive_power_var", key::reactivePower},
                                     {"voltage_V", key::voltage}};

std::map<std::string, Column> allColumns() {
    std::map<std::string, Column> columns;
    auto const add = [&](std::string const& name, PointKind kind, unsigned number, unsigned short key) {
        columns.emplace(name, Column{name, {kind, number}, key});
    };
    for (auto const& quantity : measured) {
        add("inlet1_" + quantity.name, PointKind::Inlet, 1, quantity.key);
        for (unsigned outlet = 1; outlet <= 10; ++outlet) {
            add("outlet" + std::to_string(outlet) + '_' + quantity.name, PointKind::Socket, outlet,
                quantity.key);
        }
        for (unsigned phase = 1; phase <= 3; ++phase) {
            add("phase" + std::to_string(phase) + '_' + quantity.name, PointKind::Phase, phase, quantity.key);
        }
        if (quantity.key != key::voltage && quantity.key != key::current) {
            add("total_" + quantity.name, PointKind::Inlet, 2, quantity.key);
        }
    }
    add("inlet1_frequency_Hz", PointKind::Inlet, 1, key::frequency);
    for (unsigned outlet = 1; outlet <= 10; ++outlet) {
        add("outlet" + std::to_string(outlet) + "_frequency_Hz", PointKind::Socket, outlet, key::frequency);
    }
    add("frequency_Hz", PointKind::Inlet, 2, key::frequency);
    add("phase12_voltage_V", PointKind::Inlet, 2, key::deltaVoltage12);
    add("phase23_voltage_V", PointKind::Inlet, 2, key::deltaVoltage23);
    add("phase31_voltage_V", PointKind::Inlet, 2, key::deltaVoltage31);
    add("sensor1_temperature_degC", PointKind::Sensor, 1, key::temperature);
    add("sensor1_relative_humidity_percent", PointKind::Sensor, 1, key::humidity);
    return columns;
}

} // namespace

TEST(ColumnTest, Parse_KnowsPointAndKeyOfEveryColumn) {
    auto const columns = allColumns();
    ASSERT_EQ(8U + 80U + 21U + 5U + 1U + 3U + 2U, columns.size());
    for (auto const& [name, expected] : columns) {
        auto const sut = parseColumn(name);
        ASSERT_TRUE(sut) << name;
        EXPECT_EQ(name, sut->name);
        EXPECT_TRUE(expected.point == sut->point) << name;
        EXPECT_EQ(expected.key, sut->key) << name;
    }
}

TEST(ColumnTest, Parse_KnowsEveryColumnOfTheRecordings) {
    std::size_t count = 0;
    for (auto const* const file : test::shippedRecordings) {
        for (auto const& name : test::columnsOf(file)) {
            EXPECT_TRUE(parseColumn(name)) << name;
            ++count;
        }
    }
    EXPECT_EQ(77U + 30U + 2U, count);
}

class UnknownColumnTest : public testing::TestWithParam<char const*> {};

TEST_P(UnknownColumnTest, Parse_RefusesIt) {
    EXPECT_FALSE(parseColumn(GetParam()));
}

INSTANTIATE_TEST_SUITE_P(Names, UnknownColumnTest,
                         testing::Values("", "timestamp_utc", "inlet_voltage_V", "inlet0_voltage_V",
                                         "inlet2_voltage_V", "inlet01_voltage_V", "outlet11_voltage_V",
                                         "outlet-1_voltage_V", "outlet+1_voltage_V", "outlet1 _voltage_V",
                                         "outlet1_voltage", "outlet1_voltage_mV", "Outlet1_voltage_V",
                                         "outlet1_voltage_V ", "outlet4294967297_voltage_V",
                                         "phase4_voltage_V", "phase13_voltage_V", "phase12_current_A",
                                         "phase1_frequency_Hz", "total_voltage_V", "total_current_A",
                                         "inlet#_voltage_V", "sensor2_temperature_degC",
                                         "sensor1_dew_point_degC", "frequency", "circuit1_active_power_W"));

} // namespace qel::tools
