// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tools/replay/unit/Topology.h"

#include "format/ValueKeys.h"
#include "region/QelShmMPnt.h"
#include "region/QelShmRecords.h"

#include <gtest/gtest.h>

#include <map>
#include <set>
#include <stdexcept>
#include <string>
#include <vector>

namespace qel::tools {

namespace {

namespace key = shm::key;

long long id(unsigned long long bits) {
    return static_cast<long long>(bits);
}

std::vector<PointId> allPoints() {
    std::vector<PointId> points{
        unitPoint, {PointKind::Inlet, 1}, {PointKind::Inlet, 2}, sensorPoint, socketGroup};
    for (unsigned number = 1; number <= 3; ++number) {
        points.push_back({PointKind::Circuit, number});
        points.push_back({PointKind::Phase, number});
    }
    for (unsigned number = 1; number <= 10; ++number) {
        points.push_back({PointKind::Socket, number});
    }
    return points;
}

std::string typeText(PointId const& point) {
    shm::QelShmMP slot{};
    slot.guid = pointSvid(point);
    slot.type = static_cast<std::uint8_t>(typeCode(point));
    return shm::QelShmMPnt(&slot).tstr();
}

} // namespace

// Analyser A measured outlets 3 and 6, B 1, 2, 4 and 5, C 7 to 10.
TEST(TopologyTest, Circuits_AreTheAnalysersOfTheRecording) {
    EXPECT_EQ((std::vector<unsigned>{3, 6}), outletsOfCircuit(1));
    EXPECT_EQ((std::vector<unsigned>{1, 2, 4, 5}), outletsOfCircuit(2));
    EXPECT_EQ((std::vector<unsigned>{7, 8, 9, 10}), outletsOfCircuit(3));
    EXPECT_TRUE(outletsOfCircuit(4).empty());
    EXPECT_EQ(1U, circuitOfOutlet(6));
    EXPECT_THROW(circuitOfOutlet(11), std::out_of_range);
    EXPECT_THROW(circuitOfOutlet(0), std::out_of_range);
}

TEST(TopologyTest, SensorIds_CarryDeviceKindAndLevels) {
    EXPECT_EQ(id(0x0100FFFFFFFF0000), pointSvid(unitPoint));
    EXPECT_EQ(id(0x010001FFFFFF0000), pointSvid({PointKind::Inlet, 1}));
    EXPECT_EQ(id(0x010002FFFFFF0000), pointSvid({PointKind::Inlet, 2}));
    EXPECT_EQ(id(0x010001FF03FF0000), pointSvid({PointKind::Circuit, 3}));
    EXPECT_EQ(id(0x010001FF02050000), pointSvid({PointKind::Socket, 5}));
    EXPECT_EQ(id(0x010001FF030A0000), pointSvid({PointKind::Socket, 10}));
    EXPECT_EQ(id(0x01000203FFFF0000), pointSvid({PointKind::Phase, 3}));
    EXPECT_EQ(id(0x01010101FFFF0000), pointSvid(sensorPoint));
    EXPECT_EQ(id(0x0102FFFFFF010000), pointSvid(socketGroup));
}

TEST(TopologyTest, SensorIds_AreDifferentForAllPoints) {
    std::set<long long> svids;
    for (auto const& point : allPoints()) {
        EXPECT_TRUE(svids.insert(pointSvid(point)).second);
    }
    EXPECT_EQ(21U, svids.size());
}

TEST(TopologyTest, Parents_LeadToTheUnit) {
    EXPECT_TRUE(parentPoint({PointKind::Socket, 6}) == (PointId{PointKind::Circuit, 1}));
    EXPECT_TRUE(parentPoint({PointKind::Circuit, 3}) == (PointId{PointKind::Inlet, 1}));
    EXPECT_TRUE(parentPoint({PointKind::Phase, 2}) == (PointId{PointKind::Inlet, 2}));
    EXPECT_TRUE(parentPoint({PointKind::Inlet, 2}) == unitPoint);
    EXPECT_TRUE(parentPoint(sensorPoint) == unitPoint);
    EXPECT_FALSE(parentPoint(unitPoint));
    EXPECT_FALSE(parentPoint(socketGroup));
}

TEST(TopologyTest, TypeCodes_HaveTheTextsOfWhatIsBuilt) {
    EXPECT_EQ("Master", typeText(unitPoint));
    EXPECT_EQ("1P", typeText({PointKind::Inlet, 1}));
    EXPECT_EQ("4PWYE", typeText({PointKind::Inlet, 2}));
    EXPECT_EQ("16A;C", typeText({PointKind::Circuit, 1}));
    EXPECT_EQ("Schuko", typeText({PointKind::Socket, 1}));
    EXPECT_EQ("Phase", typeText({PointKind::Phase, 1}));
    EXPECT_EQ("I2C Temperature-Humidity Sensor", typeText(sensorPoint));
    EXPECT_EQ("SG", typeText(socketGroup));
}

TEST(TopologyTest, StateKeys_AreThePointLevelKeysOfEachKind) {
    EXPECT_EQ(key::pduState, stateKey(PointKind::Unit));
    EXPECT_EQ(key::state, stateKey(PointKind::Inlet));
    EXPECT_EQ(key::circuitState, stateKey(PointKind::Circuit));
    EXPECT_EQ(key::phaseState, stateKey(PointKind::Phase));
    EXPECT_EQ(key::socket, stateKey(PointKind::Socket));
    EXPECT_EQ(key::sensorState, stateKey(PointKind::Sensor));
    EXPECT_EQ(key::socketGroupState, stateKey(PointKind::Group));
}

} // namespace qel::tools
