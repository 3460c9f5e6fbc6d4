// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// The writing and the reading process of a system test.
#pragma once

#include "tests/support/ChildProcess.h"

#include <chrono>
#include <string>
#include <vector>

namespace qel::test {

/// A child that answers each line by one line.
class Peer {
public:
    explicit Peer(std::vector<std::string> const& command);

    /// The answer, "no answer" when none came in time.
    std::string ask(std::string const& line, std::chrono::milliseconds timeout = ChildProcess::patience);

    ChildProcess& process() { return process_; }

private:
    ChildProcess process_;
};

class Writer : public Peer {
public:
    Writer() : Peer(command()) {}

    /// How it is started.
    static std::vector<std::string> command();
};

class Reader : public Peer {
public:
    explicit Reader(unsigned int seconds = 60);
};

} // namespace qel::test
