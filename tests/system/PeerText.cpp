// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tests/system/PeerText.h"

#include <iomanip>
#include <sstream>

namespace qel::test {

std::string idText(long long svid) {
    std::ostringstream text;
    text << "0x" << std::hex << std::setfill('0') << std::setw(16) << svid;
    return text.str();
}

long long idFrom(std::string const& text) {
    return static_cast<long long>(std::stoull(text, nullptr, 16));
}

std::vector<std::string> wordsOf(std::string const& line) {
    std::istringstream in(line);
    std::vector<std::string> words;
    for (std::string word; in >> word;) {
        words.push_back(word);
    }
    return words;
}

} // namespace qel::test
