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

namespace qel::tools {

namespace {

constexpr std::size_t blockSize = 65536;

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

    void parse(char const* block, std::size_t size) {
        bool const isWhole = csv_parse(&parser_, block, size, onCell, onRow, this) == size;
        check(isWhole);
    }

    void finish() { check(csv_fini(&parser_, onCell, onRow, this) == 0); }

private:
    static void onCell(void* text, std::size_t size, void* self) {
        static_cast<Parsing*>(self)->guarded(
            [&](Parsing& parsing) { parsing.cells_.emplace_back(static_cast<char const*>(text), size); });
    }

    static void onRow(int /*terminator*/, void* self) {
        static_cast<Parsing*>(self)->guarded([](Parsing& parsing) {
            parsing.handler_(parsing.cells_, parsing.line_);
            parsing.cells_.clear();
            ++parsing.line_;
        });
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
            throw InputError({path_, line_}, "misplaced quotes", "cells without quotes or quoted as a whole");
        }
    }

    std::string const& path_;
    CsvRowHandler const& handler_;
    csv_parser parser_{};
    std::vector<std::string> cells_;
    std::size_t line_ = 1;
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
    while (std::size_t const size = std::fread(block.data(), 1, block.size(), file.get())) {
        parsing.parse(block.data(), size);
    }
    if (std::ferror(file.get()) != 0) {
        failToRead(path, errno);
    }
    parsing.finish();
}

} // namespace qel::tools
