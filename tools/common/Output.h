// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// What programs write to their output, and what they do when that fails.
#pragma once

#include <iosfwd>
#include <stdexcept>
#include <string_view>

namespace CLI {
class App;
}

namespace qel::tools {

/// An output cannot be written: its file system is full, or it is closed. The text is for the user.
class OutputError : public std::runtime_error {
public:
    OutputError() : std::runtime_error("the output cannot be written") {}
};

/// Writes a text and flushes. Reentrant.
/// @throws OutputError
void writeOutput(std::ostream& out, std::string_view text);

/// Opens those of the descriptors 0 to 2 that are closed. Otherwise the next file or connection that the program opens
/// would become its standard input, output or error. What was closed stays useless: reading meets the end, writing
/// fails. Call it first in main(). Thread-bound to the main thread.
/// @throws std::system_error
void openStandardDescriptors();

/// Whether standard output has failed for another reason than that its reader is gone. A program that has more to do
/// than to print works on without a reader. Thread-bound to the main thread.
/// @param out the stream that writes to standard output
bool hasOutputFailed(std::ostream const& out);

/// Ends a program that did its work: tells of a standard output that has failed. Thread-bound to the main thread.
/// @return the status to exit with
int statusOfOutput(CLI::App const& app);

} // namespace qel::tools
