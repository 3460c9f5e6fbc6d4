// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// Command line of the benchmark programs.
#pragma once

#include "bench/support/Plan.h"

#include <string>

namespace bench {

/// What a run is told.
struct Options {
    Shape shape;             ///< --shape=NAME
    std::string out;         ///< --out=FILE
    std::string measure;     ///< --measure=time, instructions, emulated-instructions or system-calls
    unsigned int passes = 1; ///< --passes=N
    double seconds = 0;      ///< --seconds=S for each contender in each pass
};

/// Throws std::invalid_argument for an option or a value that does not exist.
Options parseOptions(int argc, char const* const* argv);

} // namespace bench
