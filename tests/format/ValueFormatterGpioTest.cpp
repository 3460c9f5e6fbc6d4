// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

// The texts of GPIO inputs and outputs.

#include "format/ValueFormatter.h"

#include "domain/GPIOSensor.h"
#include "format/ValueKeys.h"
#include "region/QelShmMVal.h"
#include "tests/format/RawValue.h"
#include "tests/support/LogCapture.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <stdexcept>
#include <string>

namespace {

using dbdata::GPIOSensorConfig;
using dbdata::GPIOSensorData;
using qel::test::LogCapture;
using qel::test::LogEntry;
using qel::test::RawValue;
using qel::test::repeatable;
using tav::ValueFormatter;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr std::uint16_t input = shm::key::input3;

GPIOSensorData configured(int mode, long long pulseConstant = 1000) {
    GPIOSensorConfig config;
    config.set(input, mode, pulseConstant);
    return GPIOSensorData(config);
}

std::string text(GPIOSensorData const& gpio, bool flag, int state, double value = 1,
                 std::uint16_t key = input) {
    RawValue slot(key, value, state);
    return ValueFormatter::str(slot.handle(), gpio, flag);
}

TEST(ValueFormatterGpioTest, InMode2_IsTheNameOfTheState) {
    for (bool const flag : {false, true}) {
        EXPECT_EQ(text(configured(2), flag, 17), "On");
        EXPECT_EQ(text(configured(2), flag, 37), "High");
        EXPECT_EQ(text(configured(2), flag, 43), "Slave version to new");
        EXPECT_EQ(text(configured(2), flag, 44), "UNKNOWN STATE");
        EXPECT_EQ(text(configured(2), flag, -3), "UNKNOWN STATE");
    }
}

TEST(ValueFormatterGpioTest, InMode0_IsTheNameOfTheStateUnlessFlagged) {
    EXPECT_EQ(text(configured(0), false, 38), "Low");
    EXPECT_EQ(text(configured(0), false, 99), "UNKNOWN STATE");
    EXPECT_EQ(text(configured(0), true, 38), "--");
}

TEST(ValueFormatterGpioTest, InMode6_IsTheEnergyCounted) {
    for (bool const flag : {false, true}) {
        EXPECT_EQ(text(configured(6), flag, 0, 12345), "12.3 kWh");
        EXPECT_EQ(text(configured(6, 1), flag, 0, 12345), "12345.0 kWh");
        EXPECT_EQ(text(configured(6, 800), flag, 17, 1000), "1.2 kWh");
        EXPECT_EQ(text(configured(6, -10), flag, 17, 5), "-0.5 kWh");
    }
}

TEST(ValueFormatterGpioTest, InMode6_WithoutAPulseConstant_IsInfinite) {
    EXPECT_EQ(text(configured(6, 0), false, 0, 1), "inf kWh");
}

TEST(ValueFormatterGpioTest, InEveryOtherMode_IsMissing) {
    for (int mode = -256; mode <= 256; ++mode) {
        if (mode == 0 || mode == 2 || mode == 6) {
            continue;
        }
        EXPECT_EQ(text(configured(mode), false, 17), "--") << mode;
        EXPECT_EQ(text(configured(mode), true, 17), "--") << mode;
    }
}

TEST(ValueFormatterGpioTest, OfMissingAndExpectedValues_AsksNoConfiguration) {
    LogCapture const log;
    GPIOSensorData const nothing{GPIOSensorConfig()};

    EXPECT_EQ(text(nothing, false, -1), "--");
    EXPECT_EQ(text(nothing, false, -2), "n/a");
    EXPECT_EQ(text(nothing, false, -2, 1, 0xFFFF), "--");
    EXPECT_EQ(text(configured(2), false, -1), "--");
    EXPECT_EQ(text(configured(6), false, -2), "n/a");
    EXPECT_EQ(ValueFormatter::str(shm::QelShmMVal(), nothing, false), "--");

    EXPECT_THAT(log.entries(), IsEmpty());
}

TEST(ValueFormatterGpioTest, OfAnInputThatIsNotConfigured_IsMissingAndLogged) {
    GPIOSensorConfig config;
    config.set(input + 1, 2, 1000);
    std::string complaint;
    try {
        config.mode(input);
    } catch (std::out_of_range const& error) {
        complaint = error.what();
    }
    ASSERT_NE(complaint, "");
    LogCapture const log;

    EXPECT_EQ(text(GPIOSensorData(config), false, 17), "--");

    EXPECT_THAT(log.entries(), ElementsAre(LogEntry{"qel.shm.access.reader", 300, "str: " + complaint}));
}

TEST(ValueFormatterGpioTest, OfAnInputThatIsNotConfigured_WithErrorsOff_LogsNothing) {
    LogCapture const log("qel", log4cpp::Priority::CRIT);

    EXPECT_EQ(text(GPIOSensorData{GPIOSensorConfig()}, false, 17), "--");

    EXPECT_THAT(log.entries(), IsEmpty());
}

TEST(ValueFormatterGpioTest, OfAnyBytes) {
    auto random = repeatable(6);
    LogCapture const quiet("qel", log4cpp::Priority::FATAL);
    RawValue slot;
    for (int i = 0; i < 20000; ++i) {
        slot.randomize(random);
        if (i % 4 != 0) {
            slot.set(qel::test::field::valueKey, input);
        }
        auto const shown = ValueFormatter::str(slot.handle(), configured(i % 7), (random() & 1U) != 0);
        ASSERT_LE(shown.size(), 31U);
        ASSERT_NE(shown, "");
    }
}

} // namespace
