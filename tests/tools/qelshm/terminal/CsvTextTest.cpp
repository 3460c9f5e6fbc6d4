// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tools/qelshm/terminal/CsvText.h"

#include <gtest/gtest.h>

namespace qel::tools {

TEST(CsvTextTest, PlainText_StaysAsItIs) {
    EXPECT_EQ("", csvText(""));
    EXPECT_EQ("On Alarm; 'x'", csvText("On Alarm; 'x'"));
}

TEST(CsvTextTest, CommasQuotesAndLineEnds_AreInQuotes) {
    EXPECT_EQ("\"On, Alarm\"", csvText("On, Alarm"));
    EXPECT_EQ("\"a \"\"b\"\"\"", csvText("a \"b\""));
    EXPECT_EQ("\"a\nb\"", csvText("a\nb"));
    EXPECT_EQ("\"a\rb\"", csvText("a\rb"));
}

} // namespace qel::tools
