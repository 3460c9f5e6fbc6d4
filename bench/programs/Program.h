// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// Main function of the benchmark programs that know every contender.
#pragma once

#include "bench/programs/Options.h"

namespace bench {

/// Runs a program's body with the options, with logging off; tells on standard error what it threw.
/// Does the work of a helper process instead where the command line says so.
/// @return the exit status
int runProgram(int argc, char** argv, void (*body)(Options const&));

} // namespace bench
