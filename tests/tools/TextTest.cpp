#include "tools/qelshm/Text.h"

#include <gtest/gtest.h>

namespace qel::tools {

namespace {

shm::record::QelShmMVal valueOf(std::uint16_t key, double number, eStatus_Bits state, std::uint64_t time) {
    shm::record::QelShmMVal value{};
    value.key = key;
    value.value = number;
    value.state = state;
    value.at = time;
    return value;
}

PointView socket6() {
    return {0x010001FF01060000, 4, "Schuko", eStatus_OnWarning, {}};
}

} // namespace

TEST(TextTest, Padded_FillsWithBlanks) {
    EXPECT_EQ("ab  ", padded("ab", 4));
    EXPECT_EQ("abcd", padded("abcd", 4));
    EXPECT_EQ("abcde", padded("abcde", 4)) << "nothing is cut";
}

TEST(TextTest, Padded_CountsCharactersNotBytes) {
    EXPECT_EQ("21.5 °C ", padded("21.5 °C", 8));
}

TEST(TextTest, NumberText_HasUnitOrSaysThatThereIsNone) {
    EXPECT_EQ("230.1 V", numberText(valueOf(1, 230.1, eStatus_NoError, 1)));
    EXPECT_EQ("n/a", numberText(valueOf(1, 230.1, eStatus_ExpectedValue, 1)));
    EXPECT_EQ("--", numberText(valueOf(1, 230.1, eStatus_UndefinedValue, 1)));
}

TEST(TextTest, PointLine_ShowsIdPositionTypeAndState) {
    EXPECT_EQ("0x010001ff01060000        socket 1/1/6    Schuko                            On, Warning",
              pointLine(socket6()));
}

TEST(TextTest, ValueLine_ShowsIdNameNumberStateAndTime) {
    EXPECT_EQ(
        "  0x010001ff01060013  Active Power      2310.9 W          High Warning    2023-06-09T07:34:38Z",
        valueLine(socket6(), valueOf(19, 2310.9, eStatus_HighWarning, 1686296078000)));
    EXPECT_EQ("  0x010001ff01060001  Voltage           n/a               Expected Value  -",
              valueLine(socket6(), valueOf(1, 0.0, eStatus_ExpectedValue, 0)));
}

TEST(TextTest, ChangeLine_ShowsTimePointNameNumberAndState) {
    EXPECT_EQ("2023-06-09T07:34:38Z  socket 1/1/6          Active Power      2310.9 W          High Warning",
              changeLine(socket6(), valueOf(19, 2310.9, eStatus_HighWarning, 1686296078000)));
}

} // namespace qel::tools
