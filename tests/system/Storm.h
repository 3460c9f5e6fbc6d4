// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// A writer that never rests.
#pragma once

#include "tests/support/FakeHardwareManager.h"
#include "tests/support/ProgressPage.h"
#include "writer/QelSharedMemoryWriter.h"

#include <array>
#include <cstdint>
#include <random>
#include <vector>

namespace qel::test {

/// What a storm marks its progress page with.
enum class StormStep : std::uint32_t { None, Remove, LayOut, Update, Propagate, Announce, Rest };

constexpr std::array<char const*, 7> stormStepNames{"none",        "removal",  "layout", "updates",
                                                    "propagation", "announce", "rest"};

/// Lays out the unit and then does to it, in random order, all that a writer does: removes a part or the whole, lays
/// it out again, updates values, propagates states, announces. The same for the same seed, time stamps included.
class Storm {
public:
    /// @param page where each step is marked while it lasts and counted when it is done; must be there meanwhile
    Storm(shm::QelSharedMemoryWriter& writer, FakeHardwareManager& manager, std::uint32_t seed,
          ProgressPage& page);

    /// Lays out the unit, makes the region active and goes on for that many steps.
    /// @param steps 0 for ever
    void run(unsigned long steps);

private:
    void step();
    void begin(StormStep step) { page_.mark(static_cast<std::uint32_t>(step)); }
    void removePart();
    void layOutAnew();
    void updateValues();

    shm::QelSharedMemoryWriter& writer_;
    FakeHardwareManager& manager_;
    ProgressPage& page_;
    std::mt19937 random_;
    shm::QelSharedMemoryWriter::Definitions whole_;
    std::vector<long long> values_;
    std::uint64_t now_ = 0;
};

} // namespace qel::test
