// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// A reading process that walks all the time.
#pragma once

#include "tests/system/Peers.h"

#include <string>

namespace qel::test {

/// Visits the whole tree and looks up every point of it, without pause, from walk() to the next interrupt().
class Walker : public Reader {
public:
    /// @param page file of a ProgressPage that is marked 1 during each visit and counts the visits; "" for none
    void walk(std::string const& page = "");

    /// Ends the walk and asks something; "no walk: ..." when the process did not tell of one.
    std::string interrupt(std::string const& question);

    /// Visits and points seen in them, of all walks so far.
    unsigned long visits() const { return visits_; }
    unsigned long points() const { return points_; }

private:
    unsigned long visits_ = 0;
    unsigned long points_ = 0;
};

} // namespace qel::test
