// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// A locale whose numbers look unlike those of the locale "C".
#pragma once

#include <locale>
#include <string>

namespace qel::test {

/// While it lives, C and C++ of this process write numbers as in German: "1.234,5". The C library's locale is made by
/// localedef in a folder of its own, so none needs to be installed; before and after, it is "C".
///
/// Threads: belongs to one thread, and no other one may write numbers meanwhile.
class CommaLocale {
public:
    CommaLocale();
    ~CommaLocale();
    CommaLocale(CommaLocale const&) = delete;
    CommaLocale& operator=(CommaLocale const&) = delete;

    /// "" when C writes a comma now, otherwise what went wrong; a test must be skipped then.
    std::string const& problem() const { return problem_; }

private:
    std::string folder_;
    std::string problem_;
    std::locale former_;
};

} // namespace qel::test
