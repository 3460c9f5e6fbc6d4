// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// The lines between a test and its peers.
#pragma once

#include <iostream>
#include <string>
#include <vector>

namespace qel::test {

/// "0x0100ffffffff0000"
std::string idText(long long svid);

/// Throws std::invalid_argument for text that is no hexadecimal number.
long long idFrom(std::string const& text);

std::vector<std::string> wordsOf(std::string const& line);

/// Says "ready" on standard output, then answers each line of standard input, up to "quit".
template <typename Peer>
void serve(Peer& peer) {
    std::cout << "ready" << std::endl;
    for (std::string line; std::getline(std::cin, line) && line != "quit";) {
        std::cout << peer.answerTo(wordsOf(line)) << std::endl;
    }
}

} // namespace qel::test
