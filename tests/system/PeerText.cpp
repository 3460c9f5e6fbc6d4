#include "tests/system/PeerText.h"

#include <array>
#include <cstdio>
#include <sstream>

namespace qel::test {

std::string idText(long long svid) {
    std::array<char, 24> text{};
    std::snprintf(text.data(), text.size(), "0x%016llx", static_cast<unsigned long long>(svid));
    return text.data();
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
