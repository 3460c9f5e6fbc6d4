// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

// The whole writer against the reference writer: random sequences of every operation that changes the region. After
// each step the region's bytes and the results are the same; so is, with the next point and value, the slot that comes
// next.

#include "writer/QelSharedMemoryWriter.h"

#include "format/ValueKeys.h"
#include "tests/model/RandomSensors.h"
#include "tests/model/ReferenceWriter.h"
#include "tests/model/WriterCalls.h"
#include "tests/support/RawRegion.h"
#include "writer/QelShmKeptUpdate.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <iterator>
#include <map>
#include <ostream>
#include <set>
#include <string>
#include <unordered_map>
#include <unordered_set>
#include <vector>

namespace qel::test {

namespace {

using Definitions = shm::QelSharedMemoryWriter::Definitions;

struct Scenario {
    std::uint32_t seed;
    int steps;
    int pointsWanted; // about how many points the set of existing sensors hovers around
    int valuesPerPoint;
    int maximumGrowth; // of one change of structure
    bool fillsUp;      // both tables run out of slots, are emptied in part and run out again
};

std::ostream& operator<<(std::ostream& out, Scenario const& scenario) {
    return out << scenario.steps << " steps";
}

class QelSharedMemoryWriterRandomTest : public testing::TestWithParam<Scenario> {
protected:
    std::vector<std::int64_t> knownIds() const {
        std::vector<std::int64_t> ids;
        for (auto const& entry : reference_.known()) {
            ids.push_back(entry.first);
        }
        return ids;
    }

    void stepAddStructure() {
        auto const structure = sensors_.anyStructure(GetParam().maximumGrowth);
        EXPECT_EQ(reference_.addStructure(structure), addTo(writer_, structure));
    }

    void stepAddPoint() {
        auto const ids = knownIds();
        auto const svid = !ids.empty() && sensors_.chance(50) ? sensors_.pick(ids) : sensors_.anyPoint();
        auto const keys = sensors_.anyKeys();
        // Only under a parent that exists; a position of a free slot would hang the point into nothing.
        auto const parent =
            ids.empty() || sensors_.chance(20) ? rawNone : reference_.known().at(sensors_.pick(ids)).pos;
        std::map<unsigned short, unsigned int> mvs;
        for (auto const key : keys) {
            mvs[key] = 0;
        }
        auto const ownChild = reference_.known().count(svid) == 0 ? parent : rawNone;
        EXPECT_EQ(reference_.addMP(svid | shm::key::peakCurrent, keys, ownChild),
                  writer_.addMP(svid | shm::key::peakCurrent, mvs, ownChild));
    }

    // The set of sensors that exist: most of the known ones, with their values, and a few new ones.
    void stepModify() {
        auto const known = knownIds();
        int const surplus = static_cast<int>(known.size()) - GetParam().pointsWanted;
        int const loss =
            surplus > 0 ? 100 * surplus / static_cast<int>(known.size()) + 5 : sensors_.number(0, 3);
        std::set<std::int64_t> ids;
        for (auto const svid : known) {
            if (!sensors_.chance(loss)) {
                ids.insert(svid);
            }
        }
        for (int count = sensors_.number(0, GetParam().maximumGrowth); count > 0; --count) {
            sensors_.insertWithParents(sensors_.anyPoint(), ids);
        }
        std::set<std::int64_t> svids;
        for (auto const svid : ids) {
            svids.insert(svid);
            for (auto const key : sensors_.anyKeys()) {
                svids.insert(svid | key);
            }
        }
        std::unordered_set<long long> const handedOver(svids.begin(), svids.end());
        EXPECT_EQ(reference_.modifyStructure(svids),
                  outcomeOf([&] { return writer_.modifyStructure(handedOver); }));
    }

    void stepRemove() {
        ReferenceWriter::Structure structure;
        for (auto const svid : knownIds()) {
            if (!sensors_.chance(4)) {
                structure[svid] = {};
            }
        }
        EXPECT_EQ(reference_.removeStructure(structure),
                  writer_.removeStructure(definitionsOf<Definitions>(structure)));
    }

    void stepInject() {
        std::map<std::int64_t, int> codes;
        for (int count = sensors_.number(0, 5); count > 0; --count) {
            auto const ids = knownIds();
            auto const svid = !ids.empty() && sensors_.chance(80) ? sensors_.pick(ids) : sensors_.anyPoint();
            codes[svid | sensors_.number(0, 3)] = sensors_.number(-300, 300);
        }
        // Two entries of one point would be applied in hash order.
        for (auto entry = codes.begin(); entry != codes.end();) {
            auto const next = std::next(entry);
            bool const samePoint = next != codes.end() && (entry->first >> 16) == (next->first >> 16);
            entry = samePoint ? codes.erase(entry) : next;
        }
        std::unordered_map<long long, int> const handedOver(codes.begin(), codes.end());
        auto const applied = writer_.injectTypes(handedOver);
        EXPECT_EQ(reference_.injectTypes(codes), std::set<std::int64_t>(applied.begin(), applied.end()));
    }

    void stepUpdate() {
        auto const update = sensors_.anyUpdate(reference_);
        EXPECT_EQ(reference_.updateMV(update.svid, update.number, update.at, update.state), deliver(update));
    }

    /// Half of the numbers through kept values, which outlive all changes of the structure.
    bool deliver(RandomSensors::Update const& update) {
        if (!update.number || sensors_.chance(50)) {
            return writer_.updateMV(update.svid, valueOf(update));
        }
        auto& kept = kept_.try_emplace(update.svid, update.svid).first->second;
        return writer_.updateMV(kept, *update.number, update.at, static_cast<eStatus_Bits>(update.state));
    }

    void stepPropagate() {
        reference_.propagateStates();
        writer_.propagateStates();
    }

    /// @return its name
    char const* step() {
        int const dice = sensors_.number(1, 100);
        if (dice <= 8) {
            stepAddStructure();
            return "addStructure";
        }
        if (dice <= 16) {
            stepAddPoint();
            return "addMP";
        }
        if (dice <= 24) {
            stepModify();
            return "modifyStructure";
        }
        if (dice <= 28) {
            stepRemove();
            return "removeStructure";
        }
        if (dice <= 36) {
            stepInject();
            return "injectTypes";
        }
        if (dice <= 90) {
            stepUpdate();
            return "updateMV";
        }
        stepPropagate();
        return "propagateStates";
    }

    RandomSensors sensors_{GetParam().seed, GetParam().valuesPerPoint};
    shm::QelSharedMemoryWriter writer_;
    RawRegion region_;
    ReferenceWriter reference_;
    std::map<long long, shm::QelShmKeptUpdate> kept_; // by their ids
};

TEST_P(QelSharedMemoryWriterRandomTest, EveryStep_LeavesTheBytesOfTheReference) {
    reference_.setActive();
    writer_.setActive();
    ASSERT_TRUE(holdsBytesOf(reference_, region_.bytes()));

    int timesPointsRanOut = 0;
    int timesValuesRanOut = 0;
    for (int i = 0; i < GetParam().steps && !HasFailure(); ++i) {
        bool const pointsWereFree = !reference_.freePoints().empty();
        bool const valuesWereFree = !reference_.freeValues().empty();
        auto const* const name = step();
        ASSERT_TRUE(holdsBytesOf(reference_, region_.bytes())) << "after step " << i << ", " << name;
        timesPointsRanOut += pointsWereFree && reference_.freePoints().empty() ? 1 : 0;
        timesValuesRanOut += valuesWereFree && reference_.freeValues().empty() ? 1 : 0;
    }

    // The scenario reached what it is for.
    EXPECT_EQ(GetParam().fillsUp, timesPointsRanOut > 1);
    EXPECT_EQ(GetParam().fillsUp, timesValuesRanOut > 1);
}

INSTANTIATE_TEST_SUITE_P(
    Sequences, QelSharedMemoryWriterRandomTest,
    testing::Values(Scenario{1, 8000, 60, 6, 5, false}, Scenario{2, 8000, 120, 8, 8, false},
                    Scenario{3, 4000, 300, 4, 30, false}, Scenario{4, 600, 900, 18, 120, true},
                    Scenario{5, 600, 780, 18, 120, true}, Scenario{6, 600, 700, 40, 120, true}),
    [](auto const& scenario) {
        return "Seed" + std::to_string(scenario.param.seed) + "_Points" +
               std::to_string(scenario.param.pointsWanted);
    });

} // namespace

} // namespace qel::test
