// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// The commands that a running replay takes.
#pragma once

#include "tools/replay/control/IValueSetter.h"

#include <cstdint>
#include <functional>
#include <string>

namespace qel::tools {

/// How an answer to a command begins that was refused; the reason follows.
constexpr char const* errorAnswer = "error: ";

/// Checks a command as far as this is possible without the replay.
/// @throws InputError
void checkCommand(std::string const& line);

/// Answers commands of one line each: "set NAME=VALUE[,STATE]" and "unset NAME". An answer is one line, too, without its
/// end: what was done, or errorAnswer with the reason.
///
/// Threads: thread-bound to the thread of the setter.
class ControlCommands {
public:
    /// @param setter must outlive the object
    /// @param due    gives the moment of a command, in ms after the start in recorded time
    ControlCommands(IValueSetter& setter, std::function<std::uint64_t()> due);

    /// @param line any bytes
    std::string answer(std::string const& line) const;

private:
    IValueSetter& setter_;
    std::function<std::uint64_t()> due_;
};

} // namespace qel::tools
