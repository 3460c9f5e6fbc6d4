// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "inspect/naming/Svid.h"

#include <gtest/gtest.h>

namespace qel::inspect {

namespace {

long long id(unsigned long long bits) {
    return static_cast<long long>(bits);
}

} // namespace

TEST(SvidTest, Parse_ReadsHexadecimalAndDecimal) {
    EXPECT_EQ(id(0x0100FFFFFFFF0000), parseSvid("0x0100ffffffff0000"));
    EXPECT_EQ(id(0xFF00FFFFFFFF0000), parseSvid("0xFF00FFFFFFFF0000"));
    EXPECT_EQ(id(0xAB), parseSvid("0Xab"));
    EXPECT_EQ(72339069014573056, parseSvid("72339069014573056"));
    EXPECT_EQ(id(0xFF00FFFFFFFF0000), parseSvid("18374967954648268800"));
    EXPECT_EQ(id(0xFF00FFFFFFFF0000), parseSvid("-71776119061282816"));
    EXPECT_EQ(0, parseSvid("0"));
}

class NoSvidTest : public testing::TestWithParam<char const*> {};

TEST_P(NoSvidTest, Parse_RefusesIt) {
    EXPECT_EQ(std::nullopt, parseSvid(GetParam()));
}

INSTANTIATE_TEST_SUITE_P(Texts, NoSvidTest,
                         testing::Values("", "0x", "x", "12a", "0xg", "0x1123456789abcdef0",
                                         "18446744073709551616", "-9223372036854775809", "-", "--1", "-0x1",
                                         "+1", " 1", "1 ", "1.0"));

} // namespace qel::inspect
