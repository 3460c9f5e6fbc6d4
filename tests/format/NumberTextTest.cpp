// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "format/NumberText.h"

#include "tests/format/RawValue.h"
#include "tests/support/CommaLocale.h"
#include "tests/support/Rounds.h"

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <ios>
#include <limits>
#include <random>
#include <sstream>
#include <string>

namespace {

using qel::test::CommaLocale;
using qel::test::repeatable;
using shm::fixedText;
using shm::integerText;
using std::ios_base;

constexpr double infinity = std::numeric_limits<double>::infinity();

std::string printfText(double number, int decimals) {
    std::array<char, 400> text{};
    static_cast<void>(std::snprintf(text.data(), text.size(), "%.*f", decimals, number));
    return text.data();
}

std::string streamText(std::uint64_t number, ios_base::fmtflags flags) {
    std::ostringstream out;
    out.imbue(std::locale::classic());
    out.flags(flags);
    out << number;
    return out.str();
}

TEST(NumberTextFixedTest, IsThatOfPrintf) {
    for (double const number : {0.0,
                                -0.0,
                                0.05,
                                0.15,
                                0.25,
                                0.5,
                                1.5,
                                2.5,
                                0.95,
                                9.95,
                                9.995,
                                99999.95,
                                1e15,
                                1e22,
                                1e23,
                                5e-324,
                                std::numeric_limits<double>::min(),
                                std::numeric_limits<double>::max(),
                                infinity,
                                std::numeric_limits<double>::quiet_NaN()}) {
        for (int decimals = 0; decimals <= 16; ++decimals) {
            ASSERT_EQ(fixedText(number, decimals), printfText(number, decimals));
            ASSERT_EQ(fixedText(-number, decimals), printfText(-number, decimals));
        }
    }
    EXPECT_EQ(fixedText(-0.0, 1), "-0.0");
    EXPECT_EQ(fixedText(-0.04, 1), "-0.0");
    EXPECT_EQ(fixedText(2.5, 0), "2");
    EXPECT_EQ(fixedText(-infinity, 2), "-inf");
    EXPECT_EQ(fixedText(std::copysign(std::numeric_limits<double>::quiet_NaN(), -1.0), 2), "-nan");
}

TEST(NumberTextFixedTest, OfAnyNumber_IsThatOfPrintf) {
    auto random = repeatable(7);
    std::uniform_real_distribution<double> measured(-100000, 100000);
    std::uniform_int_distribution<long long> halves(-2000000000, 2000000000);
    int const count = qel::test::rounds(100000, 5000000);
    for (int i = 0; i < count; ++i) {
        std::uint64_t const bits = (static_cast<std::uint64_t>(random()) << 32U) | random();
        double any = 0;
        std::memcpy(&any, &bits, sizeof any);
        int const decimals = i % 4;
        // Of all sizes, of those that are measured, and those whose last digit is in doubt.
        auto const half = static_cast<double>(halves(random)) / 2000;
        for (double const number : {any, measured(random), half, std::nextafter(half, infinity)}) {
            ASSERT_EQ(fixedText(number, decimals), printfText(number, decimals)) << bits << ", " << decimals;
        }
    }
}

TEST(NumberTextFixedTest, DoesNotFollowTheLocale) {
    CommaLocale const locale;
    if (!locale.problem().empty()) {
        GTEST_SKIP() << locale.problem();
    }
    ASSERT_EQ(printfText(1234.5, 1), "1234,5");
    EXPECT_EQ(fixedText(1234.5, 1), "1234.5");
    EXPECT_EQ(fixedText(1e20, 3), "100000000000000000000.000");
}

TEST(NumberTextIntegerTest, IsThatOfAStream) {
    auto random = repeatable(8);
    for (auto const base : {ios_base::fmtflags(), ios_base::dec, ios_base::hex, ios_base::oct}) {
        for (auto const more : {ios_base::fmtflags(), ios_base::showbase, ios_base::uppercase,
                                ios_base::showbase | ios_base::uppercase, ios_base::showpos}) {
            for (std::uint64_t const number :
                 {std::uint64_t{0}, std::uint64_t{1}, std::uint64_t{799}, std::uint64_t{0xABCDEF},
                  std::uint64_t{random()}, std::numeric_limits<std::uint64_t>::max()}) {
                EXPECT_EQ(integerText(number, base | more), streamText(number, base | more));
            }
        }
    }
}

TEST(NumberTextIntegerTest, DoesNotFollowTheLocale) {
    CommaLocale const locale;
    if (!locale.problem().empty()) {
        GTEST_SKIP() << locale.problem();
    }
    std::ostringstream out;
    out << 1234567;
    ASSERT_EQ(out.str(), "1.234.567");
    EXPECT_EQ(integerText(1234567, ios_base::dec), "1234567");
}

TEST(NumberTextWordOfTest, IsTheEnglishWord) {
    EXPECT_STREQ(shm::wordOf(true), "true");
    EXPECT_STREQ(shm::wordOf(false), "false");
}

} // namespace
