// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// gnuplot as a program.
#pragma once

#include <stdexcept>
#include <string>

namespace qel::plot {

/// gnuplot is missing or failed; what() is one line for the user.
class GnuplotError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// Runs gnuplot, found by PATH, without a shell and without the user's own settings. Reentrant.
/// @param script for its standard input
/// @return its standard output
/// @throws GnuplotError
std::string runGnuplot(std::string const& script);

} // namespace qel::plot
