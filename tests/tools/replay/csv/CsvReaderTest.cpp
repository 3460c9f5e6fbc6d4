// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tools/replay/csv/CsvReader.h"

#include "tests/support/TempFile.h"
#include "tests/tools/replay/InputFailure.h"

#include <gmock/gmock.h>

#include <stdexcept>
#include <utility>

namespace qel::tools {

namespace {

using Cells = std::vector<std::string>;
using Lines = std::vector<std::pair<std::size_t, Cells>>;

Lines linesOf(std::string const& text) {
    test::TempFile const file(text);
    Lines lines;
    readCsv(file.path(), [&](Cells const& cells, std::size_t line) { lines.emplace_back(line, cells); });
    return lines;
}

/// What is said about a file with this text, after the file's name.
std::string failureOf(std::string const& text) {
    test::TempFile const file(text);
    auto const message = test::inputFailure([&] { readCsv(file.path(), [](Cells const&, std::size_t) {}); });
    return message.substr(message.find(file.path()) == 0 ? file.path().size() : 0);
}

} // namespace

TEST(CsvReaderTest, Rows_AreSplitAtCommasAndCounted) {
    EXPECT_EQ((Lines{{1, {"a", "b"}}, {2, {"1", "2"}}}), linesOf("a,b\n1,2\n"));
}

TEST(CsvReaderTest, LastLine_NeedsNoEnd) {
    EXPECT_EQ((Lines{{1, {"a"}}, {2, {"1"}}}), linesOf("a\n1"));
}

TEST(CsvReaderTest, EmptyCells_AreKept) {
    EXPECT_EQ((Lines{{1, {"", "a", ""}}}), linesOf(",a,\n"));
}

TEST(CsvReaderTest, EmptyLines_AreRowsWithoutCells) {
    EXPECT_EQ((Lines{{1, {"a"}}, {2, {}}, {3, {"1"}}}), linesOf("a\n\n1\n"));
}

TEST(CsvReaderTest, CarriageReturns_BelongToTheLineEnd) {
    EXPECT_EQ((Lines{{1, {"a", "b"}}, {2, {"1", ""}}, {3, {}}, {4, {"2", "3"}}}),
              linesOf("a,b\r\n1,\r\n\r\n2,\"3\"\r\n"));
}

TEST(CsvReaderTest, Blanks_AreKept) {
    EXPECT_EQ((Lines{{1, {" a ", "\tb"}}}), linesOf(" a ,\tb\n"));
}

TEST(CsvReaderTest, QuotedCells_MayHoldCommasAndDoubledQuotes) {
    EXPECT_EQ((Lines{{1, {"a,b", "c\"d", ""}}}), linesOf("\"a,b\",\"c\"\"d\",\"\"\n"));
}

TEST(CsvReaderTest, EmptyFile_HasNoRows) {
    EXPECT_TRUE(linesOf("").empty());
}

TEST(CsvReaderTest, LongFile_IsReadInOnePiece) {
    std::string text;
    for (int row = 0; row < 40000; ++row) {
        text += std::to_string(row) + ",x\n";
    }
    auto const lines = linesOf(text);
    ASSERT_EQ(40000U, lines.size());
    for (std::size_t row = 0; row < lines.size(); ++row) {
        ASSERT_EQ(row + 1, lines[row].first);
        ASSERT_EQ((Cells{std::to_string(row), "x"}), lines[row].second);
    }
}

TEST(CsvReaderTest, MisplacedQuotes_AreRefusedWithTheirLine) {
    std::string const rest = ": misplaced quotes; expected cells without quotes or quoted as a whole";
    EXPECT_EQ(":2" + rest, failureOf("a,b\n1,2\"\n"));
    EXPECT_EQ(":3" + rest, failureOf("a\n1\n\"2\"3\n"));
    EXPECT_EQ(":2" + rest, failureOf("a\n\"1\n2\n")) << "never closed";
}

TEST(CsvReaderTest, ByteOrderMark_BelongsToNoCell) {
    EXPECT_EQ((Lines{{1, {"a", "b"}}, {2, {"1", "2"}}}), linesOf("\xEF\xBB\xBF"
                                                                 "a,b\n1,2\n"));
    EXPECT_EQ((Lines{{1, {"a,b"}}}), linesOf("\xEF\xBB\xBF\"a,b\"\n"));
    EXPECT_TRUE(linesOf("\xEF\xBB\xBF").empty());
    EXPECT_EQ((Lines{{1, {"a"}}, {2, {"\xEF\xBB\xBF"}}}), linesOf("a\n\xEF\xBB\xBF\n"))
        << "only at the start";
}

TEST(CsvReaderTest, EmptyLinesAtTheEnd_AreNoRows) {
    EXPECT_EQ((Lines{{1, {"a"}}, {2, {"1"}}}), linesOf("a\n1\n\n"));
    EXPECT_EQ((Lines{{1, {"a"}}, {2, {"1"}}}), linesOf("a\r\n1\r\n\r\n\r\n\r\n"));
    EXPECT_EQ((Lines{{1, {"a"}}, {2, {}}, {3, {}}, {4, {"1"}}}), linesOf("a\n\n\n1\n\n"));
    EXPECT_TRUE(linesOf("\n\n\n").empty());
}

TEST(CsvReaderTest, RowsBehindAQuotedLineEnd_HaveTheNumberOfTheirLine) {
    EXPECT_EQ((Lines{{1, {"a\nb"}}, {3, {"1"}}, {4, {"2\n\n3", "4"}}, {7, {"5"}}}),
              linesOf("\"a\nb\"\n1\n\"2\n\n3\",4\n5\n"));
}

TEST(CsvReaderTest, RowUpToTheBounds_IsRead) {
    EXPECT_EQ((Lines{{1, Cells(mostCsvCells, "")}, {2, {"1"}}}),
              linesOf(std::string(mostCsvCells - 1, ',') + "\n1\n"));
    std::string const longest(longestCsvRow - 1, 'x');
    EXPECT_EQ((Lines{{1, {"a"}}, {2, {longest}}, {3, {longest}}}),
              linesOf("a\n" + longest + '\n' + longest + '\n'));
}

TEST(CsvReaderTest, RowBeyondABound_IsRefusedWithItsLineAndTheBound) {
    std::string const tooLong = ": the row has more than 65536 bytes; expected at most 65536 bytes in a row";
    std::string const tooMany = ": the row has more than 1024 cells; expected at most 1024 cells in a row";
    EXPECT_EQ(":1" + tooMany, failureOf(std::string(mostCsvCells, ',') + '\n'));
    EXPECT_EQ(":3" + tooMany, failureOf("a\n1\n" + std::string(longestCsvRow - 1, ',') + '\n'));
    EXPECT_EQ(":1" + tooLong, failureOf(std::string(10 * longestCsvRow, 'x')));
    EXPECT_EQ(":2" + tooLong, failureOf("a\n" + std::string(longestCsvRow, 'x') + '\n'));
    std::string lines = "a\n1\n\"";
    for (std::size_t line = 0; line < longestCsvRow; ++line) {
        lines += "x\n";
    }
    EXPECT_EQ(":3" + tooLong, failureOf(lines)) << "a quoted cell that never ends";
}

// The file never ends, so that only a bound can end the reading.
TEST(CsvReaderTest, EndlessRow_IsRefused) {
    EXPECT_EQ("/dev/zero:1: the row has more than 65536 bytes; expected at most 65536 bytes in a row",
              test::inputFailure([] { readCsv("/dev/zero", [](Cells const&, std::size_t) {}); }));
}

TEST(CsvReaderTest, MissingFile_IsRefused) {
    EXPECT_EQ(
        "/tmp/there/is/no.csv: cannot be read (No such file or directory); expected a readable CSV file",
        test::inputFailure([] { readCsv("/tmp/there/is/no.csv", [](Cells const&, std::size_t) {}); }));
}

TEST(CsvReaderTest, Directory_IsRefused) {
    EXPECT_EQ("/tmp: cannot be read (Is a directory); expected a readable CSV file",
              test::inputFailure([] { readCsv("/tmp", [](Cells const&, std::size_t) {}); }));
}

TEST(CsvReaderTest, ExceptionOfTheHandler_EndsTheReading) {
    test::TempFile const file("a\nb\nc\n");
    int calls = 0;
    auto const handler = [&](Cells const& /*cells*/, std::size_t line) {
        ++calls;
        if (line == 2) {
            throw std::runtime_error("enough");
        }
    };
    EXPECT_THROW(readCsv(file.path(), handler), std::runtime_error);
    EXPECT_EQ(2, calls);
}

} // namespace qel::tools
