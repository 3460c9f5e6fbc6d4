// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "format/StateName.h"

#include <gtest/gtest.h>

#include <limits>
#include <map>
#include <string>
#include <string_view>

namespace {

std::map<int, std::string> const& names() {
    static std::map<int, std::string> const table{
        {-2, "Expected Value"},
        {-1, "Undefined Value"},
        {0, "No Error"},
        {1, "High Alarm"},
        {2, "Low Alarm"},
        {3, "High Warning"},
        {4, "Low Warning"},
        {5, "Lost"},
        {6, "Deactivated"},
        {7, "On, Alarm, Identify"},
        {8, "Off, Alarm, Identify"},
        {9, "On, Alarm"},
        {10, "Off, Alarm"},
        {11, "On, Warning, Identify"},
        {12, "Off, Warning, Identify"},
        {13, "On, Warning"},
        {14, "Off, Warning"},
        {15, "On, Identify"},
        {16, "Off, Identify"},
        {17, "On"},
        {18, "Off"},
        {19, "On, Child Alarm"},
        {20, "Off, Child Alarm"},
        {21, "On, Child Warning"},
        {22, "Off, Child Warning"},
        {23, "Child Alarm"},
        {24, "Child Warning"},
        {25, "Lost Child"},
        {26, "Fix Internal High Alarm"},
        {27, "Fix Internal High Warning"},
        {28, "Fix Internal Low Warning"},
        {29, "Fix Internal Low Alarm"},
        {30, "High User and Internal Error"},
        {31, "High User Error, Internal Warning"},
        {32, "High User Warning, Internal Error"},
        {33, "High User and Internal Warning"},
        {34, "Device is updating"},
        {35, "Device Update Error"},
        {36, "Ongoing switch on"},
        {37, "High"},
        {38, "Low"},
        {39, "Alarm"},
        {40, "Warning"},
        {41, "OK"},
        {42, "Disabled"},
        {43, "Slave version to new"},
    };
    return table;
}

std::string_view nameOf(int state) {
    return shm::stateName(static_cast<eStatus_Bits>(state));
}

TEST(StateNameTest, ThereAre46States) {
    EXPECT_EQ(names().size(), 46U);
}

TEST(StateNameTest, OfEveryStateAndFarAround) {
    for (int state = -70000; state <= 70000; ++state) {
        auto const name = names().find(state);
        ASSERT_EQ(nameOf(state), name != names().end() ? name->second : "UNKNOWN STATE") << state;
    }
}

TEST(StateNameTest, OutsideTheRange_IsUnknown) {
    EXPECT_EQ(nameOf(-3), "UNKNOWN STATE");
    EXPECT_EQ(nameOf(44), "UNKNOWN STATE");
    EXPECT_EQ(nameOf(std::numeric_limits<int>::min()), "UNKNOWN STATE");
    EXPECT_EQ(nameOf(std::numeric_limits<int>::max()), "UNKNOWN STATE");
}

TEST(StateNameTest, AtTheEndsOfTheRange) {
    EXPECT_EQ(nameOf(-2), "Expected Value");
    EXPECT_EQ(nameOf(43), "Slave version to new");
}

} // namespace
