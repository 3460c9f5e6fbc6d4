// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "inspect/naming/ValuePattern.h"

#include "format/ValueKeys.h"

#include "tests/writer/WriterFixture.h"

#include <gtest/gtest.h>

#include <string>

namespace qel::inspect {

using test::pointId;

namespace key = shm::key;

constexpr long long unit = pointId(1, 0);
constexpr long long inlet = pointId(1, 0, 1);
constexpr long long inlet12 = pointId(1, 0, 12);
constexpr long long socket = pointId(1, 0, 1, -1, 2, 5);
constexpr long long otherUnit = pointId(2, 0);

bool selects(char const* pattern, long long point) {
    return ValuePattern(pattern).matchesPoint(point);
}

bool selects(char const* pattern, long long point, unsigned short key) {
    return ValuePattern(pattern).matches(point, key);
}

std::string errorOf(char const* pattern) {
    try {
        ValuePattern const read(pattern);
    } catch (PatternError const& error) {
        return error.what();
    }
    return "none";
}

TEST(ValuePatternTest, Path_SelectsThePointWithItsValues) {
    EXPECT_TRUE(selects("unit1/inlet1", inlet));
    EXPECT_TRUE(selects("UNIT1/Inlet1", inlet));
    EXPECT_TRUE(selects("unit1/inlet1", inlet, key::voltage));
    EXPECT_FALSE(selects("unit1/inlet1", unit));
    EXPECT_FALSE(selects("unit1/inlet1", socket, key::voltage));
}

TEST(ValuePatternTest, PathWithKey_SelectsOneValue) {
    for (auto const* pattern :
         {"unit1/inlet1:active-power", "unit1/inlet1:Active Power", "unit1/inlet1:0x13", "unit1/inlet1:19"}) {
        EXPECT_TRUE(selects(pattern, inlet, key::activePower)) << pattern;
        EXPECT_FALSE(selects(pattern, inlet, key::apparentPower)) << pattern;
        EXPECT_FALSE(selects(pattern, unit, key::activePower)) << pattern;
        EXPECT_TRUE(selects(pattern, inlet)) << pattern;
    }
}

TEST(ValuePatternTest, Ids_SelectAPointOrAValue) {
    EXPECT_TRUE(selects("0x010001FFFFFF0000", inlet, key::voltage));
    EXPECT_TRUE(selects("0x010001FFFFFF0013", inlet, key::activePower));
    EXPECT_FALSE(selects("0x010001FFFFFF0013", inlet, key::voltage));
    EXPECT_TRUE(selects("0x010001FFFFFF0000:voltage", inlet, key::voltage));
}

TEST(ValuePatternTest, KeyInThePointsId_IsIgnored) {
    EXPECT_TRUE(selects("unit1/inlet1:voltage", inlet | key::current, key::voltage));
    EXPECT_TRUE(selects("unit1/inlet*", inlet | key::current));
}

TEST(ValuePatternTest, Wildcard_StaysWithinALevel) {
    EXPECT_TRUE(selects("unit1/*", inlet));
    EXPECT_FALSE(selects("unit1/*", unit));
    EXPECT_FALSE(selects("unit1/*", socket));
    EXPECT_TRUE(selects("unit1/inlet?", inlet));
    EXPECT_FALSE(selects("unit1/inlet?", inlet12));
    EXPECT_TRUE(selects("unit1/inlet[0-9]*", inlet12));
    EXPECT_TRUE(selects("*/*/*/SOCKET5", socket));
}

TEST(ValuePatternTest, TwoStars_AreAnyNumberOfLevels) {
    EXPECT_TRUE(selects("unit1/**", unit));
    EXPECT_TRUE(selects("unit1/**", socket));
    EXPECT_FALSE(selects("unit1/**", otherUnit));
    EXPECT_TRUE(selects("**", otherUnit));
    EXPECT_TRUE(selects("**/socket5", socket));
    EXPECT_TRUE(selects("unit1/**/socket*", socket));
    EXPECT_TRUE(selects("unit1/**/inlet1", inlet));
    EXPECT_FALSE(selects("unit1/**/socket*", inlet));
    EXPECT_TRUE(selects("**/**/**", unit));
}

TEST(ValuePatternTest, ManyStars_AreMatchedInBoundedTime) {
    std::string pattern;
    for (int count = 0; count < 1000; ++count) {
        pattern += "**/*?*/";
    }
    EXPECT_FALSE(ValuePattern(pattern + "none").matchesPoint(socket));
}

TEST(ValuePatternTest, KeysTakeWildcards) {
    EXPECT_TRUE(selects("**:*power", socket, key::activePower));
    EXPECT_TRUE(selects("**:*Power", socket, key::apparentPower));
    EXPECT_FALSE(selects("**:*power", socket, key::voltage));
    EXPECT_TRUE(selects("unit1:*", unit, key::voltage));
    EXPECT_TRUE(selects("unit1:0x*", unit, 0x0302));
}

TEST(ValuePatternTest, Literal_HasNoWildcards) {
    EXPECT_TRUE(ValuePattern("unit1").isLiteral());
    EXPECT_TRUE(ValuePattern("unit1:voltage").isLiteral());
    EXPECT_FALSE(ValuePattern("unit*").isLiteral());
    EXPECT_FALSE(ValuePattern("unit1:volt*").isLiteral());
}

TEST(ValuePatternTest, KeyedPattern_SpeaksOfValues) {
    EXPECT_FALSE(ValuePattern("unit1").hasKey());
    EXPECT_FALSE(ValuePattern("unit1/**").hasKey());
    EXPECT_TRUE(ValuePattern("unit1:voltage").hasKey());
    EXPECT_TRUE(ValuePattern("unit1:*").hasKey());
    EXPECT_TRUE(ValuePattern("0x010001FFFFFF0013").hasKey());
}

TEST(ValuePatternTest, OtherTexts_AreNoPatterns_AndTheErrorSaysWhatToWrite) {
    EXPECT_EQ("\"nowhere\" is not the name of a point; names are like unit1/inlet1, with wildcards unit1/**",
              errorOf("nowhere"));
    EXPECT_EQ("\"\" is not the name of a point; names are like unit1/inlet1, with wildcards unit1/**",
              errorOf(":voltage"));
    EXPECT_EQ("\"speed\" is not the name of a value; names are like active-power, with wildcards *power",
              errorOf("unit1:speed"));
    EXPECT_EQ("\"\" is not the name of a value; names are like active-power, with wildcards *power",
              errorOf("unit1:"));
    EXPECT_EQ("\"0x010001FFFFFF0013:voltage\" has two keys; the sensor id names a value already",
              errorOf("0x010001FFFFFF0013:voltage"));
    EXPECT_EQ("\"unit1//*\" has an empty level; write unit1/* or unit1/**", errorOf("unit1//*"));
    EXPECT_EQ(errorOf("unit1//*"), patternProblem("unit1//*"));
    EXPECT_EQ("", patternProblem("unit1/*"));
}

TEST(ValuePatternTest, AnyOfSeveral_Selects_AndNoneAtAllSelectsEverything) {
    ValuePatterns const sut{ValuePattern("unit1"), ValuePattern("**/socket5:voltage")};
    EXPECT_TRUE(selectsPoint(sut, unit));
    EXPECT_FALSE(selectsPoint(sut, socket)) << "only one of its values";
    EXPECT_TRUE(selectsValue(sut, unit, key::activePower)) << "with its point";
    EXPECT_TRUE(selectsValue(sut, socket, key::voltage));
    EXPECT_FALSE(selectsValue(sut, socket, key::activePower));
    EXPECT_TRUE(selectsPoint({}, socket));
    EXPECT_TRUE(selectsValue({}, socket, key::activePower));
}

} // namespace qel::inspect
