// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

// The whole writer against a plain model: random sequences of every operation that changes the region, and
// after each step the region's bytes, the results and both free lists (which slot comes next) are the
// model's.

#include "region/Exceptions.h"
#include "tests/support/RawRegion.h"
#include "tests/writer/PlainModel.h"
#include "writer/QelSharedMemoryWriter.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <memory>
#include <random>
#include <string>
#include <unordered_map>
#include <unordered_set>
#include <vector>

namespace qel::test {

namespace {

using shm::MPDef;
using Definitions = std::map<long long, MPDef, shm::SvidCmp>;

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

class WriterAgainstModel : public testing::TestWithParam<Scenario> {
protected:
    int number(int low, int high) { return std::uniform_int_distribution<int>(low, high)(random_); }
    bool chance(int percent) { return number(1, 100) <= percent; }

    template <typename Choice>
    Choice pick(std::vector<Choice> const& choices) {
        return choices[static_cast<std::size_t>(number(0, static_cast<int>(choices.size()) - 1))];
    }

    static std::int64_t id(int device, int kind, int inlet, int phase, int circuit, int socket) {
        std::uint64_t bits = 0;
        for (int const byte : {device, kind, inlet, phase, circuit, socket}) {
            bits = (bits << 8U) | static_cast<std::uint64_t>(byte & 0xFF);
        }
        return static_cast<std::int64_t>(bits << 16U);
    }

    // An id somewhere in the tree of a plausible unit; now and then one that no unit would have.
    std::int64_t anyPoint() {
        int const device = number(1, 3);
        switch (number(0, 9)) {
        case 0:
            return id(device, 0, -1, -1, -1, -1);
        case 1:
            return id(device, 0, number(1, 3), -1, -1, -1);
        case 2:
            return id(device, 0, number(1, 3), number(1, 3), -1, -1);
        case 3:
            return id(device, 0, number(1, 3), number(1, 3), number(0, 6), -1);
        case 4:
        case 5:
            return id(device, 0, number(1, 3), number(1, 3), number(0, 6), number(1, 40));
        case 6:
            return id(device, 1, number(1, 3), number(-1, 120), number(-1, 5), -1);
        case 7:
            return id(device, 2, -1, number(1, 30), -1, -1);
        case 8:
            return id(device, 4, number(1, 3), number(1, 3), number(-1, 6), -1);
        default:
            return id(number(-1, 2), number(0, 5), number(-1, 2), number(-1, 2), number(-1, 2),
                      number(-1, 2));
        }
    }

    std::uint16_t anyKey() {
        static std::array<int, 12> const special{0x30, 0x33,   0x3A,   0x3B,   32, 38,
                                                 39,   0xFFF9, 0xFFFC, 0xFFFD, 1,  0xFFFF};
        if (chance(25)) {
            return static_cast<std::uint16_t>(special[static_cast<std::size_t>(number(0, 11))]);
        }
        return static_cast<std::uint16_t>(number(1, GetParam().valuesPerPoint * 2));
    }

    PlainModel::Keys anyKeys() {
        PlainModel::Keys keys;
        for (int count = number(0, GetParam().valuesPerPoint); count > 0; --count) {
            keys.insert(anyKey());
        }
        return keys;
    }

    static Definitions definitionsOf(PlainModel::Structure const& structure) {
        Definitions definitions;
        for (auto const& [svid, keys] : structure) {
            auto& definition = definitions[svid];
            for (auto const key : keys) {
                definition.mvs[key] = 12345; // ignored by the writer
            }
        }
        return definitions;
    }

    std::vector<std::int64_t> knownIds() const {
        std::vector<std::int64_t> ids;
        for (auto const& entry : model_.known()) {
            ids.push_back(entry.first);
        }
        return ids;
    }

    // With all levels above it, so that adding it succeeds; without them now and then.
    void insertWithParents(std::int64_t svid, std::set<std::int64_t>& ids) {
        ids.insert(svid);
        if (chance(2)) {
            return;
        }
        auto const byte = [&](int i) {
            return static_cast<int>((static_cast<std::uint64_t>(svid) >> (56 - 8 * i)) & 0xFF);
        };
        ids.insert(id(byte(0), 0, -1, -1, -1, -1));
        ids.insert(id(byte(0), 0, byte(2), -1, -1, -1));
        ids.insert(id(byte(0), 0, byte(2), byte(3), -1, -1));
        ids.insert(id(byte(0), 0, byte(2), byte(3), byte(4), -1));
    }

    void compare(char const* step) {
        auto const& expected = model_.image();
        auto const* const actual = region_.bytes();
        if (std::equal(expected.begin(), expected.end(), actual)) {
            return;
        }
        auto const at = std::mismatch(expected.begin(), expected.end(), actual).first - expected.begin();
        FAIL() << "after " << step << " byte " << at << " is " << int{actual[at]} << ", expected "
               << int{expected[static_cast<std::size_t>(at)]};
    }

    PlainModel::Outcome add(PlainModel::Structure const& structure) {
        try {
            return writer_.addStructure(definitionsOf(structure)) ? PlainModel::Outcome::Changed
                                                                  : PlainModel::Outcome::Nothing;
        } catch (ex::InvalidSensorIdException const&) {
            return PlainModel::Outcome::Thrown;
        }
    }

    void stepAddStructure() {
        std::set<std::int64_t> ids;
        for (int count = number(1, GetParam().maximumGrowth); count > 0; --count) {
            insertWithParents(anyPoint(), ids);
        }
        PlainModel::Structure structure;
        for (auto const svid : ids) {
            structure[svid] = anyKeys();
        }
        EXPECT_EQ(model_.addStructure(structure), add(structure));
    }

    void stepAddPoint() {
        auto const ids = knownIds();
        auto const svid = !ids.empty() && chance(50) ? pick(ids) : anyPoint();
        auto const keys = anyKeys();
        // Only under a parent that exists; a position of a free slot would hang the point into nothing.
        auto const parent = ids.empty() || chance(20) ? rawNone : model_.known().at(pick(ids)).pos;
        std::map<unsigned short, unsigned int> mvs;
        for (auto const key : keys) {
            mvs[key] = 0;
        }
        auto const ownChild = model_.known().count(svid) == 0 ? parent : rawNone;
        EXPECT_EQ(model_.addMP(svid | 5, keys, ownChild), writer_.addMP(svid | 5, mvs, ownChild));
    }

    // The set of sensors that exist: most of the known ones, with their values, and a few new ones.
    void stepModify() {
        auto const known = knownIds();
        int const surplus = static_cast<int>(known.size()) - GetParam().pointsWanted;
        int const loss = surplus > 0 ? 100 * surplus / static_cast<int>(known.size()) + 5 : number(0, 3);
        std::set<std::int64_t> ids;
        for (auto const svid : known) {
            if (!chance(loss)) {
                ids.insert(svid);
            }
        }
        for (int count = number(0, GetParam().maximumGrowth); count > 0; --count) {
            insertWithParents(anyPoint(), ids);
        }
        std::set<std::int64_t> svids;
        for (auto const svid : ids) {
            svids.insert(svid);
            for (auto const key : anyKeys()) {
                svids.insert(svid | key);
            }
        }
        std::unordered_set<long long> const handedOver(svids.begin(), svids.end());
        auto const expected = model_.modifyStructure(svids);
        auto actual = PlainModel::Outcome::Thrown;
        try {
            actual = writer_.modifyStructure(handedOver) ? PlainModel::Outcome::Changed
                                                         : PlainModel::Outcome::Nothing;
        } catch (ex::InvalidSensorIdException const&) {
            actual = PlainModel::Outcome::Thrown;
        }
        EXPECT_EQ(expected, actual);
    }

    void stepRemove() {
        PlainModel::Structure structure;
        for (auto const svid : knownIds()) {
            if (!chance(4)) {
                structure[svid] = {};
            }
        }
        EXPECT_EQ(model_.removeStructure(structure), writer_.removeStructure(definitionsOf(structure)));
    }

    void stepInject() {
        std::map<std::int64_t, int> codes;
        for (int count = number(0, 5); count > 0; --count) {
            auto const ids = knownIds();
            auto const svid = !ids.empty() && chance(80) ? pick(ids) : anyPoint();
            codes[svid | number(0, 3)] = number(-300, 300);
        }
        // Two entries of one point would be applied in hash order.
        for (auto entry = codes.begin(); entry != codes.end();) {
            auto const next = std::next(entry);
            bool const samePoint = next != codes.end() && (entry->first >> 16) == (next->first >> 16);
            entry = samePoint ? codes.erase(entry) : next;
        }
        std::unordered_map<long long, int> const handedOver(codes.begin(), codes.end());
        auto const applied = writer_.injectTypes(handedOver);
        EXPECT_EQ(model_.injectTypes(codes), std::set<std::int64_t>(applied.begin(), applied.end()));
    }

    void stepUpdate() {
        auto const ids = knownIds();
        auto svid = ids.empty() || chance(5) ? anyPoint() : pick(ids);
        auto key = anyKey();
        if (auto const known = model_.known().find(svid); known != model_.known().end() && chance(80)) {
            auto const& values = known->second.values;
            if (!values.empty()) {
                key = std::next(values.begin(), number(0, static_cast<int>(values.size()) - 1))->first;
            }
        }
        svid |= key;
        auto const at = static_cast<std::uint64_t>(random_()) << 16U;
        auto const state = static_cast<eStatus_Bits>(chance(60) ? number(-2, 4) : number(-5, 50));
        if (chance(10)) {
            EXPECT_EQ(model_.updateMV(svid, false, 0.0, at, state),
                      writer_.updateMV(svid, std::make_unique<measval::MeasureValue>("text", at, state)));
        } else {
            double const value = number(-1000000, 1000000) / 7.0;
            EXPECT_EQ(model_.updateMV(svid, true, value, at, state),
                      writer_.updateMV(svid, std::make_unique<measval::MeasureValue>(value, at, state)));
        }
    }

    void step() {
        int const dice = number(1, 100);
        if (dice <= 8) {
            stepAddStructure();
            compare("addStructure");
        } else if (dice <= 16) {
            stepAddPoint();
            compare("addMP");
        } else if (dice <= 24) {
            stepModify();
            compare("modifyStructure");
        } else if (dice <= 28) {
            stepRemove();
            compare("removeStructure");
        } else if (dice <= 36) {
            stepInject();
            compare("injectTypes");
        } else if (dice <= 90) {
            stepUpdate();
            compare("updateMV");
        } else {
            model_.propagateStates();
            writer_.propagateStates();
            compare("propagateStates");
        }
    }

    std::mt19937 random_{GetParam().seed};
    shm::QelSharedMemoryWriter writer_;
    RawRegion region_;
    PlainModel model_;
};

TEST_P(WriterAgainstModel, EveryStep_LeavesTheBytesOfTheModel) {
    model_.setActive();
    writer_.setActive();
    compare("setActive");

    int timesPointsRanOut = 0;
    int timesValuesRanOut = 0;
    for (int i = 0; i < GetParam().steps && !HasFatalFailure() && !HasNonfatalFailure(); ++i) {
        SCOPED_TRACE("step " + std::to_string(i));
        bool const pointsWereFree = !model_.freePoints().empty();
        bool const valuesWereFree = !model_.freeValues().empty();
        step();
        timesPointsRanOut += pointsWereFree && model_.freePoints().empty() ? 1 : 0;
        timesValuesRanOut += valuesWereFree && model_.freeValues().empty() ? 1 : 0;
    }

    // The scenario reached what it is for.
    EXPECT_EQ(GetParam().fillsUp, timesPointsRanOut > 1);
    EXPECT_EQ(GetParam().fillsUp, timesValuesRanOut > 1);
}

INSTANTIATE_TEST_SUITE_P(
    Sequences, WriterAgainstModel,
    testing::Values(Scenario{1, 8000, 60, 6, 5, false}, Scenario{2, 8000, 120, 8, 8, false},
                    Scenario{3, 4000, 300, 4, 30, false}, Scenario{4, 600, 900, 18, 120, true},
                    Scenario{5, 600, 780, 18, 120, true}, Scenario{6, 600, 700, 40, 80, true}),
    [](auto const& scenario) {
        return "Seed" + std::to_string(scenario.param.seed) + "_Points" +
               std::to_string(scenario.param.pointsWanted);
    });

} // namespace

} // namespace qel::test
