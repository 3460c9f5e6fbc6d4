// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// Sensors as random tests of a writer use them.
#pragma once

#include "tests/model/ReferenceWriter.h"

#include <cstdint>
#include <optional>
#include <random>
#include <set>
#include <vector>

namespace qel::test {

/// Ids, keys, structures and updates: those of a plausible unit, and now and then some that no unit has. The same
/// sequence for the same seed.
///
/// Threads: reentrant.
class RandomSensors {
public:
    using Svid = ReferenceWriter::Svid;

    /// @param valuesPerPoint about how many values a point has
    RandomSensors(std::uint32_t seed, int valuesPerPoint) : random_(seed), valuesPerPoint_(valuesPerPoint) {}

    int number(int low, int high) { return std::uniform_int_distribution<int>(low, high)(random_); }
    bool chance(int percent) { return number(1, 100) <= percent; }
    template <typename Choice>
    Choice pick(std::vector<Choice> const& choices) {
        return choices[static_cast<std::size_t>(number(0, static_cast<int>(choices.size()) - 1))];
    }

    Svid anyPoint();
    std::uint16_t anyKey();
    ReferenceWriter::Keys anyKeys();

    /// Enters a point, and nearly always all above it, so that adding them succeeds.
    void insertWithParents(Svid svid, std::set<Svid>& ids);

    /// A few new points; some of them are known to the writer already, bear a key or are the root.
    ReferenceWriter::Structure anyStructure(int mostPoints);

    struct Update {
        Svid svid = 0;
        std::optional<double> number; ///< none for a text
        std::uint64_t at = 0;
        std::int32_t state = 0;
    };
    /// Mostly of a value that the writer knows.
    Update anyUpdate(ReferenceWriter const& writer);

private:
    std::mt19937 random_;
    int valuesPerPoint_;
};

} // namespace qel::test
