// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tools/qelshm/verbs/Json.h"

#include "tests/tools/qelshm/SampleImages.h"

#include <gtest/gtest.h>

#include <limits>
#include <sstream>

namespace qel::tools {

namespace {

constexpr std::uint64_t now = test::sampleTime + 5000;

ValueFacts valueWith(std::optional<double> number, std::string const& text) {
    return {0x010001FFFFFF0001, 1, "Voltage", text, number, "V", eStatus_NoError, test::sampleTime};
}

} // namespace

TEST(JsonTest, Document_BeginsWithSchemaAndVerb) {
    EXPECT_EQ(R"({"schema":1,"verb":"list"})", jsonDocument("list").dump());
}

TEST(JsonTest, DocumentOfAnInput_NamesItsSource) {
    RegionInput const input{{}, {}, "a\x1b.img", now};
    auto const document = jsonDocument("list", input, {"careful"});
    EXPECT_EQ(R"({"kind":"image","name":"a\\x1B.img","condition":"too short"})",
              document.at("source").dump());
    EXPECT_EQ(now, document.at("now"));
    EXPECT_EQ(R"(["careful"])", document.at("warnings").dump());
}

TEST(JsonTest, Value_HasNumberTextStateAndTime) {
    EXPECT_EQ(
        R"({"svid":"0x010001ffffff0001","key":1,"name":"Voltage","number":230.1,"unit":"V","text":"230.1 V",)"
        R"("state":{"number":0,"name":"No Error"},)"
        R"("at":{"ms":1700000000000,"text":"2023-11-14T22:13:20Z","ageMs":5000}})",
        jsonValue(valueWith(230.1, "230.1 V"), now).dump());
}

TEST(JsonTest, NumberThatIsNone_IsNullBesideItsText) {
    auto const value = jsonValue(valueWith(std::nullopt, "nan V"), now);
    EXPECT_TRUE(value.at("number").is_null());
    EXPECT_EQ("nan V", value.at("text"));
}

TEST(JsonTest, MomentOfNever_IsNull) {
    EXPECT_TRUE(jsonMoment(0, now).is_null());
}

TEST(JsonTest, MomentThatIsNoCalendarTime_HasNoAge) {
    auto const moment = jsonMoment(std::numeric_limits<std::uint64_t>::max(), now);
    EXPECT_EQ(std::numeric_limits<std::uint64_t>::max(), moment.at("ms"));
    EXPECT_EQ("18446744073709551615", moment.at("text"));
    EXPECT_TRUE(moment.at("ageMs").is_null());
}

TEST(JsonTest, MomentOfTheFuture_HasANegativeAge) {
    EXPECT_EQ(-1000, jsonMoment(now + 1000, now).at("ageMs"));
}

TEST(JsonTest, EmptyText_IsNull) {
    EXPECT_TRUE(textOrNull("").is_null());
    EXPECT_EQ("V", textOrNull("V"));
}

TEST(JsonTest, Print_WritesAsciiAlone) {
    std::ostringstream out;
    printJson(out, {{"unit", "\u00B0C"}, {"broken", "\xFF"}, {"control", "\u009B\x7F"}});
    EXPECT_EQ(
        "{\n  \"unit\": \"\\u00b0C\",\n  \"broken\": \"\\ufffd\",\n  \"control\": \"\\u009b\\u007f\"\n}\n",
        out.str());
}

} // namespace qel::tools
