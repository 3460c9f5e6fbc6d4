// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "domain/GPIOSensor.h"

#include <gtest/gtest.h>

#include <stdexcept>

namespace {

TEST(GPIOSensorTest, Config_GivesModeAndPulseConstantOfEachInput) {
    dbdata::GPIOSensorConfig sut;
    sut.set(0x102, dbdata::GPIOSensorConfig::PulseCounter, 1000);
    sut.set(0x103, dbdata::GPIOSensorConfig::State, 0);
    EXPECT_EQ(sut.mode(0x102), 6);
    EXPECT_EQ(sut.pc(0x102), 1000);
    EXPECT_EQ(sut.mode(0x103), 2);
    EXPECT_EQ(sut.pc(0x103), 0);
}

TEST(GPIOSensorTest, Config_SettingAgainReplaces) {
    dbdata::GPIOSensorConfig sut;
    sut.set(0x102, 6, 1000);
    sut.set(0x102, 0, 5);
    EXPECT_EQ(sut.mode(0x102), 0);
    EXPECT_EQ(sut.pc(0x102), 5);
}

TEST(GPIOSensorTest, Config_KeyThatWasNeverSetThrows) {
    dbdata::GPIOSensorConfig sut;
    sut.set(0x102, 6, 1000);
    EXPECT_THROW(static_cast<void>(sut.mode(0x103)), std::out_of_range);
    EXPECT_THROW(static_cast<void>(sut.pc(0x103)), std::out_of_range);
}

TEST(GPIOSensorTest, Data_HoldsItsConfiguration) {
    dbdata::GPIOSensorConfig config;
    config.set(0x109, 6, 800);
    dbdata::GPIOSensorData const sut(config);
    config.set(0x109, 0, 1);
    EXPECT_EQ(sut.config().mode(0x109), 6);
    EXPECT_EQ(sut.config().pc(0x109), 800);
}

} // namespace
