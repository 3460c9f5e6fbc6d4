/// @file
/// Whether there is a bus.
#pragma once

namespace shm {

/// Connects to the system bus anew, apart from the connection that the process shares, and closes that again. Blocks as
/// long as the bus takes to greet. Any thread.
bool busAnswers();

} // namespace shm
