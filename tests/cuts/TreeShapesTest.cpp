// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tests/cuts/TreeShapes.h"

#include "tests/cuts/Operations.h"
#include "tests/cuts/PlainWalk.h"
#include "tests/cuts/WriterBench.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <set>
#include <string>

namespace qel::test {

namespace {

/// How many lists of that many points there are, counted instead of made: electrical points with anything below, then
/// those of three (two, one) other kinds.
std::size_t countLists(std::size_t points, int level, int kinds) {
    if (points == 0) {
        return 1;
    }
    std::size_t count = 0;
    for (std::size_t below = 0; below < points; ++below) { // the list begins with an electrical point
        int const kindsBelow = level == 0 ? 3 : level < 4 ? 2 : 0;
        count += countLists(below, level + 1, kindsBelow) * countLists(points - 1 - below, level, kinds);
    }
    // Or there is none: points of the other kinds in their order.
    std::size_t others = kinds == 0 ? 0 : 1;
    for (int kind = 1; kind < kinds; ++kind) {
        others = others * (points + static_cast<std::size_t>(kind)) / static_cast<std::size_t>(kind);
    }
    return count + others;
}

TEST(TreeShapes, AreAsManyAsThereAre) {
    for (std::size_t points = 1; points <= 6; ++points) {
        EXPECT_EQ(countLists(points, 0, 1), treesOf(points).size()) << points;
    }
    EXPECT_EQ(2U, treesOf(1).size());
}

TEST(TreeShapes, AllShapes_OfElectricalPointsAlone) {
    constexpr std::array<std::size_t, 6> catalan{1, 2, 5, 14, 42, 132};
    for (std::size_t points = 1; points <= 6; ++points) {
        auto const trees = treesOf(points);
        auto const isElectrical = [](auto const& tree) {
            return tree.name.find_first_of("RIG") == std::string::npos;
        };
        EXPECT_EQ(catalan[points - 1],
                  static_cast<std::size_t>(std::count_if(trees.begin(), trees.end(), isElectrical)));
    }
}

TEST(TreeShapes, DifferInTheirNames_AndTheirPointsInTheirIds) {
    std::set<std::string> names;
    for (std::size_t points = 1; points <= 6; ++points) {
        for (auto const& tree : treesOf(points)) {
            EXPECT_TRUE(names.insert(tree.name).second) << tree.name;
            std::set<long long> ids;
            for (auto const& point : tree.points) {
                ids.insert(point.svid);
            }
            for (auto const& place : tree.newPlaces()) {
                EXPECT_EQ(0U, ids.count(place.svid)) << tree.name << ", " << place.text;
            }
            EXPECT_EQ(points, ids.size()) << tree.name;
        }
    }
}

TEST(TreeShapes, NumberNames_AllNumbersOfValues) {
    std::set<std::string> names;
    for (unsigned number = 0; number < 9; ++number) {
        names.insert(withValuesByNumber(treesOf(2).front(), number).name);
    }
    EXPECT_EQ(9U, names.size());
}

TEST(TreeShapes, LaidOut_StandInTheRegionAsDescribed_InSlotsThatWereUsedBefore) {
    WriterBench bench;
    std::set<std::uint32_t> slots;
    for (std::size_t points = 1; points <= 5; ++points) {
        for (auto const& shape : treesOf(points)) {
            auto const tree = withValues(shape, 3);
            bench.layOut(tree);
            Picture picture;
            ASSERT_TRUE(PlainWalk(bench.bytes()).walk(picture));
            ASSERT_EQ(points, picture.points.size()) << tree.name;
            for (std::size_t i = 0; i < points; ++i) {
                EXPECT_EQ(tree.points[i].svid, picture.points[i].guid) << tree.name;
                EXPECT_EQ(tree.points[i].level + 1, static_cast<int>(picture.points[i].depth)) << tree.name;
                slots.insert(picture.points[i].slot);
            }
        }
    }
    EXPECT_LE(slots.size(), WriterBench::pointSlots);
}

TEST(Operations, NewPoints_FindEachPlaceOfTheirList) {
    WriterBench bench;
    auto const tree = withValues(treesOf(3).front(), 1);
    for (auto const& operation : operationsOn(tree)) {
        bench.layOut(tree);
        if (operation.isScarce) {
            bench.takeFreeSlots();
        }
        for (auto const& call : operation.calls) {
            call(bench);
        }
        Picture picture;
        ASSERT_TRUE(PlainWalk(bench.bytes()).walk(picture)) << operation.name;
        if (operation.name.rfind("add E", 0) == 0) {
            EXPECT_EQ(4U, picture.points.size()) << operation.name;
        }
    }
}

} // namespace

} // namespace qel::test
