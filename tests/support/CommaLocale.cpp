// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tests/support/CommaLocale.h"

#include <clocale>
#include <cstdlib>
#include <filesystem>
#include <fstream>

namespace qel::test {

namespace {

struct GermanNumbers : std::numpunct<char> {
    char do_decimal_point() const override { return ','; }
    char do_thousands_sep() const override { return '.'; }
    std::string do_grouping() const override { return "\3"; }
};

} // namespace

CommaLocale::CommaLocale() : folder_(std::filesystem::temp_directory_path() / "comma-locale-XXXXXX") {
    if (::mkdtemp(folder_.data()) == nullptr) {
        problem_ = "no folder for a locale";
        return;
    }
    std::ofstream(folder_ + "/numbers") << "LC_NUMERIC\ndecimal_point \",\"\nthousands_sep \".\"\n"
                                           "grouping 3;3\nEND LC_NUMERIC\n";
    // Ends with 1 for mere warnings, so what counts is whether the locale can be used.
    // NOLINTNEXTLINE(cert-env33-c): a program by its name, without anybody's input
    static_cast<void>(std::system(
        ("localedef -c -i '" + folder_ + "/numbers' '" + folder_ + "/comma' >'" + folder_ + "/log' 2>&1")
            .c_str()));
    ::setenv("LOCPATH", folder_.c_str(), 1);
    bool const found = std::setlocale(LC_NUMERIC, "comma") != nullptr;
    ::unsetenv("LOCPATH");
    if (!found || std::string(std::localeconv()->decimal_point) != ",") {
        problem_ = "localedef makes no locale with a comma";
    }
    // Not made of that of C: the C library loses memory then.
    std::locale::global(std::locale(std::locale::classic(), new GermanNumbers));
}

CommaLocale::~CommaLocale() {
    std::locale::global(former_);
    static_cast<void>(std::setlocale(LC_NUMERIC, "C"));
    std::filesystem::remove_all(folder_);
}

} // namespace qel::test
