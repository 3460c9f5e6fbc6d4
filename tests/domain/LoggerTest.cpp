// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "domain/Logger.h"

#include "tests/support/LogCapture.h"

#include <gtest/gtest.h>
#include <log4cpp/Category.hh>

namespace {

TEST(LoggerTest, GetInstance_IsAlwaysTheSame) {
    EXPECT_EQ(&Logger::getInstance(), &Logger::getInstance());
}

TEST(LoggerTest, GetCategory_BearsTheNameAndStaysTheSame) {
    auto& sut = Logger::getInstance().getCategory("qel.test.logger");
    EXPECT_EQ(sut.getName(), "qel.test.logger");
    EXPECT_EQ(&sut, &Logger::getInstance().getCategory("qel.test.logger"));
    EXPECT_NE(&sut, &Logger::getInstance().getCategory("qel.test.other"));
}

TEST(LoggerTest, GetCategory_LinesReachTheAppendersOfTheCategoriesAbove) {
    qel::test::LogCapture const log("qel.test");
    Logger::getInstance().getCategory("qel.test.logger").info("a line");
    EXPECT_TRUE(log.contains({"qel.test.logger", log4cpp::Priority::INFO, "a line"}));
}

} // namespace
