// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tools/replay/csv/CsvReader.h"

#include "tools/replay/csv/InputError.h"

#include <csv.h>

#include <array>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <exception>
#include <memory>
#include <new>
#include <string_view>

namespace qel::tools {

namespace {

constexpr std::size_t blockSize = 65536;
constexpr std::string_view byteOrderMark = "\xEF\xBB\xBF"; // spreadsheets write it in front of UTF-8

struct FileCloser {
    void operator()(std::FILE* file) const { static_cast<void>(std::fclose(file)); }
};
using File = std::unique_ptr<std::FILE, FileCloser>;

/// One run of the parser over a file. The parser calls back from C, so an exception waits here until it has
/// returned.
class Parsing {
public:
    Parsing(std::string const& path, CsvRowHandler const& handler) : path_(path), handler_(handler) {
        if (csv_init(&parser_, CSV_STRICT | CSV_STRICT_FINI | CSV_REPALL_NL) != 0) {
            throw std::bad_alloc();
        }
        // The parser drops blanks around a cell. Only the CR of a CR LF shall count as one.
        csv_set_space_func(&parser_,
                           [](unsigned char character) { return static_cast<int>(character == CSV_CR); });
        csv_set_term_func(&parser_,
                          [](unsigned char character) { return static_cast<int>(character == CSV_LF); });
    }
    ~Parsing() { csv_free(&parser_); }
    Parsing(Parsing const&) = delete;
    Parsing& operator=(Parsing const&) = delete;

    void parse(std::string_view block) {
        while (!block.empty()) {
            auto const end = block.find('\n');
            auto const piece = block.substr(0, end == std::string_view::npos ? end : end + 1);
            block.remove_prefix(piece.size());
            parsePiece(piece);
        }
    }

    void finish() { check(csv_fini(&parser_, onCell, onRow, this) == 0); }

private:
    // Bounded before the parser sees it, which keeps what belongs to one cell.
    void parsePiece(std::string_view piece) {
        rowSize_ += piece.size();
        if (rowSize_ > longestCsvRow) {
            throw InputError({path_, rowLine_}, "the row has more than " + numberOf(longestCsvRow, "byte"),
                             "at most " + numberOf(longestCsvRow, "byte") + " in a row");
        }
        bool const isWhole =
            csv_parse(&parser_, piece.data(), piece.size(), onCell, onRow, this) == piece.size();
        check(isWhole);
        line_ += piece.back() == '\n' ? 1 : 0;
        if (rowSize_ == 0) {
            rowLine_ = line_;
        }
    }

    static void onCell(void* text, std::size_t size, void* self) {
        static_cast<Parsing*>(self)->guarded([&](Parsing& parsing) {
            if (parsing.cells_.size() == mostCsvCells) {
                throw InputError({parsing.path_, parsing.rowLine_},
                                 "the row has more than " + numberOf(mostCsvCells, "cell"),
                                 "at most " + numberOf(mostCsvCells, "cell") + " in a row");
            }
            parsing.cells_.emplace_back(static_cast<char const*>(text), size);
        });
    }

    static void onRow(int /*terminator*/, void* self) {
        static_cast<Parsing*>(self)->guarded([](Parsing& parsing) {
            parsing.handOver();
            parsing.cells_.clear();
            parsing.rowSize_ = 0;
        });
    }

    // Empty lines wait for the row behind them. At the end of the file nobody takes them.
    void handOver() {
        if (cells_.empty()) {
            firstEmpty_ = emptyLines_ == 0 ? rowLine_ : firstEmpty_;
            ++emptyLines_;
            return;
        }
        for (; emptyLines_ != 0; --emptyLines_) {
            handler_({}, firstEmpty_++);
        }
        handler_(cells_, rowLine_);
    }

    static std::string numberOf(std::size_t count, std::string_view noun) {
        return std::to_string(count).append(" ").append(noun).append("s");
    }

    template <typename Step>
    void guarded(Step step) noexcept {
        if (failure_) {
            return;
        }
        try {
            step(*this);
        } catch (...) {
            failure_ = std::current_exception();
        }
    }

    void check(bool isWellFormed) const {
        if (failure_) {
            std::rethrow_exception(failure_);
        }
        if (!isWellFormed) {
            throw InputError({path_, rowLine_}, "misplaced quotes",
                             "cells without quotes or quoted as a whole");
        }
    }

    std::string const& path_;
    CsvRowHandler const& handler_;
    csv_parser parser_{};
    std::vector<std::string> cells_;
    std::size_t line_ = 1;
    std::size_t rowLine_ = 1;    // where the row begins; its quoted cells may hold line ends
    std::size_t rowSize_ = 0;    // bytes of the row up to now
    std::size_t emptyLines_ = 0; // one after the other, up to the row
    std::size_t firstEmpty_ = 0; // line of the first of them
    std::exception_ptr failure_;
};

[[noreturn]] void failToRead(std::string const& path, int error) {
    throw InputError({path}, std::string("cannot be read (") + std::strerror(error) + ')',
                     "a readable CSV file");
}

} // namespace

void readCsv(std::string const& path, CsvRowHandler const& handler) {
    File const file(std::fopen(path.c_str(), "re"));
    if (!file) {
        failToRead(path, errno);
    }
    Parsing parsing(path, handler);
    std::array<char, blockSize> block{};
    bool isFirst = true;
    while (std::size_t const size = std::fread(block.data(), 1, block.size(), file.get())) {
        std::string_view text(block.data(), size);
        if (isFirst && text.substr(0, byteOrderMark.size()) == byteOrderMark) {
            text.remove_prefix(byteOrderMark.size());
        }
        isFirst = false;
        parsing.parse(text);
    }
    if (std::ferror(file.get()) != 0) {
        failToRead(path, errno);
    }
    parsing.finish();
}

} // namespace qel::tools
