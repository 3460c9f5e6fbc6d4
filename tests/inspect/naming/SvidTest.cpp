// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "inspect/naming/Svid.h"

#include <gtest/gtest.h>

#include <ostream>
#include <string_view>

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

struct Labelled {
    unsigned long long svid;
    char const* label;
};

std::ostream& operator<<(std::ostream& out, Labelled const& labelled) {
    return out << labelled.label;
}

class PointLabelTest : public testing::TestWithParam<Labelled> {};

TEST_P(PointLabelTest, NamesKindAndPosition) {
    EXPECT_EQ(GetParam().label, pointLabel(id(GetParam().svid)));
}

INSTANTIATE_TEST_SUITE_P(
    Points, PointLabelTest,
    testing::Values(Labelled{0x0100FFFFFFFF0000, "unit 1"}, Labelled{0x0200FFFFFFFF0034, "unit 2"},
                    Labelled{0x010001FFFFFF0000, "inlet 1"}, Labelled{0x01000203FFFF0000, "phase 2/3"},
                    Labelled{0x010001FF02FF0000, "circuit 1/2"},
                    Labelled{0x0100010302FF0000, "circuit 1/3/2"},
                    Labelled{0x010001FF02050013, "socket 1/2/5"}, Labelled{0x01010101FFFF0000, "sensor 1/1"},
                    Labelled{0x0102FFFFFF010000, "group 1"}, Labelled{0x0104FFFFFFFF0000, "rcm 1"},
                    Labelled{0x010301FFFFFF0000, "point 1"}));

TEST_P(PointLabelTest, StartsWithTheKindsName) {
    std::string_view const label = GetParam().label;
    EXPECT_EQ(label.substr(0, label.find(' ')), kindName(id(GetParam().svid)));
}

} // namespace qel::inspect
