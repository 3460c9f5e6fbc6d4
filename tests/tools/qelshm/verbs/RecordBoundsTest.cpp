// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tools/qelshm/verbs/RecordBounds.h"

#include <gmock/gmock.h>

namespace qel::tools {

using testing::Optional;

TEST(RecordBoundsTest, Bytes_TakeSuffixes) {
    EXPECT_THAT(parseBytes("1"), Optional(1U));
    EXPECT_THAT(parseBytes("500k"), Optional(512000U));
    EXPECT_THAT(parseBytes("100M"), Optional(104857600U));
    EXPECT_THAT(parseBytes("2G"), Optional(std::uint64_t{2147483648}));
}

TEST(RecordBoundsTest, OtherSizes_AreRefused) {
    for (auto const* const text : {"", "0", "0M", "M", "-1", "1.5M", "1MB", "10 M", "nan",
                                   "99999999999999999999", "9223372036854775807k"}) {
        EXPECT_EQ(std::nullopt, parseBytes(text)) << text;
    }
}

TEST(RecordBoundsTest, Margins_AreMinutes) {
    using std::chrono::milliseconds;
    auto const both = parseMargins("5").value();
    EXPECT_EQ(milliseconds(300000), both.before);
    EXPECT_EQ(milliseconds(300000), both.after);
    auto const two = parseMargins("0.5,15").value();
    EXPECT_EQ(milliseconds(30000), two.before);
    EXPECT_EQ(milliseconds(900000), two.after);
}

TEST(RecordBoundsTest, OtherMargins_AreRefused) {
    for (auto const* const text : {"", ",", "5,", ",5", "-1", "1441", "nan", "inf", "5m", "1,2,3"}) {
        EXPECT_FALSE(parseMargins(text)) << text;
    }
}

} // namespace qel::tools
