// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "format/Scale.h"

#include "format/Names.h"
#include "tests/support/LogCapture.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <map>
#include <stdexcept>
#include <string>
#include <vector>

namespace {

using qel::test::LogCapture;
using qel::test::LogEntry;
using tav::scalepos;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::StartsWith;

constexpr int warn = 400;

std::map<int, unsigned int> const& positions() {
    static std::map<int, unsigned int> const table{
        {1, 2},  {2, 2},  {4, 2},  {5, 2},  {7, 1},  {8, 1},  {9, 2},   {17, 3},  {18, 1},  {19, 1},
        {20, 1}, {22, 1}, {23, 1}, {24, 2}, {32, 1}, {33, 1}, {34, 1},  {35, 1},  {36, 1},  {37, 1},
        {38, 1}, {59, 0}, {72, 0}, {80, 2}, {81, 2}, {82, 2}, {256, 1}, {257, 1}, {266, 1},
    };
    return table;
}

TEST(ScaleTest, Scalepos_OfEveryKey_WarnsWhereThereIsNone) {
    LogCapture log;

    for (int key = 0; key <= 65535; ++key) {
        auto const number = static_cast<unsigned short>(key);
        auto const known = positions().find(key);
        auto const position = scalepos(number);
        if (known != positions().end()) {
            ASSERT_EQ(position, known->second) << key;
            ASSERT_THAT(log.take(), IsEmpty()) << key;
        } else {
            ASSERT_EQ(position, 0U) << key;
            ASSERT_THAT(log.take(), ElementsAre(LogEntry{"qel.shm.access.format", warn,
                                                         "scalepos: scaling for " + shm::keyName(number) +
                                                             " has not been defined"}))
                << key;
        }
    }
}

TEST(ScaleTest, Scalepos_WarnsWithTheKeysName) {
    LogCapture log;

    scalepos(16);
    scalepos(3);
    scalepos(65535);

    EXPECT_THAT(log.take(), ElementsAre(LogEntry{"qel.shm.access.format", warn,
                                                 "scalepos: scaling for Phase Angle has not been defined"},
                                        LogEntry{"qel.shm.access.format", warn,
                                                 "scalepos: scaling for KEY_IDX_0x3 has not been defined"},
                                        LogEntry{"qel.shm.access.format", warn,
                                                 "scalepos: scaling for UNKNOWN KEY has not been defined"}));
}

TEST(ScaleTest, Scalepos_WithWarningsOff_LogsNothing) {
    LogCapture const log("qel", log4cpp::Priority::ERROR);

    EXPECT_EQ(scalepos(16), 0U);

    EXPECT_THAT(log.entries(), IsEmpty());
}

TEST(ScaleTest, Scalepos_WithWarningsOnAndNothingBelow_Warns) {
    LogCapture const log("qel", log4cpp::Priority::WARN);

    scalepos(0);

    EXPECT_THAT(log.entries(), ElementsAre(LogEntry{"qel.shm.access.format", warn,
                                                    "scalepos: scaling for GUID has not been defined"}));
}

TEST(ScaleTest, ScaleFactors_ArePowersOfTen) {
    std::vector<double> const powers{1, 10, 100, 1000, 10000, 100000};
    std::vector<double> const inverse{1, 0.1, 0.01, 0.001, 0.0001, 0.00001};

    for (unsigned int position = 0; position < 6; ++position) {
        EXPECT_EQ(tav::scaleFactor(position), powers[position]);
        EXPECT_EQ(tav::inverseScaleFactor(position), inverse[position]);
    }
}

std::string complaint(double (*factor)(unsigned int), unsigned int position) {
    try {
        factor(position);
    } catch (std::out_of_range const& error) {
        return error.what();
    }
    return "nothing thrown";
}

TEST(ScaleTest, ScaleFactors_AbovePosition5_AreOutOfRange) {
    for (unsigned int const position : {6U, 7U, 0xFFFFFFFFU}) {
        EXPECT_THAT(complaint(tav::scaleFactor, position), StartsWith("array::at"));
        EXPECT_THAT(complaint(tav::inverseScaleFactor, position), StartsWith("array::at"));
    }
}

} // namespace
