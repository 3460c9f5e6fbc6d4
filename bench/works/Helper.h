// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// A second process that does its part beside the one that measures.
#pragma once

#include "bench/support/Plan.h"
#include "bench/support/Process.h"
#include "bench/support/SharedObject.h"

#include <semaphore.h>

#include <atomic>
#include <cstdint>
#include <string>
#include <vector>

namespace bench {

/// How the program is told to be a helper.
constexpr char helperOption[] = "--helper";

/// What a helper and its owner share.
// NOLINTNEXTLINE(clang-analyzer-optin.performance.Padding): on purpose, see below.
struct Control {
    sem_t start; ///< posted by the owner
    sem_t done;  ///< posted by the helper after it was told to stop
    std::atomic<bool> ready;
    std::atomic<bool> stop;
    std::atomic<bool> quit;
    std::atomic<std::uint64_t> rounds; ///< of the helper since it started

    // In a cache line of their own: the owner spins on them while the helper counts its rounds.
    static constexpr std::size_t cacheLine = 64;
    alignas(cacheLine) std::atomic<std::uint64_t> seen; ///< changes that a watching helper has seen
    std::atomic<std::int64_t> latency; ///< ns from the stamp in the value that was seen last until then
};
static_assert(std::atomic<std::int64_t>::is_always_lock_free &&
              std::atomic<std::uint64_t>::is_always_lock_free);

/// What helpers can do for a contender.
struct HelperRole {
    char const* role;
    char const* contender;
    void (*run)(Plan const& plan, Control& control);
};

/// Of the contenders that work in several processes.
std::vector<HelperRole> helperRoles();

/// Owns a helper process. Throws std::runtime_error when the helper fails.
class Helper {
public:
    /// Returns when the helper is ready.
    Helper(std::string const& role, std::string const& contender, Shape const& shape);
    ~Helper();
    Helper(Helper const&) = delete;
    Helper& operator=(Helper const&) = delete;

    /// Returns when the helper has done a round.
    void start();

    /// Returns when the helper rests.
    void stop();

    Control const& control() const { return control_; }
    Process const& process() const { return process_; }

    /// Waits, spinning, until the helper has seen this many changes.
    void waitUntilSeen(std::uint64_t changes) const;

private:
    template <typename Condition>
    void spinUntil(Condition const& condition) const;

    SharedObject object_;
    Control& control_;
    Process process_;
};

/// The helper's main program.
/// @param roles what this program can be told to do
void runHelper(std::vector<HelperRole> const& roles, int argc, char const* const* argv);

/// Repeats a round while the owner wants it, and returns when the owner ends.
template <typename Round>
void repeat(Control& control, Round round) {
    control.ready = true;
    for (;;) {
        while (sem_wait(&control.start) != 0) { // a signal came
        }
        if (control.quit) {
            return;
        }
        while (!control.stop.load(std::memory_order_relaxed)) {
            round();
            control.rounds.fetch_add(1, std::memory_order_relaxed);
        }
        sem_post(&control.done);
    }
}

} // namespace bench
