// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// A locale that writes numbers differently from the locale "C".
#pragma once

#include <locale>
#include <string>

namespace qel::test {

/// While the object exists, C and C++ of this process write numbers as in German: "1.234,5". localedef makes the C
/// library's locale in a temporary folder, so none needs to be installed. Before and after, it is "C".
///
/// Threads: thread-bound to the thread that made it; no other thread may write numbers.
class CommaLocale {
public:
    CommaLocale();
    ~CommaLocale();
    CommaLocale(CommaLocale const&) = delete;
    CommaLocale& operator=(CommaLocale const&) = delete;

    /// "" if C writes a comma now, otherwise the reason; the test must be skipped then.
    std::string const& problem() const { return problem_; }

private:
    std::string folder_;
    std::string problem_;
    std::locale former_;
};

} // namespace qel::test
