// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tools/replay/csv/ComputedValues.h"

#include "format/ValueKeys.h"
#include "tools/replay/csv/Recording.h"

#include "tests/tools/replay/ShippedRecordings.h"

#include <gtest/gtest.h>

namespace qel::tools {

namespace {

constexpr std::uint64_t minute = 60000;
constexpr std::uint64_t hour = 60 * minute;

} // namespace

TEST(EnergyCounterTest, FirstReading_CountsNothing) {
    EnergyCounter sut;
    EXPECT_EQ(0.0, sut.total());
    sut.add(hour, 1000.0);
    EXPECT_EQ(0.0, sut.total());
}

TEST(EnergyCounterTest, ConstantPower_CountsPowerTimesTime) {
    EnergyCounter sut;
    sut.add(0, 1500.0);
    sut.add(2 * hour, 1500.0);
    EXPECT_DOUBLE_EQ(3000.0, sut.total());
}

TEST(EnergyCounterTest, ChangingPower_CountsTheTrapezoid) {
    EnergyCounter sut;
    sut.add(0, 0.0);
    sut.add(hour, 1000.0);
    EXPECT_DOUBLE_EQ(500.0, sut.total());
    sut.add(hour + 30 * minute, 2000.0);
    EXPECT_DOUBLE_EQ(500.0 + 750.0, sut.total());
}

TEST(EnergyCounterTest, NegativePower_CountsAsZero) {
    EnergyCounter sut;
    sut.add(0, -1000.0);
    sut.add(hour, -1000.0);
    EXPECT_DOUBLE_EQ(0.0, sut.total());
    sut.add(2 * hour, 1000.0);
    EXPECT_DOUBLE_EQ(500.0, sut.total());
}

TEST(EnergyCounterTest, SameTime_CountsNothing) {
    EnergyCounter sut;
    sut.add(hour, 1000.0);
    sut.add(hour, 3000.0);
    EXPECT_DOUBLE_EQ(0.0, sut.total());
}

class RecordedPowerTest : public testing::Test {
protected:
    double cell(std::size_t row, unsigned short key) const {
        return recording_.cell(row, recording_.find({PointKind::Inlet, 2}, key).value()).value();
    }
    double power(std::size_t row) const { return cell(row, shm::key::activePower); }
    double counter(std::size_t row) const { return cell(row, shm::key::activeEnergy); }

    Recording const recording_ = Recording::read(test::threePhaseFile);
};

// The meter's own counter rose by 1682.84 kWh.
TEST_F(RecordedPowerTest, Total_AgreesWithTheMeterWithinAFewPerMille) {
    EnergyCounter sut;
    double before = 0.0;
    for (std::size_t row = 0; row < recording_.rowCount(); ++row) {
        sut.add(recording_.time(row), power(row));
        ASSERT_GE(sut.total(), before) << "a counter never falls";
        before = sut.total();
    }
    EXPECT_NEAR(1682.84e3, counter(recording_.rowCount() - 1) - counter(0), 0.01e3);
    EXPECT_NEAR(1682.84e3, sut.total(), 0.002 * 1682.84e3);
}

// Without the 13 pauses of more than 196 s, as data/README.md gives it: 1590.7 kWh of power, 1591.6 kWh
// counted.
TEST_F(RecordedPowerTest, TotalWithoutPauses_IsTheDocumentedOne) {
    constexpr std::uint64_t longestStep = 196000;
    double total = 0.0;
    double counted = 0.0;
    int pauses = 0;
    for (std::size_t row = 1; row < recording_.rowCount(); ++row) {
        if (recording_.time(row) - recording_.time(row - 1) > longestStep) {
            ++pauses;
            continue;
        }
        EnergyCounter step;
        step.add(recording_.time(row - 1), power(row - 1));
        step.add(recording_.time(row), power(row));
        total += step.total();
        counted += counter(row) - counter(row - 1);
    }
    EXPECT_EQ(13, pauses);
    EXPECT_NEAR(1590.7e3, total, 0.05e3);
    EXPECT_NEAR(1591.6e3, counted, 0.05e3);
}

// Values of the usual tables, which give one decimal.
TEST(DewPointTest, AgreesWithTables) {
    EXPECT_NEAR(9.3, dewPoint(20.0, 50.0).value(), 0.06);
    EXPECT_NEAR(16.7, dewPoint(25.0, 60.0).value(), 0.06);
    EXPECT_NEAR(-1.2, dewPoint(22.0, 21.0).value(), 0.3);
    EXPECT_NEAR(26.2, dewPoint(30.0, 80.0).value(), 0.06);
    EXPECT_NEAR(-8.7, dewPoint(-5.0, 75.0).value(), 0.1);
}

TEST(DewPointTest, SaturatedAir_IsAtItsDewPoint) {
    for (double const temperature : {-40.0, -10.0, 0.0, 21.5, 50.0}) {
        EXPECT_NEAR(temperature, dewPoint(temperature, 100.0).value(), 1e-9);
    }
}

TEST(DewPointTest, DryAir_HasNone) {
    EXPECT_EQ(std::nullopt, dewPoint(20.0, 0.0));
    EXPECT_EQ(std::nullopt, dewPoint(20.0, -1.0));
}

TEST(DewPointTest, NumbersBeyondTheFormula_HaveNone) {
    EXPECT_EQ(std::nullopt, dewPoint(-243.12, 50.0));
    EXPECT_EQ(std::nullopt, dewPoint(-300.0, 50.0));
    EXPECT_EQ(std::nullopt, dewPoint(20.0, 1e10));
}

} // namespace qel::tools
