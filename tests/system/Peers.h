/// @file
/// The writing and the reading process of a system test.
#pragma once

#include "tests/support/ChildProcess.h"

#include <chrono>
#include <string>

namespace qel::test {

/// A child that answers each line by one line.
class Peer {
public:
    Peer(std::string const& program, std::string const& argument);

    /// The answer, "no answer" when none came in time.
    std::string ask(std::string const& line, std::chrono::milliseconds timeout = ChildProcess::patience);

    ChildProcess& process() { return process_; }

private:
    ChildProcess process_;
};

class Writer : public Peer {
public:
    Writer();
};

class Reader : public Peer {
public:
    explicit Reader(unsigned int seconds = 60);
};

} // namespace qel::test
