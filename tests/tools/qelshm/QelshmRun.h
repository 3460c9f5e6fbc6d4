// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// qelshm within a test.
#pragma once

#include <string>
#include <vector>

namespace qel::test {

struct QelshmOutcome {
    int status;
    std::string output;
    std::string errors;
};

/// Runs qelshm in this process as if from the command line, without colours unless the arguments ask for them.
QelshmOutcome runQelshm(std::vector<std::string> const& arguments);

} // namespace qel::test
