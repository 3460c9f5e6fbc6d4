// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "domain/SensorType.h"

#include <gtest/gtest.h>

#include <iomanip>
#include <sstream>
#include <string>

namespace {

std::string text(int number) {
    std::ostringstream out;
    out << static_cast<SensorType::SensorType>(number);
    return out.str();
}

TEST(SensorTypeTest, KindsAreNumbered) {
    static_assert(sizeof(SensorType::SensorType) == 1);
    EXPECT_EQ(SensorType::Any, -2);
    EXPECT_EQ(SensorType::Undefined, -1);
    EXPECT_EQ(SensorType::Electrical, 0);
    EXPECT_EQ(SensorType::I2C, 1);
    EXPECT_EQ(SensorType::SocketGroup, 2);
    EXPECT_EQ(SensorType::Reserved, 3);
    EXPECT_EQ(SensorType::RCM, 4);
}

TEST(SensorTypeTest, Print_GivesTheName) {
    EXPECT_EQ(text(-2), "Any");
    EXPECT_EQ(text(-1), "Undefined");
    EXPECT_EQ(text(0), "Electrical");
    EXPECT_EQ(text(1), "I2C");
    EXPECT_EQ(text(2), "SocketGroup");
    EXPECT_EQ(text(3), "Reserved");
    EXPECT_EQ(text(4), "RCM");
}

TEST(SensorTypeTest, Print_EveryOtherNumberShowsInDecimal) {
    for (int number = -128; number <= 127; ++number) {
        if (number < -2 || number > 4) {
            EXPECT_EQ(text(number), "SensorType(" + std::to_string(number) + ")");
        }
    }
}

TEST(SensorTypeTest, Print_LeavesTheBaseAlone) {
    std::ostringstream out;
    out << std::hex << std::showbase << static_cast<SensorType::SensorType>(100) << ' ' << 100;
    EXPECT_EQ(out.str(), "SensorType(100) 0x64");
}

} // namespace
