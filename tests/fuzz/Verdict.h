// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// What makes an input a failure, beside what sanitizers find. All functions are reentrant.
#pragma once

#include <functional>
#include <string>

namespace qel::fuzz {

/// Ends the process with a message unless the condition holds, so that the fuzzer keeps the input.
void require(bool condition, std::string const& what);

/// Calls a run, and ends the process with a message if it takes more than 50 ms of this thread's processor time.
/// @param run is called up to three times, of which the fastest counts: what else the machine does may slow down one
///            call, hardly all of them
void requireQuick(std::function<void()> const& run);

} // namespace qel::fuzz
