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

/// Plays the colour sequence of the requested state on the three LED class devices under /sys/class/leds, one
/// colour every 500 ms: one colour is a steady light, several blink. The LED keeps its last colour after the
/// thread has ended. Logs in "qel.shm.access.states".
///
/// Threads: request() may be called from any thread and never waits for a file or a line of the log; start() and join()
/// belong to the owner, who must join before the object is destroyed. Joining interrupts the sleep between two ticks,
/// but waits for a file that hangs.
class QEL_EXPORT QelStateLedThread : public Thread {
public:
    /// Makes the LED green, whatever it shows.
    QelStateLedThread();
    ~QelStateLedThread() override;

    QelStateLedThread(QelStateLedThread const&) = delete;
    QelStateLedThread& operator=(QelStateLedThread const&) = delete;

    /// The thread's body: one tick every 500 ms until the thread is joined.
    /// Throws ex::TAVSimpleException when the state to begin with has no colours, after an ERROR line.
    /// Logs each change of state at INFO, and at WARN, each tick, a requested state without colours.
    /// Holds the mutex only while it takes the requested state.
    void run() override;

    /// Writes the channels whose level differs from the last one written, or all of them. A level counts as
    /// written even if its file could not be opened, so it is not tried again until it changes. Logs each
    /// level at DEBUG, and at WARN a file that cannot be opened. Throws std::bad_alloc when there is no memory
    /// for a file's buffer; which channels were written is not known then. Threads: the thread itself, or the
    /// owner while the thread does not run.
    /// @param brightness LED levels of red, green and blue
    /// @param force      write unchanged channels as well
    void update(std::array<unsigned short, 3U> const& brightness, bool force);

    /// Asks for the colours of a state, from the next tick on. Holds the mutex while it stores the state.
    void request(eStatus_Bits state);

protected:
    /// One step of run(): follows a change of the requested state, then shows the sequence's next colour. A tick that
    /// fails, for want of memory for example, is lost without a word: the next one writes all three channels.
    void tick(LedSequence& sequence) noexcept;

private:
    // In the order of the binary contract.
    eStatus_Bits requested_;
    eStatus_Bits shown_;         // the thread's own, the owner's while it does not run
    std::recursive_mutex mutex_; // guards the requested state; not held while a file or the log is written
    std::array<unsigned short, 3U> brightness_; // as shown_
};

} // namespace shm
