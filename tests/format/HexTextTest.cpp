// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "format/HexText.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <memory>

namespace {

using shm::HexText;
using shm::hexText;
using shm::svidText;

TEST(HexTextTest, FillsWithZeros) {
    EXPECT_EQ(hexText(1, 4), "0x0001");
    EXPECT_EQ(hexText(0, 4), "0x0000");
    EXPECT_EQ(hexText(0x10203050000, 16), "0x0000010203050000");
}

TEST(HexTextTest, NeverCutsTheNumber) {
    EXPECT_EQ(hexText(0x12345, 4), "0x12345");
    EXPECT_EQ(hexText(std::numeric_limits<std::uint64_t>::max(), 1), "0xffffffffffffffff");
}

TEST(HexTextTest, OfZero_HasOneDigit) {
    EXPECT_EQ(hexText(0, 1), "0x0");
}

TEST(HexTextTest, UsesSmallLetters) {
    EXPECT_EQ(hexText(0xABCDEF, 1), "0xabcdef");
}

TEST(HexTextTest, FillsToSixteenDigitsAtMost) {
    EXPECT_EQ(hexText(1, 17), "0x0000000000000001");
}

TEST(HexTextTest, IsKnownAtCompileTime) {
    static_assert(HexText(0x13, 4).view() == "0x0013");
    static_assert(HexText(0, 0).view() == "0x0");
    static_assert(HexText(std::numeric_limits<std::uint64_t>::max(), 0).view() == "0xffffffffffffffff");
}

TEST(HexTextTest, OfACopy_IsThatOfTheCopy) {
    auto const original = std::make_unique<HexText>(0xAB, 4);
    auto const copy = *original;
    EXPECT_EQ(copy.view(), "0x00ab");
    EXPECT_NE(copy.view().data(), original->view().data());
}

TEST(SvidTextTest, HasSixteenDigits) {
    EXPECT_EQ(svidText(0x0100FFFFFFFF0000), "0x0100ffffffff0000");
    EXPECT_EQ(svidText(0), "0x0000000000000000");
    EXPECT_EQ(svidText(-1), "0xffffffffffffffff");
    EXPECT_EQ(svidText(static_cast<long long>(0xFEDCBA9876543210)), "0xfedcba9876543210");
}

} // namespace
