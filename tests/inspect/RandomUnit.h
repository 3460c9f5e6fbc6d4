// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// A unit whose sensors come and go at random.
#pragma once

#include "inspect/image/Image.h"

#include "tests/writer/WriterFixture.h"

#include <cstdint>
#include <map>
#include <random>
#include <set>
#include <unordered_set>
#include <vector>

namespace qel::test {

/// Drives one real writer through random structures: additions, removals, replacements, values with every state,
/// propagation. The same sequence for the same seed.
class RandomUnit {
public:
    /// @param largest    about how many points it may have
    /// @param leaveOrphans also remove points whose children stay
    RandomUnit(std::uint32_t seed, int largest, bool leaveOrphans);

    /// Changes the structure in one way or another, delivers some values and propagates the states.
    void step() {
        stepWithoutPropagation();
        propagate();
    }
    void stepWithoutPropagation();
    void propagate() { writer_.propagateStates(); }

    inspect::Image image();
    std::size_t size() const { return points_.size(); }
    /// How often points were removed, or refused for want of a parent.
    int removals() const { return removals_; }
    int refusals() const { return refusals_; }

private:
    int number(int low, int high) { return std::uniform_int_distribution<int>(low, high)(random_); }
    bool chance(int percent) { return number(1, 100) <= percent; }

    long long anyPoint();
    long long anyKnown();
    void insertWithParents(long long svid);
    void grow(int count);
    void removeSubtree(long long svid);
    void changeStructure();
    void modify();
    void deliver();

    std::mt19937 random_;
    int largest_;
    bool leaveOrphans_;
    ExposedWriter writer_;
    std::map<long long, std::set<unsigned short>>
        points_; ///< those that exist, with the keys of their values
    int removals_ = 0;
    int refusals_ = 0;
};

} // namespace qel::test
