// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "format/HexText.h"

#include <gtest/gtest.h>

#include <limits>

namespace {

using shm::hexText;

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

} // namespace
