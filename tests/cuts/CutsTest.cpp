// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

// Every picture of the region that readers can meet while the writer changes it, see CutWalk.h.

#include "tests/cuts/CutBench.h"
#include "tests/cuts/Jobs.h"
#include "tests/cuts/TreeShapes.h"
#include "tests/support/Rounds.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <cstddef>
#include <iostream>
#include <iterator>
#include <set>
#include <string>

namespace qel::test {

namespace {

using Clock = std::chrono::steady_clock;

std::string listed(std::set<std::string> const& kinds) {
    std::string text;
    for (auto const& kind : kinds) {
        text += (text.empty() ? "" : ", ") + kind;
    }
    return text;
}

std::string missing(std::set<std::string> const& wanted, std::set<std::string> const& there) {
    std::set<std::string> kinds;
    std::set_difference(wanted.begin(), wanted.end(), there.begin(), there.end(),
                        std::inserter(kinds, kinds.end()));
    return listed(kinds);
}

std::size_t halvedPoints() {
    return static_cast<std::size_t>(rounds(2, 3));
}

std::size_t movingPoints() {
    return static_cast<std::size_t>(rounds(3, 5));
}

/// The walks of one part of the trees.
class Cuts : public CutBench, public testing::WithParamInterface<unsigned> {
protected:
    Cuts()
        : CutBench(GetParam() % 2 == 0 ? GuardedMappings::Place::BehindFrontGuard
                                       : GuardedMappings::Place::BeforeRearGuard) {}

    /// Says what was walked and what a reader meets there.
    void TearDown() override {
        auto const& figures = sut.figures();
        std::cout << figures.trees << " trees, " << figures.operations << " operations, " << figures.stores
                  << " stores, " << figures.states << " states, " << figures.movingVisits
                  << " moving visits, " << std::chrono::duration<double>(Clock::now() - started_).count()
                  << " s\n";
        sut.catalogue().print(std::cout);
        EXPECT_EQ("", sut.violation());
        EXPECT_EQ("", missing(sut.catalogue().kinds(), documentedKinds().shownHere()))
            << "is not in the table of docs/reference/region-layout.md";
    }

private:
    Clock::time_point started_ = Clock::now();
};

constexpr unsigned wholeParts = 8;
class WholeCuts : public Cuts {};
INSTANTIATE_TEST_SUITE_P(Part, WholeCuts, testing::Range(0U, wholeParts));

TEST_P(WholeCuts, OfTreesOfUpToSixPoints_ShowNothingForeign) {
    for (auto const& tree : treesToWalk(6, GetParam(), wholeParts)) {
        sut.walk(tree);
    }
}

constexpr unsigned otherParts = 4;
class HalvedCuts : public Cuts {};
INSTANTIATE_TEST_SUITE_P(Part, HalvedCuts, testing::Range(0U, otherParts));

TEST_P(HalvedCuts, OfSmallTrees_ShowNothingForeign) {
    for (auto const& tree : treesToWalk(halvedPoints(), GetParam(), otherParts)) {
        sut.walk(tree, OrderModel::Halves::Split);
    }
}

class MovingCuts : public Cuts {};
INSTANTIATE_TEST_SUITE_P(Part, MovingCuts, testing::Range(0U, otherParts));

TEST_P(MovingCuts, UnderAVisit_ShowNothingForeign) {
    for (auto const& tree : treesToWalk(movingPoints(), GetParam(), otherParts)) {
        sut.walkMoving(tree);
    }
}

class CatalogueTest : public CutBench {};

TEST_F(CatalogueTest, TableOfTheLayoutPage_HoldsWhatReadersMeet_NoMoreNoLess) {
    for (std::size_t points = 1; points <= 3; ++points) {
        for (auto const& shape : treesOf(points)) {
            auto const tree = withValues(shape, 4);
            sut.walk(tree, points < 2 ? OrderModel::Halves::Split : OrderModel::Halves::Whole);
            sut.walkMoving(tree);
        }
    }
    EXPECT_EQ("", sut.violation());
    sut.catalogue().print(std::cout);
    auto const seen = sut.catalogue().kinds();
    auto const documented = documentedKinds().shownHere();
    EXPECT_EQ("", missing(seen, documented))
        << "is seen, but not in the table of docs/reference/region-layout.md";
    EXPECT_EQ("", missing(documented, seen))
        << "is in the table of docs/reference/region-layout.md, but not seen";
}

/// What is left out because nobody reads it: with everything, readers are shown the same.
class PruningTest : public CutBench {};

TEST_F(PruningTest, LeavesOut_OnlyWhatShowsNothingNew) {
    for (std::size_t points = 1; points <= 2; ++points) {
        for (auto const& shape : treesOf(points)) {
            auto const tree = withValues(shape, 4);
            for (auto const& operation : operationsOn(tree)) {
                auto const recording = sut.record(tree, operation);
                CutWalk pruned(bench, reader);
                CutWalk full(bench, reader);
                full.leaveNothingOut();
                for (auto* const walk : {&pruned, &full}) {
                    walk->collectDigests();
                    walk->walk(recording, recording.stores(), operation.name);
                }
                EXPECT_LE(pruned.figures().states, full.figures().states);
                EXPECT_EQ(full.digests(), pruned.digests()) << tree.name << ", " << operation.name;
                EXPECT_EQ(full.catalogue().kinds(), pruned.catalogue().kinds());
            }
        }
    }
}

} // namespace

} // namespace qel::test
