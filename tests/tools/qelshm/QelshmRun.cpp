// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tests/tools/qelshm/QelshmRun.h"

#include "tools/qelshm/app/QelshmApp.h"
#include "tools/qelshm/verbs/Commands.h"

#include <algorithm>
#include <iostream>
#include <sstream>

namespace qel::test {

namespace {

/// Takes what is written to standard error meanwhile.
class CapturedErrors {
public:
    CapturedErrors() : before_(std::cerr.rdbuf(text_.rdbuf())) {}
    ~CapturedErrors() { std::cerr.rdbuf(before_); }
    CapturedErrors(CapturedErrors const&) = delete;
    CapturedErrors& operator=(CapturedErrors const&) = delete;

    std::string text() const { return text_.str(); }

private:
    std::ostringstream text_;
    std::streambuf* before_;
};

} // namespace

QelshmOutcome runQelshm(std::vector<std::string> const& arguments) {
    std::vector<char const*> words{"qelshm"};
    if (std::find(arguments.begin(), arguments.end(), "--color") == arguments.end()) {
        words.insert(words.end(), {"--color", "never"});
    }
    for (auto const& argument : arguments) {
        words.push_back(argument.c_str());
    }
    std::ostringstream out;
    CapturedErrors const errors;
    auto const status =
        tools::runQelshm(static_cast<int>(words.size()), words.data(), out, tools::allCommands());
    return {status, out.str(), errors.text()};
}

} // namespace qel::test
