#include "tools/qelshm/PlainView.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <sstream>
#include <string>

namespace qel::tools {

namespace {

constexpr long long inlet = 0x010001FFFFFF0000;

shm::record::QelShmMVal valueOf(std::uint16_t key, double number, eStatus_Bits state = eStatus_NoError,
                                std::uint64_t time = 1686296078000) {
    shm::record::QelShmMVal value{};
    value.key = key;
    value.value = number;
    value.state = state;
    value.at = time;
    return value;
}

WatchFrame frameOf(std::vector<shm::record::QelShmMVal> values) {
    return {{eStatus_On, {{inlet, 1, "1P", eStatus_On, std::move(values)}}}, 0};
}

long linesIn(std::string const& text) {
    return std::count(text.begin(), text.end(), '\n');
}

} // namespace

TEST(PlainViewTest, FirstFrame_IsTakenAsItIs) {
    std::ostringstream out;
    PlainView sut(out, std::nullopt);
    sut.show(frameOf({valueOf(1, 230.0)}));
    EXPECT_EQ("", out.str());
    EXPECT_FALSE(sut.isDone());
}

TEST(PlainViewTest, ChangedNumber_IsALine) {
    std::ostringstream out;
    PlainView sut(out, std::nullopt);
    sut.show(frameOf({valueOf(1, 230.0), valueOf(4, 1.0)}));
    sut.show(frameOf({valueOf(1, 231.0), valueOf(4, 1.0)}));
    EXPECT_EQ("2023-06-09T07:34:38Z  inlet 1               Voltage           231.0 V           No Error\n",
              out.str());
}

TEST(PlainViewTest, ChangedState_IsALine) {
    std::ostringstream out;
    PlainView sut(out, std::nullopt);
    sut.show(frameOf({valueOf(1, 230.0)}));
    sut.show(frameOf({valueOf(1, 230.0, eStatus_Lost)}));
    EXPECT_EQ("2023-06-09T07:34:38Z  inlet 1               Voltage           230.0 V           Lost\n",
              out.str());
}

TEST(PlainViewTest, ChangedTimeAlone_IsNoLine) {
    std::ostringstream out;
    PlainView sut(out, std::nullopt);
    sut.show(frameOf({valueOf(1, 230.0)}));
    sut.show(frameOf({valueOf(1, 230.0, eStatus_NoError, 1686296079000)}));
    EXPECT_EQ("", out.str());
}

TEST(PlainViewTest, ValueThatComesBack_IsTakenAsItIs) {
    std::ostringstream out;
    PlainView sut(out, std::nullopt);
    sut.show(frameOf({valueOf(1, 230.0)}));
    sut.show(frameOf({}));
    sut.show(frameOf({valueOf(1, 231.0)}));
    EXPECT_EQ("", out.str());
    sut.show(frameOf({valueOf(1, 232.0)}));
    EXPECT_EQ(1, linesIn(out.str()));
}

TEST(PlainViewTest, Count_EndsItAfterSoManyLines) {
    std::ostringstream out;
    PlainView sut(out, 3);
    sut.show(frameOf({valueOf(1, 1.0), valueOf(4, 1.0)}));
    sut.show(frameOf({valueOf(1, 2.0), valueOf(4, 2.0)}));
    EXPECT_EQ(2, linesIn(out.str()));
    EXPECT_FALSE(sut.isDone());
    sut.show(frameOf({valueOf(1, 3.0), valueOf(4, 3.0)}));
    EXPECT_EQ(3, linesIn(out.str()));
    EXPECT_TRUE(sut.isDone());
}

TEST(PlainViewTest, OutputThatFails_EndsIt) {
    std::ostringstream out;
    PlainView sut(out, std::nullopt);
    out.setstate(std::ios::badbit);
    sut.show(frameOf({valueOf(1, 1.0)}));
    EXPECT_TRUE(sut.isDone());
}

} // namespace qel::tools
