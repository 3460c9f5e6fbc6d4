// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tests/system/Peers.h"

#include <stdexcept>

namespace qel::test {

Peer::Peer(std::vector<std::string> const& command) : process_(ownProgram(command)) {
    if (process_.readLine() != "ready") {
        throw std::runtime_error(command.front() + " did not get ready");
    }
}

std::string Peer::ask(std::string const& line, std::chrono::milliseconds timeout) {
    process_.writeLine(line);
    return process_.readLine(timeout).value_or("no answer");
}

std::vector<std::string> Writer::command() {
    return {SYSTEM_WRITER};
}

Reader::Reader(unsigned int seconds) : Peer({SYSTEM_READER, std::to_string(seconds)}) {}

} // namespace qel::test
