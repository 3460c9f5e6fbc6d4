// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// Whether there is a bus.
#pragma once

namespace shm {

/// Connects to the system bus anew, apart from the connection that the process shares, and closes that again. Blocks as
/// long as the bus takes to greet, 2 s at most: one that has not greeted until then does not answer. Nor does any while
/// there is no thread to be had to watch the time. Any thread.
bool busAnswers();

} // namespace shm
