// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tools/replay/csv/DewPoint.h"

#include <gtest/gtest.h>

namespace qel::tools {

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
