// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// A real writer that lays trees out over and over, always in slots that were used before.
#pragma once

#include "tests/cuts/TreeShapes.h"
#include "tests/support/RawRegion.h"
#include "tests/writer/WriterFixture.h"
#include "writer/QelShmKeptUpdate.h"

#include <cstddef>
#include <cstdint>
#include <map>
#include <string>
#include <unordered_set>
#include <vector>

namespace qel::test {

/// Nearly all slots are taken for good by points of a sensor type that has no list in the root, so no reader ever meets
/// them. What is left are a few slots that go round: every slot that a tree takes was another tree's before. The writer
/// is the one of this folder, so a StoreLog can note what it stores.
///
/// Logging is switched off while one lives.
class WriterBench {
public:
    /// Slots that go round: a tree of six points and two more, with two values each.
    static constexpr std::size_t pointSlots = 8;
    static constexpr std::size_t valueSlots = 24;

    WriterBench();
    ~WriterBench();
    WriterBench(WriterBench const&) = delete;
    WriterBench& operator=(WriterBench const&) = delete;

    /// Takes everything out again and lays the tree out, with a number of its own in each value, active and propagated.
    void layOut(Tree const& tree);

    /// Takes all free slots, so that what is freed from now on is what is taken next.
    void takeFreeSlots();

    // What operations are made of.

    void add(NewPlace const& place, unsigned values);
    /// Adds to a point of the tree the keys that it has not.
    void addKeys(std::size_t point, std::vector<unsigned short> const& keys);
    /// Removes points of the tree, all in one call.
    void remove(std::vector<std::size_t> const& points);
    /// One call that adds a point with two values and removes points of the tree.
    void modify(NewPlace const& place, std::vector<std::size_t> const& gone);
    /// Stores a number that no value had before.
    void update(long long svid, eStatus_Bits state = eStatus_NoError);
    /// The same through a kept value, which is remembered from tree to tree.
    void updateKept(long long svid, eStatus_Bits state = eStatus_NoError);
    /// The same for a text, which is no number.
    void updateText(long long svid);
    void setType(std::size_t point, int type) { writer_.injectTypes({{tree_.points[point].svid, type}}); }
    void propagate() { writer_.propagateStates(); }
    void activate() { writer_.setActive(); }

    /// A content that was stored for a value.
    struct Stored {
        std::int64_t owner;
        std::uint16_t key;
        std::uint64_t number;
        std::uint64_t at;
        std::int32_t state;
        std::size_t moment; ///< the call of the operation that stored it, 0 for before
    };

    /// Says which call of an operation comes next.
    void nextMoment() { ++moment_; }

    /// What update() has stored, also into values that no list leads to any more.
    std::vector<Stored> const& stored() const { return stored_; }

    /// The slots of all points of tree and operation that the writer knows, whether or not a list leads to them.
    std::vector<std::uint32_t> knownSlots();

    Tree const& tree() const { return tree_; }
    std::uint8_t* bytes() const { return raw_.bytes(); }
    void const* writersMapping() const { return writer_.region(); }

private:
    /// Stores what no value had before.
    /// @param store is called with number and time
    template <typename Store>
    void updateBy(long long svid, eStatus_Bits state, Store const& store);
    std::uint32_t positionOf(int parent) const;
    std::map<unsigned short, unsigned int> keysOf(unsigned values) const;

    int formerLogLevel_;
    ExposedWriter writer_;
    RawRegion raw_;
    Definitions permanent_; // that hold nearly all slots
    Definitions alive_;     // all that is laid out
    Tree tree_;
    std::vector<std::uint32_t> positions_; // of the tree's points
    std::vector<long long> added_;         // by tree and operation, some of them removed again
    std::map<long long, shm::QelShmKeptUpdate> kept_;
    std::uint64_t updates_ = 0;
    std::vector<Stored> stored_;
    std::size_t moment_ = 0;
};

} // namespace qel::test
