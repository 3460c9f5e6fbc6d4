// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// The thread that shows the global state on the status LED.
#pragma once

#include "domain/eStatus_Bits.h"
#include "reader/Thread.h"
#include "region/QelExport.h"

#include <array>
#include <mutex>

namespace shm {

class LedSequence;

/// Shows the colours of the requested state on the three LED class devices under /sys/class/leds, one colour every
/// 500 ms: one colour is a steady light, several blink. The LED keeps its last colour after the thread has ended.
/// Logs in "qel.shm.access.states".
///
/// The owner must join before it destroys the object. Joining interrupts the pause between two ticks, but waits for a
/// write to a LED file that hangs.
///
/// Threads: thread-bound to the owner, who alone calls start() and join(). request() is thread-safe; it
/// never waits for a file or a log line.
class QEL_EXPORT QelStateLedThread : public Thread {
public:
    /// Makes the LED green, whatever it shows.
    QelStateLedThread();

    /// Does not join.
    ~QelStateLedThread() override;

    QelStateLedThread(QelStateLedThread const&) = delete;
    QelStateLedThread& operator=(QelStateLedThread const&) = delete;

    /// The thread's body: one tick every 500 ms until the thread is joined. Holds the mutex only while it reads the
    /// requested state.
    /// @note Logs each change of state at INFO, a requested state without colours at WARN in each tick, and an initial
    ///       state without colours at ERROR.
    /// @throws ex::TAVSimpleException when the initial state has no colours
    void run() override;

    /// Writes the channels whose level differs from the last one written. A level counts as written even if its
    /// file could not be opened; it is tried again only after it has changed.
    /// @note Logs each level at DEBUG, a file that cannot be opened at WARN.
    ///
    /// Threads: thread-bound to the LED thread, or to the owner while that thread does not run.
    /// @param brightness levels of red, green and blue
    /// @param force      also write unchanged channels
    /// @throws std::bad_alloc when there is no memory for a file's buffer; it is unknown then which channels were
    ///         written
    void update(std::array<unsigned short, 3U> const& brightness, bool force);

    /// Requests the colours of a state from the next tick on. Holds the mutex while it stores the state.
    ///
    /// Threads: thread-safe.
    /// @param state any state; one without colours changes nothing on the LED
    void request(eStatus_Bits state);

protected:
    /// One step of run(): follows a change of the requested state, then shows the sequence's next colour. A tick that
    /// fails, for example without memory, is lost silently. The next tick writes all three channels.
    /// @param sequence of the shown state
    void tick(LedSequence& sequence) noexcept;

private:
    // The order of the members is part of the binary interface.
    eStatus_Bits requested_;
    eStatus_Bits shown_;         // of the LED thread, of the owner while that thread does not run
    std::recursive_mutex mutex_; // guards the requested state; not held while a file or the log is written
    std::array<unsigned short, 3U> brightness_; // as shown_
};

} // namespace shm
