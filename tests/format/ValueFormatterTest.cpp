// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "format/ValueFormatter.h"

#include "format/ValueKeys.h"
#include "region/QelShmMVal.h"
#include "tests/format/RawValue.h"
#include "tests/support/CommaLocale.h"
#include "tests/support/LogCapture.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <limits>
#include <map>
#include <random>
#include <string>
#include <vector>

namespace {

namespace field = qel::test::field;
namespace key = shm::key;
using qel::test::CommaLocale;
using qel::test::LogCapture;
using qel::test::LogEntry;
using qel::test::RawValue;
using qel::test::repeatable;
using tav::ValueFormatter;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr double infinity = std::numeric_limits<double>::infinity();
constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();
constexpr long long highest = std::numeric_limits<long long>::max();
constexpr long long lowest = std::numeric_limits<long long>::min();

struct Row {
    std::string number;
    std::string unit; // as it stands in a printf format, "" for none
    int scalepos;     // 0 where undefined
};

/// Every key with a row of its own.
std::map<int, Row> const& rows() {
    static std::map<int, Row> const table{
        {0, {"%.1f", "", 0}},
        {1, {"%.1f", "V", 2}},
        {2, {"%.1f", "V", 2}},
        {4, {"%.2f", "A", 2}},
        {5, {"%.2f", "A", 2}},
        {7, {"%.1f", "mA", 1}},
        {8, {"%.1f", "mA", 1}},
        {9, {"%.2f", "A", 2}},
        {16, {"%.0f", "\xC2\xB0", 0}},
        {17, {"%.3f", "", 3}},
        {18, {"%.1f", "VA", 1}},
        {19, {"%.1f", "W", 1}},
        {20, {"%.1f", "W", 1}},
        {22, {"%.1f", "VAR", 1}},
        {23, {"%.2f", "Hz", 1}},
        {24, {"%.2f", "A", 2}},
        {32, {"%.1f", "kVAh", 1}},
        {33, {"%.1f", "kVAh", 1}},
        {34, {"%.1f", "kVARh", 1}},
        {35, {"%.1f", "kVARh", 1}},
        {36, {"%.1f", "kWh", 1}},
        {37, {"%.1f", "kWh", 1}},
        {38, {"%.1f", "kWh", 1}},
        {59, {"%.1f", "", 0}},
        {72, {"%.1f", "", 0}},
        {80, {"%.1f", "V", 2}},
        {81, {"%.1f", "V", 2}},
        {82, {"%.1f", "V", 2}},
        {256,
         {"%.1f",
          "\xC2\xB0"
          "C",
          1}},
        {257, {"%.1f", "%%", 1}},
        {266,
         {"%.1f",
          "\xC2\xB0"
          "C",
          1}},
    };
    return table;
}

Row rowOf(int key) {
    auto const row = rows().find(key);
    return row != rows().end() ? row->second : Row{"%.1f", "", 0};
}

std::string plainFormat(int key, std::string const& separator) {
    auto const row = rowOf(key);
    return row.unit.empty() ? row.number : row.number + separator + row.unit;
}

/// What printf itself makes of the format, in 31 characters.
std::string plainText(int key, double value, std::string const& separator) {
    std::array<char, 32> text{};
    auto const format = plainFormat(key, separator);
    static_cast<void>(std::snprintf(text.data(), text.size(), format.c_str(), value));
    return text.data();
}

/// Deliberately no rounding function: the half is part of the rule under test.
long long truncated(double number) {
    return static_cast<long long>(number);
}

unsigned short keyOf(int number) {
    return static_cast<unsigned short>(number);
}

double anyDouble(std::mt19937& random) {
    RawValue bytes;
    bytes.randomize(random);
    return bytes.get<double>(field::number);
}

TEST(ValueFormatterTest, Format_OfEveryKey) {
    for (int key = 0; key <= 65535; ++key) {
        for (auto const* const separator : {" ", "|", "", " - "}) {
            ASSERT_EQ(ValueFormatter::format(keyOf(key), separator), plainFormat(key, separator)) << key;
        }
    }
}

TEST(ValueFormatterTest, Format_JoinsNumberAndUnit) {
    EXPECT_EQ(ValueFormatter::format(key::voltage, " "), "%.1f V");
    EXPECT_EQ(ValueFormatter::format(key::temperature, " "), "%.1f \u00B0C");
    EXPECT_EQ(ValueFormatter::format(key::phaseAngle, "|"), "%.0f|\u00B0");
    EXPECT_EQ(ValueFormatter::format(key::humidity, " "), "%.1f %%");
}

TEST(ValueFormatterTest, Format_WithoutUnit_LeavesTheSeparatorOut) {
    EXPECT_EQ(ValueFormatter::format(key::powerFactor, " "), "%.3f");
    EXPECT_EQ(ValueFormatter::format(3, " "), "%.1f");
}

TEST(ValueFormatterTest, Str_OfEveryKey_IsWhatPrintfMakesOfTheFormat) {
    std::vector<double> const values{0,    -0.0, 1.234, -230.456, 0.05,   0.25,     99999.95,  1e15,
                                     -1e9, 0.5,  1.5,   2.5,      5e-324, infinity, -infinity, notANumber};
    for (int key = 0; key <= 65535; ++key) {
        auto const value = values[static_cast<std::size_t>(key) % values.size()];
        ASSERT_EQ(ValueFormatter::str(keyOf(key), value, " "), plainText(key, value, " ")) << key;
    }
    for (auto const& row : rows()) {
        for (auto const value : values) {
            ASSERT_EQ(ValueFormatter::str(keyOf(row.first), value, "|"), plainText(row.first, value, "|"))
                << row.first << ", " << value;
        }
    }
}

TEST(ValueFormatterTest, Str_RoundsToTheKeysDecimals) {
    EXPECT_EQ(ValueFormatter::str(key::voltage, 230.1, " "), "230.1 V");
    EXPECT_EQ(ValueFormatter::str(key::current, 1.234, " "), "1.23 A");
    EXPECT_EQ(ValueFormatter::str(key::phaseAngle, 89.7, " "), "90 \u00B0");
    EXPECT_EQ(ValueFormatter::str(key::powerFactor, 0.95, " "), "0.950");
    EXPECT_EQ(ValueFormatter::str(key::humidity, 45.0, " "), "45.0 %");
    EXPECT_EQ(ValueFormatter::str(3, 7, " "), "7.0");
}

TEST(ValueFormatterTest, Str_TakesTheSeparatorAsPrintfDoes) {
    EXPECT_EQ(ValueFormatter::str(key::voltage, 1, "%%"), "1.0%V");
    EXPECT_EQ(ValueFormatter::str(key::humidity, 1, "%%%%"), "1.0%%%");
    EXPECT_EQ(ValueFormatter::str(key::voltage, 1, ""), "1.0V");
}

TEST(ValueFormatterTest, Str_NeverReadsAnArgumentForTheSeparator) {
    EXPECT_EQ(ValueFormatter::str(key::voltage, 1, "%s%n"), "1.0%s%nV");
}

TEST(ValueFormatterTest, Str_LongerThan31Characters_IsCutThere) {
    EXPECT_EQ(ValueFormatter::str(3, 1e308, " "), "1000000000000000010979063629440");
    EXPECT_EQ(ValueFormatter::str(key::voltage, -1e308, " "), "-100000000000000001097906362944");
    EXPECT_EQ(ValueFormatter::str(3, 1e29, " "), "99999999999999991433150857216.0"); // 31 characters
    EXPECT_EQ(ValueFormatter::str(key::voltage, 1e29, " "),
              "99999999999999991433150857216.0"); // no room for the unit
    EXPECT_EQ(ValueFormatter::str(key::voltage, 1e27, " "), "1000000000000000013287555072.0 "); // nor here
    EXPECT_EQ(ValueFormatter::str(key::voltage, 1e26, " "), "100000000000000004764729344.0 V"); // 31 with it
    EXPECT_EQ(ValueFormatter::str(key::voltage, 1, std::string(100, '-')), "1.0" + std::string(28, '-'));
}

TEST(ValueFormatterTest, Str_TakesTheSeparatorUpToAZero) {
    EXPECT_EQ(ValueFormatter::str(key::voltage, 1, std::string("-\0-", 3)), "1.0-");
}

TEST(ValueFormatterTest, NoTextFollowsTheLocale) {
    CommaLocale const locale;
    if (!locale.problem().empty()) {
        GTEST_SKIP() << locale.problem();
    }
    ASSERT_EQ(plainText(key::voltage, 230.1, " "), "230,1 V") << "what printf itself writes";
    EXPECT_EQ(ValueFormatter::str(key::voltage, 230.1, " "), "230.1 V");
    EXPECT_EQ(ValueFormatter::str(key::powerFactor, 0.95, "|"), "0.950");
    EXPECT_EQ(ValueFormatter::str(key::phaseAngle, 1234567.0, "|"), "1234567|\u00B0");
    EXPECT_EQ(ValueFormatter::strForDisplay(key::voltage, 230.1, eStatus_NoError), "230.1|V");
    EXPECT_EQ(ValueFormatter::format(key::current, " "), "%.2f A");
    RawValue slot(key::current, 1.234, 0);
    EXPECT_EQ(ValueFormatter::str(slot.handle()), "1.23 A");
}

TEST(ValueFormatterTest, StrOfASlot_JoinsWithABlank) {
    RawValue slot(key::voltage, 230.1, 0);
    EXPECT_EQ(ValueFormatter::str(slot.handle()), "230.1 V");
}

TEST(ValueFormatterTest, StrOfASlot_OfEveryState) {
    for (int state = -100; state <= 100; ++state) {
        RawValue slot(key::current, 1.234, state);
        ASSERT_EQ(ValueFormatter::str(slot.handle()), state == -1   ? "--"
                                                      : state == -2 ? "n/a"
                                                                    : "1.23 A")
            << state;
    }
}

TEST(ValueFormatterTest, StrOfAFreeSlot_IsMissingWhateverItsState) {
    for (int const state : {-3, -2, -1, 0, 17, 43, 1000}) {
        RawValue slot(0xFFFF, 1, state);
        EXPECT_EQ(ValueFormatter::str(slot.handle()), "--") << state;
    }
}

TEST(ValueFormatterTest, StrOfANullHandle_IsMissing) {
    EXPECT_EQ(ValueFormatter::str(shm::QelShmMVal()), "--");
}

TEST(ValueFormatterTest, StrOfASlot_OfAnyBytes) {
    auto random = repeatable(3);
    RawValue slot;
    for (int i = 0; i < 20000; ++i) {
        slot.randomize(random);
        if (i % 2 != 0) {
            slot.set(field::valueKey, static_cast<std::uint16_t>(random() % 300));
            slot.set(field::valueState, static_cast<std::int32_t>(random() % 50) - 3);
        }
        auto const key = slot.get<std::uint16_t>(field::valueKey);
        auto const state = slot.get<std::int32_t>(field::valueState);
        auto const expected = key == 0xFFFF || state == -1 ? "--"
                              : state == -2                ? "n/a"
                                            : plainText(key, slot.get<double>(field::number), " ");
        ASSERT_EQ(ValueFormatter::str(slot.handle()), expected);
    }
}

TEST(ValueFormatterTest, ScaleToInteger_MultipliesAndRoundsAwayFromTheHalf) {
    EXPECT_EQ(ValueFormatter::scale(key::voltage, 230.456), 23046);
    EXPECT_EQ(ValueFormatter::scale(key::powerFactor, 0.95), 950);
    EXPECT_EQ(ValueFormatter::scale(key::voltage, 2.345), 235);
    EXPECT_EQ(ValueFormatter::scale(key::state, 17.0), 17);
    EXPECT_EQ(ValueFormatter::scale(key::voltage, 0.0), 0);
}

TEST(ValueFormatterTest, ScaleToInteger_AddsTheHalfToNegativeValuesToo) {
    EXPECT_EQ(ValueFormatter::scale(key::voltage, -1.26), -125);
    EXPECT_EQ(ValueFormatter::scale(key::voltage, -2.345), -234);
    EXPECT_EQ(ValueFormatter::scale(key::state, -0.5), 0);
    EXPECT_EQ(ValueFormatter::scale(key::state, -1.0), 0);
}

TEST(ValueFormatterTest, ScaleToInteger_OfEveryKey) {
    auto random = repeatable(4);
    std::uniform_real_distribution<double> values(-1e6, 1e6);
    LogCapture const quiet("qel", log4cpp::Priority::FATAL);
    for (int key = 0; key <= 65535; ++key) {
        double factor = 1;
        for (int i = 0; i < rowOf(key).scalepos; ++i) {
            factor *= 10;
        }
        auto const value = values(random);
        ASSERT_EQ(ValueFormatter::scale(keyOf(key), value), truncated(value * factor + 0.5)) << key;
    }
}

TEST(ValueFormatterTest, ScaleToInteger_BeyondTheIntegers_IsTheNearestOne) {
    for (auto const key : {keyOf(key::voltage), keyOf(key::powerFactor), keyOf(key::state)}) {
        EXPECT_EQ(ValueFormatter::scale(key, 1e300), highest);
        EXPECT_EQ(ValueFormatter::scale(key, -1e300), lowest);
        EXPECT_EQ(ValueFormatter::scale(key, infinity), highest);
        EXPECT_EQ(ValueFormatter::scale(key, -infinity), lowest);
        EXPECT_EQ(ValueFormatter::scale(key, std::numeric_limits<double>::max()), highest);
        EXPECT_EQ(ValueFormatter::scale(key, notANumber), 0);
    }
}

TEST(ValueFormatterTest, ScaleToInteger_AtTheEndsOfTheIntegers) {
    double const beyond = std::ldexp(1.0, 63);
    EXPECT_EQ(ValueFormatter::scale(key::state, beyond), highest);
    EXPECT_EQ(ValueFormatter::scale(key::state, std::nextafter(beyond, 0)), highest - 1023);
    EXPECT_EQ(ValueFormatter::scale(key::state, -beyond), lowest);
    EXPECT_EQ(ValueFormatter::scale(key::state, std::nextafter(-beyond, -infinity)), lowest);
    EXPECT_EQ(ValueFormatter::scale(key::state, std::nextafter(-beyond, 0)), lowest + 1024);
}

TEST(ValueFormatterTest, ScaleToInteger_OfAnyBytes) {
    auto random = repeatable(5);
    for (int i = 0; i < 20000; ++i) {
        auto const value = anyDouble(random);
        auto const scaled = ValueFormatter::scale(key::powerFactor, value);
        if (std::isnan(value)) {
            ASSERT_EQ(scaled, 0);
        } else if (std::fabs(value) > 9.3e15) {
            ASSERT_EQ(scaled, value > 0 ? highest : lowest) << value;
        } else if (std::fabs(value) < 9.2e15) {
            ASSERT_EQ(scaled, truncated(value * 1000 + 0.5)) << value;
        }
    }
}

TEST(ValueFormatterTest, ScaleToDouble_Divides) {
    EXPECT_DOUBLE_EQ(ValueFormatter::scale(key::voltage, 23046LL), 230.46);
    EXPECT_DOUBLE_EQ(ValueFormatter::scale(key::powerFactor, 950LL), 0.95);
    EXPECT_DOUBLE_EQ(ValueFormatter::scale(key::differentialCurrentAc, -15LL), -1.5);
    EXPECT_DOUBLE_EQ(ValueFormatter::scale(key::state, highest), 9223372036854775807.0);
    EXPECT_DOUBLE_EQ(ValueFormatter::scale(key::voltage, lowest), -92233720368547758.08);
}

TEST(ValueFormatterTest, ScaleToDouble_OfEveryKey) {
    LogCapture const quiet("qel", log4cpp::Priority::FATAL);
    for (int key = 0; key <= 65535; ++key) {
        double const number = key - 30000;
        ASSERT_DOUBLE_EQ(ValueFormatter::scale(keyOf(key), static_cast<long long>(key - 30000)),
                         number / std::pow(10, rowOf(key).scalepos))
            << key;
    }
}

TEST(ValueFormatterTest, Scale_OfAKeyWithoutScale_WarnsAndKeepsTheValue) {
    LogCapture log;
    auto const warning =
        LogEntry{"qel.shm.access.format", 400, "scalepos: scaling for Phase Angle has not been defined"};

    EXPECT_EQ(ValueFormatter::scale(key::phaseAngle, 90.0), 90);
    EXPECT_THAT(log.take(), ElementsAre(warning));

    EXPECT_EQ(ValueFormatter::scale(key::phaseAngle, 90LL), 90.0);
    EXPECT_THAT(log.take(), ElementsAre(warning));
}

TEST(ValueFormatterTest, Formatting_LogsNothing) {
    LogCapture const log;
    RawValue slot(3, 1, 0);

    ValueFormatter::format(3, " ");
    ValueFormatter::str(3, 1, " ");
    ValueFormatter::str(slot.handle());
    ValueFormatter::strForDisplay(3, 1, eStatus_NoError);
    ValueFormatter::scale(key::voltage, 1.0);

    EXPECT_THAT(log.entries(), IsEmpty());
}

} // namespace
