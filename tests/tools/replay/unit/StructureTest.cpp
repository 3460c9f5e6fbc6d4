// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tools/replay/unit/Structure.h"

#include "format/ValueKeys.h"
#include "tools/replay/unit/Topology.h"

#include <gtest/gtest.h>

namespace qel::tools {

namespace {

namespace key = shm::key;

constexpr PointId inlet{PointKind::Inlet, 1};
constexpr PointId circuit{PointKind::Circuit, 1};
constexpr PointId socket6{PointKind::Socket, 6};

Structure sample() {
    return Structure({{socket6, key::activePower}, {socket6, key::voltage}, {inlet, key::voltage}});
}

} // namespace

TEST(StructureTest, Empty_IsTheUnit) {
    Structure const sut;
    ASSERT_EQ(1U, sut.points().size());
    EXPECT_TRUE(sut.has(unitPoint));
    EXPECT_EQ(0U, sut.valueCount());
    EXPECT_EQ((std::unordered_set<long long>{pointSvid(unitPoint) | key::pduState}), sut.svids());
}

TEST(StructureTest, Points_AreThoseOfTheValuesAndAllAbove) {
    auto const sut = sample();
    EXPECT_EQ(4U, sut.points().size());
    for (auto const& point : {unitPoint, inlet, circuit, socket6}) {
        EXPECT_TRUE(sut.has(point));
    }
    EXPECT_FALSE(sut.has(PointId{PointKind::Socket, 3}));
}

TEST(StructureTest, Svids_AreValuesAndOwnStates) {
    auto const sut = sample();
    EXPECT_EQ(3U, sut.valueCount());
    EXPECT_EQ((std::unordered_set<long long>{
                  pointSvid(unitPoint) | key::pduState, pointSvid(inlet) | key::state,
                  pointSvid(inlet) | key::voltage, pointSvid(circuit) | key::circuitState,
                  pointSvid(socket6) | key::socket, pointSvid(socket6) | key::voltage,
                  pointSvid(socket6) | key::activePower}),
              sut.svids());
    EXPECT_TRUE(sut.has(pointSvid(socket6) | key::activePower));
    EXPECT_FALSE(sut.has(pointSvid(socket6) | key::current));
}

TEST(StructureTest, Definitions_HaveTheKeysOfTheValuesOnly) {
    auto const definitions = sample().definitions();
    ASSERT_EQ(4U, definitions.size());
    EXPECT_TRUE(definitions.at(pointSvid(unitPoint)).mvs.empty());
    EXPECT_TRUE(definitions.at(pointSvid(circuit)).mvs.empty());
    EXPECT_EQ(1U, definitions.at(pointSvid(inlet)).mvs.count(key::voltage));
    auto const& values = definitions.at(pointSvid(socket6)).mvs;
    EXPECT_EQ(2U, values.size());
    EXPECT_EQ(1U, values.count(key::voltage));
    EXPECT_EQ(1U, values.count(key::activePower));
}

TEST(StructureTest, PointsMissingInAnother_AreTheNewOnes) {
    auto const missing = sample().pointsMissingIn(Structure({{inlet, key::voltage}}));
    ASSERT_EQ(2U, missing.size());
    for (auto const& point : missing) {
        EXPECT_TRUE(point == circuit || point == socket6);
    }
    EXPECT_TRUE(Structure().pointsMissingIn(sample()).empty());
}

} // namespace qel::tools
