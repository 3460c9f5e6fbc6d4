// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tools/replay/csv/Recordings.h"

#include "tests/support/TempFile.h"
#include "tests/tools/replay/InputFailure.h"

#include <gtest/gtest.h>

namespace qel::tools {

TEST(RecordingsTest, Read_KeepsTheOrderOfTheFiles) {
    test::TempFile const inlet(
        "timestamp_utc,inlet1_voltage_V\n2023-06-09T07:34:38Z,1\n2023-06-09T07:34:39Z,1\n");
    test::TempFile const outlet("timestamp_utc,outlet1_voltage_V\n2020-06-09T07:34:38Z,1\n");

    auto const sut = Recordings::read({inlet.path(), outlet.path()});

    ASSERT_EQ(2U, sut.tables().size());
    EXPECT_EQ(inlet.path(), sut.tables()[0].path());
    EXPECT_EQ(outlet.path(), sut.tables()[1].path());
    EXPECT_EQ(3U, sut.rowCount());
    EXPECT_TRUE(sut.has({PointKind::Inlet, 1}, 1));
    EXPECT_TRUE(sut.has({PointKind::Socket, 1}, 1));
    EXPECT_FALSE(sut.has({PointKind::Socket, 2}, 1));
}

TEST(RecordingsTest, ColumnInTwoFiles_IsRefused) {
    test::TempFile const first("timestamp_utc,inlet1_voltage_V\n2023-06-09T07:34:38Z,1\n");
    test::TempFile const second(
        "timestamp_utc,inlet1_current_A,inlet1_voltage_V\n2023-06-09T07:34:38Z,1,2\n");

    EXPECT_EQ(second.path() + ":1: inlet1_voltage_V: the column stands in " + first.path() +
                  " too; expected each column in one file only",
              test::inputFailure([&] {
                  Recordings::read({first.path(), second.path()});
              }));
}

TEST(RecordingsTest, SameFileTwice_IsRefused) {
    test::TempFile const file("timestamp_utc,inlet1_voltage_V\n2023-06-09T07:34:38Z,1\n");

    EXPECT_EQ(file.path() + ":1: inlet1_voltage_V: the column stands in " + file.path() +
                  " too; expected each column in one file only",
              test::inputFailure([&] {
                  Recordings::read({file.path(), file.path()});
              }));
}

} // namespace qel::tools
