// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "inspect/why/Causes.h"

#include "format/ValueKeys.h"
#include "inspect/image/LiveRegion.h"

#include "tests/support/Rounds.h"
#include "tests/writer/WriterFixture.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <iterator>
#include <map>
#include <optional>
#include <random>
#include <set>
#include <stdexcept>
#include <string>
#include <vector>

namespace qel::inspect {

namespace {

using std::chrono::milliseconds;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr std::uint64_t now = 1'700'000'000'000;
constexpr unsigned short ownKey = shm::key::fuseState;
constexpr unsigned short voltage = shm::key::voltage;
constexpr unsigned short power = shm::key::activePower;

constexpr long long unit = test::pointId(1, 0);
constexpr long long inlet = test::pointId(1, 0, 1);
constexpr long long phase = test::pointId(1, 0, 1, 2);
constexpr long long circuit = test::pointId(1, 0, 1, 2, 3);
constexpr long long socket = test::pointId(1, 0, 1, 2, 3, 4);
constexpr long long otherSocket = test::pointId(1, 0, 1, 2, 3, 5);
constexpr long long sensor = test::pointId(1, 1, 1, 1);

/// "unit1/inlet1#19 value-alarm" of a value, "unit1/inlet1 own-state" of a point.
std::string nameOf(Cause const& cause) {
    auto const key = cause.key ? '#' + std::to_string(*cause.key) : std::string();
    return cause.path + key + ' ' + ruleCode(cause.chain.front().rule);
}

std::vector<std::string> namesOf(Causes const& causes) {
    std::vector<std::string> names;
    std::transform(causes.causes.begin(), causes.causes.end(), std::back_inserter(names), nameOf);
    return names;
}

/// "unit1 23 child-alarm", with "(hidden)" behind it where it is.
std::vector<std::string> chainOf(Cause const& cause) {
    std::vector<std::string> levels;
    for (auto const& step : cause.chain) {
        levels.push_back(step.path + ' ' + std::to_string(step.state) + ' ' + ruleCode(step.rule) +
                         (step.isShown ? "" : " (hidden)"));
    }
    return levels;
}

/// A writer with one point of each level.
class CausesTest : public testing::Test {
protected:
    CausesTest() {
        test::Definitions definitions;
        for (auto const svid : {unit, inlet, phase, circuit, socket, otherSocket, sensor}) {
            definitions.emplace(svid, test::withKeys({voltage, power}));
        }
        writer_.addStructure(definitions);
        writer_.setActive();
    }

    void deliver(long long svid, eStatus_Bits state, double number = 0.0, std::uint64_t at = now) {
        ASSERT_TRUE(writer_.updateMV(svid, test::measured(number, at, state)));
    }

    Causes global() {
        writer_.propagateStates();
        return globalUnpropagated();
    }

    static Causes globalUnpropagated() {
        auto const image = LiveRegion().copy();
        return globalCauses(image, PointTree(image), now);
    }

    Causes of(long long svid) {
        writer_.propagateStates();
        auto const image = LiveRegion().copy();
        PointTree const tree(image);
        for (std::uint32_t node = 0; node < tree.nodes().size(); ++node) {
            if (image.point(tree.nodes()[node].pos)->guid == svid) {
                return pointCauses(image, tree, node, now);
            }
        }
        throw std::out_of_range("no such point");
    }

    shm::QelSharedMemoryWriter writer_;
};

} // namespace

TEST_F(CausesTest, UnitThatIsOnHasNone) {
    auto const causes = global();
    EXPECT_EQ(eStatus_On, causes.state);
    EXPECT_EQ(eStatus_On, causes.propagated);
    EXPECT_THAT(causes.causes, IsEmpty());
}

TEST_F(CausesTest, EmptyImageHasNone) {
    Image const image;
    EXPECT_THAT(globalCauses(image, PointTree(image), now).causes, IsEmpty());
}

TEST_F(CausesTest, AlarmOfAValueIsCarriedUpToTheRoot) {
    deliver(socket | power, eStatus_HighAlarm, 2649.2, now - 1500);
    auto const causes = global();
    EXPECT_EQ(eStatus_ChildAlarm, causes.state);
    EXPECT_EQ(eStatus_ChildAlarm, causes.propagated);
    ASSERT_EQ(1U, causes.causes.size());
    auto const& cause = causes.causes.front();
    EXPECT_EQ(socket, cause.svid);
    EXPECT_EQ("unit1/inlet1/phase2/circuit3/socket4", cause.path);
    EXPECT_EQ(power, cause.key);
    EXPECT_EQ("2649.2 W", cause.valueText);
    EXPECT_EQ(eStatus_HighAlarm, cause.state);
    EXPECT_EQ(now - 1500, cause.at);
    EXPECT_EQ(milliseconds(1500), cause.age);
    EXPECT_THAT(chainOf(cause),
                ElementsAre("unit1/inlet1/phase2/circuit3/socket4 9 value-alarm",
                            "unit1/inlet1/phase2/circuit3 23 child-alarm",
                            "unit1/inlet1/phase2 23 child-alarm", "unit1/inlet1 23 child-alarm",
                            "unit1 23 child-alarm", "global 23 child-alarm"));
    EXPECT_EQ(shm::ROOT_SVID, cause.chain.back().svid);
    EXPECT_EQ(shm::NO_POSITION, cause.chain.back().pos);
    EXPECT_EQ(inlet, cause.chain[3].svid);
    EXPECT_EQ(inlet, LiveRegion().copy().point(cause.chain[3].pos)->guid);
}

TEST_F(CausesTest, WarningOfAValueIsAWarningOfAChildAbove) {
    deliver(inlet | voltage, eStatus_LowWarning, 199.0);
    auto const causes = global();
    ASSERT_EQ(1U, causes.causes.size());
    EXPECT_THAT(
        chainOf(causes.causes.front()),
        ElementsAre("unit1/inlet1 13 value-warning", "unit1 24 child-warning", "global 24 child-warning"));
}

TEST_F(CausesTest, EveryTroubleIsListedInTheOrderOfTheTree) {
    deliver(socket | power, eStatus_HighAlarm);
    deliver(socket | voltage, eStatus_LowWarning);
    deliver(inlet | power, eStatus_LowAlarm);
    deliver(otherSocket | power, eStatus_OnWarning);
    deliver(sensor | ownKey, eStatus_Lost, 0.0, now + 3);
    EXPECT_THAT(namesOf(global()), ElementsAre("unit1/inlet1#19 value-alarm",
                                               "unit1/inlet1/phase2/circuit3/socket4#1 value-warning",
                                               "unit1/inlet1/phase2/circuit3/socket4#19 value-alarm",
                                               "unit1/inlet1/phase2/circuit3/socket5#19 value-warning",
                                               "unit1/sensor1.1 own-state"));
}

TEST_F(CausesTest, HiddenStepsAreMarked) {
    deliver(inlet | power, eStatus_LowAlarm);
    deliver(socket | voltage, eStatus_LowWarning);
    deliver(socket | power, eStatus_HighAlarm);
    auto const causes = global().causes;
    ASSERT_EQ(3U, causes.size());
    EXPECT_THAT(chainOf(causes[1]),
                ElementsAre("unit1/inlet1/phase2/circuit3/socket4 9 value-warning (hidden)",
                            "unit1/inlet1/phase2/circuit3 23 child-alarm",
                            "unit1/inlet1/phase2 23 child-alarm", "unit1/inlet1 9 child-alarm (hidden)",
                            "unit1 23 child-alarm", "global 23 child-alarm"));
}

TEST_F(CausesTest, LostPointIsItsOwnCauseAndHidesItsValues) {
    deliver(sensor | ownKey, eStatus_Lost, 0.0, now + 3);
    deliver(sensor | power, eStatus_Alarm);
    auto const causes = global().causes;
    ASSERT_EQ(2U, causes.size());
    EXPECT_EQ(std::nullopt, causes[0].key);
    EXPECT_EQ("", causes[0].valueText);
    EXPECT_EQ(eStatus_Lost, causes[0].state);
    EXPECT_EQ(milliseconds(-3), causes[0].age);
    EXPECT_THAT(chainOf(causes[0]),
                ElementsAre("unit1/sensor1.1 5 own-state", "unit1 23 child-alarm", "global 23 child-alarm"));
    EXPECT_THAT(chainOf(causes[1]), ElementsAre("unit1/sensor1.1 5 value-alarm (hidden)",
                                                "unit1 23 child-alarm", "global 23 child-alarm"));
}

TEST_F(CausesTest, NothingCountsBelowADeactivatedPoint) {
    deliver(circuit | ownKey, eStatus_Deactivated);
    deliver(circuit | power, eStatus_HighAlarm);
    deliver(socket | power, eStatus_HighAlarm);
    EXPECT_THAT(global().causes, IsEmpty());
    EXPECT_THAT(namesOf(of(circuit)), ElementsAre("unit1/inlet1/phase2/circuit3 own-state",
                                                  "unit1/inlet1/phase2/circuit3#19 value-alarm",
                                                  "unit1/inlet1/phase2/circuit3/socket4#19 value-alarm"));
    EXPECT_THAT(namesOf(of(socket)), ElementsAre("unit1/inlet1/phase2/circuit3/socket4#19 value-alarm"));
}

TEST_F(CausesTest, SwitchedOffCircuitIsNamedAsSuch) {
    deliver(circuit | ownKey, eStatus_Off);
    auto const causes = global().causes;
    ASSERT_EQ(1U, causes.size());
    EXPECT_EQ(eStatus_Off, causes.front().state);
    EXPECT_EQ(std::nullopt, causes.front().key);
    EXPECT_THAT(chainOf(causes.front()),
                ElementsAre("unit1/inlet1/phase2/circuit3 18 switched-off-circuit",
                            "unit1/inlet1/phase2 23 child-alarm", "unit1/inlet1 23 child-alarm",
                            "unit1 23 child-alarm", "global 23 child-alarm"));
    EXPECT_STREQ("switched off, counts as an alarm for its parent",
                 ruleText(causes.front().chain.front().rule));
    EXPECT_THAT(namesOf(of(circuit)), ElementsAre("unit1/inlet1/phase2/circuit3 own-state"));
}

// Its alarm is reported instead of "Off", but "Off" alone would be an alarm as well.
TEST_F(CausesTest, SwitchedOffCircuitWithAnAlarmHasTwoCauses) {
    deliver(circuit | ownKey, eStatus_Off);
    deliver(circuit | power, eStatus_HighAlarm);
    auto const causes = global().causes;
    ASSERT_EQ(2U, causes.size());
    EXPECT_EQ("unit1/inlet1/phase2/circuit3 10 switched-off-circuit (hidden)", chainOf(causes[0]).front());
    EXPECT_EQ(eStatus_Off, causes[0].state);
    EXPECT_EQ("unit1/inlet1/phase2/circuit3 10 value-alarm", chainOf(causes[1]).front());
}

TEST_F(CausesTest, SwitchedOffSocketIsACauseForItselfOnly) {
    deliver(socket | ownKey, eStatus_Off);
    EXPECT_THAT(global().causes, IsEmpty());
    EXPECT_THAT(namesOf(of(socket)), ElementsAre("unit1/inlet1/phase2/circuit3/socket4 own-state"));
    deliver(sensor | ownKey, eStatus_OnIdentify);
    EXPECT_THAT(namesOf(of(sensor)), ElementsAre("unit1/sensor1.1 own-state"));
}

TEST_F(CausesTest, DeviceUpdateStaysWhereItWasTakenFromAChild) {
    deliver(sensor | ownKey, eStatus_DeviceIsUpdating);
    auto const causes = global().causes;
    ASSERT_EQ(2U, causes.size());
    EXPECT_THAT(chainOf(causes[0]), ElementsAre("unit1 34 own-state", "global 34 child-update"));
    EXPECT_THAT(chainOf(causes[1]), ElementsAre("unit1/sensor1.1 34 own-state", "unit1 34 child-update",
                                                "global 34 child-update"));
}

TEST_F(CausesTest, DeliveriesThatWaitToBePropagatedCount) {
    deliver(socket | power, eStatus_HighAlarm, 1.0, 0);
    auto const causes = globalUnpropagated();
    EXPECT_EQ(eStatus_On, causes.state);
    EXPECT_EQ(eStatus_ChildAlarm, causes.propagated);
    ASSERT_EQ(1U, causes.causes.size());
    EXPECT_EQ(std::nullopt, causes.causes.front().age);
    EXPECT_EQ(eStatus_OnAlarm, causes.causes.front().chain.front().state);
}

TEST_F(CausesTest, EveryRuleHasACodeAndWords) {
    std::set<std::string> codes;
    std::set<std::string> texts;
    for (int rule = 0; rule <= static_cast<int>(CauseRule::ChildUpdate); ++rule) {
        codes.insert(ruleCode(static_cast<CauseRule>(rule)));
        texts.insert(ruleText(static_cast<CauseRule>(rule)));
    }
    EXPECT_EQ(7U, codes.size());
    EXPECT_EQ(7U, texts.size());
    EXPECT_STREQ("value-alarm", ruleCode(CauseRule::ValueAlarm));
    EXPECT_STREQ("child-update", ruleCode(CauseRule::ChildUpdate));
}

namespace {

/// Random trees with random states, laid out and propagated by the writer.
class RandomTrees {
public:
    RandomTrees() { writer_.setActive(); }

    /// Another tree, every state in it new.
    void next() {
        writer_.removeStructure({});
        layOut();
        quiet_ = std::array{0.3, 0.7, 0.9, 0.97, 1.0}.at(random_() % 5);
        for (auto const& [svid, keys] : keys_) {
            deliver(svid | ownKey, chance() < quiet_ ? eStatus_On : anyState());
            for (auto const key : keys) {
                deliver(svid | key, chance() < quiet_ ? quietState() : anyState());
            }
        }
        propagate();
    }

    void propagate() {
        writer_.propagateStates();
        image_.emplace(LiveRegion().copy());
        tree_.emplace(*image_);
    }

    Image const& image() const { return *image_; }
    PointTree const& tree() const { return *tree_; }
    eStatus_Bits stateAt(std::uint32_t node) const {
        return image().point(tree().nodes().at(node).pos)->state;
    }
    std::uint32_t anyNode() { return static_cast<std::uint32_t>(random_() % tree().nodes().size()); }

    void clear(Cause const& cause) {
        if (cause.key) {
            deliver(cause.svid | *cause.key, quietState());
        } else {
            deliver(cause.svid | ownKey, eStatus_On);
        }
    }

    /// Clears all of them but one, and propagates.
    /// @return the one that is left
    Cause const& clearAllButOne(std::vector<Cause> const& causes) {
        auto const kept = random_() % causes.size();
        for (std::size_t index = 0; index < causes.size(); ++index) {
            if (index != kept) {
                clear(causes[index]);
            }
        }
        propagate();
        return causes[kept];
    }

private:
    void layOut() {
        keys_.clear();
        test::Definitions definitions;
        auto const add = [&](long long svid) {
            std::set<unsigned short> keys;
            for (auto count = random_() % 4; count > 0; --count) {
                keys.insert(static_cast<unsigned short>(1 + random_() % 30));
            }
            if (keys_.emplace(svid, keys).second) {
                definitions.emplace(svid, test::withKeys(keys));
            }
        };
        auto const level = [&] {
            return static_cast<int>(1 + random_() % 3);
        };
        for (auto branches = 1 + random_() % 4; branches > 0; --branches) {
            std::array<int, 5> const at{level(), level(), level(), level(), level()};
            std::vector<long long> const path{test::pointId(at[0], 0), test::pointId(at[0], 0, at[1]),
                                              test::pointId(at[0], 0, at[1], at[2]),
                                              test::pointId(at[0], 0, at[1], at[2], at[3]),
                                              test::pointId(at[0], 0, at[1], at[2], at[3], at[4])};
            auto const depth = 1 + random_() % path.size();
            std::for_each(path.begin(), path.begin() + static_cast<std::ptrdiff_t>(depth), add);
            if (random_() % 3 == 0) {
                add(test::pointId(at[0], 1, level(), level()));
                add(test::pointId(1, 2, -1, -1, -1, level()));
                add(test::pointId(at[0], 4, level()));
            }
        }
        writer_.addStructure(definitions);
    }

    double chance() { return std::uniform_real_distribution<double>()(random_); }
    eStatus_Bits anyState() {
        return static_cast<eStatus_Bits>(std::uniform_int_distribution<int>(-2, 43)(random_));
    }
    eStatus_Bits quietState() {
        return std::array{eStatus_NoError, eStatus_OK, eStatus_ExpectedValue, eStatus_High}.at(random_() % 4);
    }
    void deliver(long long svid, eStatus_Bits state) {
        ASSERT_TRUE(writer_.updateMV(svid, test::measured(1.0, now, state)));
    }

    std::mt19937 random_ = test::randomNumbers(17);
    double quiet_ = 0.0;
    std::map<long long, std::set<unsigned short>> keys_;
    shm::QelSharedMemoryWriter writer_;
    std::optional<Image> image_;
    std::optional<PointTree> tree_;
};

int const treesEach = test::rounds(1500, 10000);

} // namespace

TEST(CausesOfRandomTreesTest, Global_ThereAreSomeExactlyWhenItIsNotOnAndWithoutThemItIs) {
    RandomTrees trees;
    std::map<CauseRule, int> rules;
    std::map<eStatus_Bits, int> states;
    for (int round = 0; round < treesEach; ++round) {
        trees.next();
        auto const state = trees.image().root().state;
        auto const causes = globalCauses(trees.image(), trees.tree(), now);
        ++states[state];
        ASSERT_EQ(state, causes.state);
        ASSERT_EQ(state, causes.propagated);
        ASSERT_EQ(state == eStatus_On, causes.causes.empty()) << "round " << round;
        for (auto const& cause : causes.causes) {
            ++rules[cause.chain.front().rule];
            for (auto const& step : cause.chain) {
                auto const* const point = trees.image().point(step.pos);
                ASSERT_EQ(point == nullptr ? state : point->state, step.state);
            }
            trees.clear(cause);
        }
        trees.propagate();
        ASSERT_EQ(eStatus_On, trees.image().root().state) << "round " << round;
    }
    for (auto const rule : {CauseRule::ValueAlarm, CauseRule::ValueWarning, CauseRule::OwnState,
                            CauseRule::SwitchedOffCircuit}) {
        EXPECT_GT(rules[rule], treesEach / 100) << ruleCode(rule);
    }
    for (auto const state : {eStatus_On, eStatus_ChildAlarm, eStatus_ChildWarning, eStatus_DeviceIsUpdating,
                             eStatus_DeviceUpdateError}) {
        EXPECT_GT(states[state], treesEach / 200) << state;
    }
}

TEST(CausesOfRandomTreesTest, Global_EachOfThemAloneKeepsItFromBeingOn) {
    RandomTrees trees;
    int tried = 0;
    for (int round = 0; round < treesEach; ++round) {
        trees.next();
        auto const causes = globalCauses(trees.image(), trees.tree(), now).causes;
        if (causes.empty()) {
            continue;
        }
        auto const& left = trees.clearAllButOne(causes);
        ASSERT_NE(eStatus_On, trees.image().root().state) << "round " << round << ": " << nameOf(left);
        ++tried;
    }
    EXPECT_GT(tried, treesEach / 10);
}

TEST(CausesOfRandomTreesTest, Point_ThereAreSomeExactlyWhenItIsNotOnAndWithoutThemItIs) {
    RandomTrees trees;
    std::set<eStatus_Bits> states;
    for (int round = 0; round < treesEach; ++round) {
        trees.next();
        for (std::uint32_t node = 0; node < trees.tree().nodes().size(); ++node) {
            auto const causes = pointCauses(trees.image(), trees.tree(), node, now);
            states.insert(trees.stateAt(node));
            ASSERT_EQ(trees.stateAt(node), causes.state);
            ASSERT_EQ(trees.stateAt(node), causes.propagated);
            ASSERT_EQ(causes.state == eStatus_On, causes.causes.empty()) << "round " << round;
        }
        auto const node = trees.anyNode();
        for (auto const& cause : pointCauses(trees.image(), trees.tree(), node, now).causes) {
            trees.clear(cause);
        }
        trees.propagate();
        ASSERT_EQ(eStatus_On, trees.stateAt(node)) << "round " << round;
    }
    // Every state that a point can show.
    EXPECT_EQ((std::set<eStatus_Bits>{eStatus_ExpectedValue,
                                      eStatus_Lost,
                                      eStatus_Deactivated,
                                      eStatus_OnAlarmIdentify,
                                      eStatus_OffAlarmIdentify,
                                      eStatus_OnAlarm,
                                      eStatus_OffAlarm,
                                      eStatus_OnWarningIdentify,
                                      eStatus_OffWarningIdentify,
                                      eStatus_OnWarning,
                                      eStatus_OffWarning,
                                      eStatus_OnIdentify,
                                      eStatus_OffIdentify,
                                      eStatus_On,
                                      eStatus_Off,
                                      eStatus_OffChildAlarm,
                                      eStatus_OffChildWarning,
                                      eStatus_ChildAlarm,
                                      eStatus_ChildWarning,
                                      eStatus_DeviceIsUpdating,
                                      eStatus_DeviceUpdateError,
                                      eStatus_OngoingSwitchOn,
                                      eStatus_SlaveVersionTooNew}),
              states);
}

TEST(CausesOfRandomTreesTest, Point_EachOfThemAloneKeepsItFromBeingOn) {
    RandomTrees trees;
    int tried = 0;
    for (int round = 0; round < treesEach; ++round) {
        trees.next();
        auto const node = trees.anyNode();
        auto const causes = pointCauses(trees.image(), trees.tree(), node, now).causes;
        if (causes.empty()) {
            continue;
        }
        auto const& left = trees.clearAllButOne(causes);
        ASSERT_NE(eStatus_On, trees.stateAt(node)) << "round " << round << ": " << nameOf(left);
        ++tried;
    }
    EXPECT_GT(tried, treesEach / 10);
}

} // namespace qel::inspect
