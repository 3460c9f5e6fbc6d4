// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tests/endurance/Walker.h"

#include <sstream>

namespace qel::test {

void Walker::walk(std::string const& page) {
    process().writeLine("hammer " + page);
}

std::string Walker::interrupt(std::string const& question) {
    process().writeLine(question);
    auto const seen = process().readLine().value_or("no answer");
    auto answer = process().readLine().value_or("no answer");
    std::istringstream numbers(seen);
    unsigned long visits = 0;
    unsigned long points = 0;
    if (!(numbers >> visits >> points)) {
        return "no walk: " + seen;
    }
    visits_ += visits;
    points_ += points;
    return answer;
}

} // namespace qel::test
