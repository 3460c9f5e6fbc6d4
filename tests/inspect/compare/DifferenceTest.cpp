// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "inspect/compare/Difference.h"

#include "format/ValueKeys.h"
#include "inspect/image/LiveRegion.h"

#include "tests/support/ForgedRegion.h"
#include "tests/writer/WriterFixture.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <limits>
#include <set>
#include <string>
#include <unordered_map>
#include <vector>

namespace qel::inspect {

namespace {

namespace key = shm::key;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr long long unit = test::pointId(1, 0);
constexpr long long inlet = test::pointId(1, 0, 1);
constexpr long long otherInlet = test::pointId(1, 0, 2);
constexpr long long sensor = test::pointId(1, 1, 1, 1);
constexpr long long group = test::pointId(1, 2, -1, -1, -1, 1);

struct SideText {
    std::string operator()(std::monostate /*none*/) const { return "-"; }
    std::string operator()(bool is) const { return is ? "true" : "false"; }
    std::string operator()(std::uint64_t number) const { return std::to_string(number); }
    std::string operator()(double number) const {
        std::ostringstream out;
        out << number;
        return out.str();
    }
    std::string operator()(eStatus_Bits state) const { return 's' + std::to_string(state); }
    std::string operator()(std::string const& text) const { return '"' + text + '"'; }
};

/// "unit1/inlet1#1 number 230 231"
std::vector<std::string> textsOf(std::vector<Difference> const& differences) {
    std::vector<std::string> texts;
    for (auto const& difference : differences) {
        auto const key = difference.key ? '#' + std::to_string(*difference.key) : std::string();
        texts.push_back(difference.path + key + ' ' + differenceName(difference.kind) + ' ' +
                        std::visit(SideText(), difference.before) + ' ' +
                        std::visit(SideText(), difference.after));
    }
    return texts;
}

/// A writer with a small unit.
class DifferenceTest : public testing::Test {
protected:
    DifferenceTest() {
        writer_.addStructure({{unit, test::withKeys({key::voltage})},
                              {inlet, test::withKeys({key::voltage, key::activePower})}});
        writer_.setActive();
    }

    /// What the change does to the region.
    template <typename Change>
    std::vector<std::string> after(Change const& change) {
        auto const before = LiveRegion().copy();
        change();
        auto const now = LiveRegion().copy();
        EXPECT_THAT(differences(now, now), IsEmpty());
        return textsOf(differences(before, now));
    }

    shm::QelSharedMemoryWriter writer_;
};

} // namespace

TEST_F(DifferenceTest, EqualImagesHaveNone) {
    EXPECT_THAT(after([] {}), IsEmpty());
}

TEST_F(DifferenceTest, NumberStatePointStateAndGlobalState) {
    EXPECT_THAT(after([&] {
                    writer_.updateMV(inlet | key::activePower, test::measured(2300.5, 7, eStatus_HighAlarm));
                    writer_.propagateStates();
                }),
                ElementsAre(" global state s17 s23", "unit1 state s17 s23", "unit1/inlet1 state s17 s9",
                            "unit1/inlet1#19 value state s-2 s1", "unit1/inlet1#19 number 0 2300.5"));
}

TEST_F(DifferenceTest, TimeAloneIsNone) {
    writer_.updateMV(inlet | key::activePower, test::measured(1, 7));
    EXPECT_THAT(after([&] { writer_.updateMV(inlet | key::activePower, test::measured(1, 8)); }), IsEmpty());
}

TEST_F(DifferenceTest, NumbersAreComparedByTheirBits) {
    auto const nan = std::numeric_limits<double>::quiet_NaN();
    writer_.updateMV(inlet | key::activePower, test::measured(nan, 7));
    EXPECT_THAT(after([&] { writer_.updateMV(inlet | key::activePower, test::measured(nan, 8)); }),
                IsEmpty());
    writer_.updateMV(inlet | key::activePower, test::measured(0.0, 8));
    EXPECT_THAT(after([&] { writer_.updateMV(inlet | key::activePower, test::measured(-0.0, 8)); }),
                ElementsAre("unit1/inlet1#19 number 0 -0"));
}

TEST_F(DifferenceTest, TypeOfAPoint) {
    EXPECT_THAT(after([&] { writer_.injectTypes({{inlet, 5}}); }), ElementsAre("unit1/inlet1 type 0 5"));
}

TEST_F(DifferenceTest, AddedPointsStandWhereTheyAreNow) {
    EXPECT_THAT(after([&] {
                    writer_.addStructure({{otherInlet, test::withKeys({key::voltage})},
                                          {sensor, test::withKeys({key::temperature})},
                                          {group, test::withKeys({})}});
                }),
                ElementsAre("unit1/inlet2 point added - 2", "unit1/sensor1.1 point added - 3",
                            "group1 point added - 4"));
}

TEST_F(DifferenceTest, RemovedPointsStandBehindWhatCameBeforeThem) {
    writer_.addStructure({{otherInlet, test::withKeys({key::voltage})}, {group, test::withKeys({})}});
    EXPECT_THAT(
        after([&] {
            writer_.modifyStructure({unit, otherInlet, sensor, group});
            writer_.injectTypes({{unit, 9}});
        }),
        ElementsAre("unit1 type 0 9", "unit1/inlet1 point removed 1 -", "unit1/sensor1.1 point added - 4"));
}

TEST_F(DifferenceTest, FirstPointThatWasRemovedStandsFirst) {
    writer_.addStructure({{group, test::withKeys({})}});
    EXPECT_THAT(after([&] { writer_.modifyStructure({group}); }),
                ElementsAre("unit1 point removed 0 -", "unit1/inlet1 point removed 1 -"));
}

TEST_F(DifferenceTest, PointThatWentAndCameBackHasAnotherSlot) {
    EXPECT_THAT(after([&] {
                    writer_.modifyStructure({unit});
                    writer_.modifyStructure({unit, inlet, inlet | key::activePower});
                }),
                ElementsAre("unit1/inlet1 slot 1 2", "unit1/inlet1#1 value removed 0 -"));
}

TEST_F(DifferenceTest, KeysThatAreNew) {
    EXPECT_THAT(
        after([&] {
            writer_.addStructure({{inlet, test::withKeys({key::voltage, key::current, key::activePower})}});
            writer_.updateMV(inlet | key::current, test::measured(2.5));
        }),
        ElementsAre("unit1/inlet1#4 value added - 2.5"));
}

TEST_F(DifferenceTest, EmptyImageHasNothing) {
    auto const live = LiveRegion().copy();
    EXPECT_THAT(textsOf(differences(Image(), live)),
                ElementsAre(" active false true", " global state s-1 s17", "unit1 point added - 0",
                            "unit1/inlet1 point added - 1"));
    EXPECT_THAT(textsOf(differences(live, Image())),
                ElementsAre(" active true false", " global state s17 s-1", "unit1 point removed 0 -",
                            "unit1/inlet1 point removed 1 -"));
}

TEST_F(DifferenceTest, SidesCarryIdsAndKinds) {
    auto const before = LiveRegion().copy();
    writer_.updateMV(inlet | key::activePower, test::measured(1.5, 7, eStatus_ExpectedValue));
    auto const found = differences(before, LiveRegion().copy());
    ASSERT_EQ(1U, found.size());
    EXPECT_EQ(DifferenceKind::ValueNumber, found[0].kind);
    EXPECT_EQ(inlet, found[0].svid);
    EXPECT_EQ(key::activePower, found[0].key);
    EXPECT_EQ(DifferenceSide(1.5), found[0].after);
}

TEST(DifferenceOfForgedRegionsTest, PointUnderAnotherParent) {
    test::ForgedRegion const region;
    region.point(1, unit);
    region.point(2, inlet);
    region.point(3, sensor);
    region.devices({1, 3});
    region.children(1, {2});
    auto const before = LiveRegion().copy();
    region.children(1, {2, 3});
    region.devices({1});
    EXPECT_THAT(textsOf(differences(before, LiveRegion().copy())),
                ElementsAre("unit1/sensor1.1 parent \"\" \"unit1\""));
}

TEST(DifferenceOfForgedRegionsTest, VersionThatSaysMoreThanActive) {
    test::ForgedRegion const region;
    auto const before = LiveRegion().copy();
    region.raw().set<std::uint8_t>(test::field::version, 7);
    auto const other = LiveRegion().copy();
    EXPECT_THAT(textsOf(differences(before, other)), ElementsAre(" version 255 7"));
    region.activate();
    auto const found = differences(other, LiveRegion().copy());
    EXPECT_THAT(textsOf(found), ElementsAre(" active false true"));
    EXPECT_EQ(shm::ROOT_SVID, found.at(0).svid);
}

TEST(DifferenceOfForgedRegionsTest, SeveralOfOneIdAreMatchedInTheirOrder) {
    test::ForgedRegion const region;
    region.point(1, unit);
    region.point(2, unit);
    region.devices({1, 2});
    region.values(2, 7, {key::voltage, key::voltage});
    for (std::uint32_t const slot : {7U, 8U}) {
        region.raw().set<double>(test::rawValue(slot), 1.0);
    }
    auto const before = LiveRegion().copy();
    region.raw().set<double>(test::rawValue(8), 5.0);
    region.raw().set<std::uint8_t>(test::rawPoint(2) + test::field::pointType, 4);
    EXPECT_THAT(textsOf(differences(before, LiveRegion().copy())),
                ElementsAre("unit1 type 255 4", "unit1#1 number 1 5"));
    region.devices({1});
    EXPECT_THAT(textsOf(differences(before, LiveRegion().copy())), ElementsAre("unit1 point removed 2 -"));
}

TEST(DifferenceNamesTest, EveryKindHasOne) {
    std::set<std::string> names;
    for (int kind = 0; kind <= static_cast<int>(DifferenceKind::ValueNumber); ++kind) {
        names.insert(differenceName(static_cast<DifferenceKind>(kind)));
    }
    EXPECT_EQ(13U, names.size());
}

} // namespace qel::inspect
