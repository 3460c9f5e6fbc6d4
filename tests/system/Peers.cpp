#include "tests/system/Peers.h"

#include <stdexcept>

namespace qel::test {

Peer::Peer(std::string const& program, std::string const& argument)
    : process_(ownProgram({program, argument})) {
    if (process_.readLine() != "ready") {
        throw std::runtime_error(program + " did not get ready");
    }
}

std::string Peer::ask(std::string const& line, std::chrono::milliseconds timeout) {
    process_.writeLine(line);
    return process_.readLine(timeout).value_or("no answer");
}

Writer::Writer() : Peer(SYSTEM_WRITER, "") {}

Reader::Reader(unsigned int seconds) : Peer(SYSTEM_READER, std::to_string(seconds)) {}

} // namespace qel::test
