// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "reader/QelShmPointRange.h"

#include "reader/BaseQelShmVisitor.h"
#include "reader/QelSharedMemoryReader.h"
#include "tests/reader/MappedReader.h"
#include "tests/reader/SampleTree.h"
#include "tests/support/FailureSeams.h"
#include "tests/support/ForgedRegion.h"
#include "tests/support/RandomNumbers.h"
#include "tests/support/SmallStack.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <functional>
#include <iterator>
#include <memory>
#include <numeric>
#include <random>
#include <thread>
#include <tuple>
#include <type_traits>
#include <vector>

namespace {

using qel::test::addSampleTree;
using qel::test::ForgedRegion;
using qel::test::MappedReader;
using qel::test::rawPoint;
using qel::test::svid;
using testing::ElementsAre;
using testing::IsEmpty;
namespace field = qel::test::field;

using Positions = std::vector<std::uint32_t>;
/// Slot and depth of a point, then the addresses of its values' slots.
using Shown = std::tuple<void const*, unsigned int, std::vector<void const*>>;

constexpr std::uint32_t points = 800;

class Noting : public shm::BaseQelShmVisitor {
public:
    explicit Noting(std::vector<Shown>& shown) : shown_(shown) {}
    void onMPnt(shm::QelShmMPnt const& point, unsigned int depth,
                std::shared_ptr<shm::IQelVisitorResult>& /*result*/) override {
        shown_.push_back({&*point, depth, {}});
    }
    void onMVal(shm::QelShmMVal const& value, long long /*svid*/, unsigned int /*depth*/,
                std::shared_ptr<shm::IQelVisitorResult>& /*result*/) override {
        std::get<2>(shown_.back()).push_back(&*value);
    }

private:
    std::vector<Shown>& shown_;
};

std::vector<Shown> visited(MappedReader& reader) {
    std::vector<Shown> shown;
    reader.visitor(std::make_unique<Noting>(shown));
    reader.visit();
    reader.visitor(nullptr);
    return shown;
}

std::vector<Shown> scanned(MappedReader const& reader) {
    std::vector<Shown> shown;
    for (auto const& point : reader.points()) {
        shown.push_back({&*point, point.depth(), {}});
        for (auto const& value : point.values()) {
            std::get<2>(shown.back()).push_back(&*value);
        }
    }
    return shown;
}

class QelShmPointRangeTest : public testing::Test {
protected:
    QelShmPointRangeTest() { addSampleTree(region); }

    Positions positions(std::function<void(std::uint32_t pos)> const& meanwhile = nullptr) const {
        Positions shown;
        for (auto const& point : sut.points()) {
            shown.push_back(point->pos);
            if (meanwhile) {
                meanwhile(point->pos);
            }
        }
        return shown;
    }

    void link(std::uint32_t pos, std::size_t offset, std::uint32_t to) const {
        region.raw().set<std::uint32_t>(rawPoint(pos) + offset, to);
    }
    void wipe(std::uint32_t pos) const {
        std::memset(region.raw().bytes() + rawPoint(pos), 0xFF, rawPoint(1));
    }

    ForgedRegion region;
    MappedReader sut;
};

TEST_F(QelShmPointRangeTest, Points_AreShownInTheOrderOfAVisit) {
    EXPECT_THAT(positions(), ElementsAre(9, 4, 8, 5, 6, 2, 7));
    EXPECT_EQ(visited(sut), scanned(sut));
}

TEST_F(QelShmPointRangeTest, WipedRegion_ShowsNothing) {
    region.raw().fill(0xFF);
    EXPECT_THAT(positions(), IsEmpty());
}

TEST_F(QelShmPointRangeTest, GroupsOnly_AreShown) {
    region.devices({});
    EXPECT_THAT(positions(), ElementsAre(7));
}

TEST(QelShmPointRangeUnmappedTest, NothingMapped_ShowsNothing) {
    MappedReader const sut; // there is no object to map
    for (auto const& point : sut.points()) {
        ADD_FAILURE() << point.depth();
    }
    shm::QelShmPointRange range(nullptr);
    EXPECT_TRUE(range.begin() == range.end());
}

TEST_F(QelShmPointRangeTest, LinksOutOfTheTable_EndLists) {
    link(2, field::next, 800);
    link(7, field::next, 0x80000000);
    link(7, field::children, 0x7FFFFFFF);
    link(7, field::mvs, 8800);
    EXPECT_EQ(visited(sut), scanned(sut));
    EXPECT_THAT(positions(), ElementsAre(9, 4, 8, 5, 6, 2, 7));
}

TEST_F(QelShmPointRangeTest, RemovedPoint_CutsOffNoSibling) {
    for (auto const removed : {9U, 4U, 8U, 5U, 6U, 2U, 7U}) {
        auto const before = region.raw().copy();
        auto const expected = removed == 9   ? Positions{9, 2, 7}
                              : removed == 4 ? Positions{9, 4, 5, 6, 2, 7}
                                             : Positions{9, 4, 8, 5, 6, 2, 7};
        Positions shown;
        for (auto const& point : sut.points()) {
            auto const pos = static_cast<std::uint32_t>(
                (reinterpret_cast<std::uint8_t const*>(&*point) -
                 (reinterpret_cast<std::uint8_t const*>(&*sut.root()) - qel::test::rawRootOffset)) /
                static_cast<std::ptrdiff_t>(rawPoint(1)));
            shown.push_back(pos);
            if (pos == removed) {
                wipe(pos);
            }
        }
        EXPECT_EQ(expected, shown) << removed;
        std::memcpy(region.raw().bytes(), before.data(), before.size());
    }
}

TEST_F(QelShmPointRangeTest, PointRemovedBeforeItIsShown_IsShownAsItIs) {
    EXPECT_THAT(positions([this](auto pos) {
                    if (pos == 4) {
                        link(4, field::next, 0xFFFFFFFF); // the next of 5 as stored
                        region.point(5, svid(5));
                        link(5, field::next, 0xFFFFFFFF);
                    }
                }),
                ElementsAre(9, 4, 8, 5, 6, 2, 7));
}

TEST_F(QelShmPointRangeTest, PointAddedBelowTheCurrentOne_IsShown) {
    region.point(3, svid(3));
    EXPECT_THAT(positions([this](auto pos) {
                    if (pos == 2) {
                        region.children(2, {3});
                    }
                }),
                ElementsAre(9, 4, 8, 5, 6, 2, 3, 7));
}

TEST_F(QelShmPointRangeTest, Break_AndANewScan_StartAtTheFirstPoint) {
    for (int round = 0; round < 3; ++round) {
        for (auto const& point : sut.points()) {
            if (point->pos == 8) {
                break;
            }
        }
    }
    EXPECT_THAT(positions(), ElementsAre(9, 4, 8, 5, 6, 2, 7));
    auto range = sut.points();
    EXPECT_EQ(9U, (*range.begin())->pos);
    EXPECT_EQ(7, std::distance(range.begin(), range.end()));
    EXPECT_EQ(7, std::distance(range.begin(), range.end())) << "begin() starts anew";
}

TEST_F(QelShmPointRangeTest, Scans_MayBeNested_AndRunInAVisit) {
    std::size_t pairs = 0;
    for (auto const& outer : sut.points()) {
        for (auto const& inner : sut.points()) {
            pairs += outer && inner ? 1 : 0;
        }
        EXPECT_NE(nullptr, sut.mpnt(outer.svid(), true)) << "a rebuild visits";
    }
    EXPECT_EQ(49U, pairs);
    EXPECT_EQ(7U, visited(sut).size());
}

TEST_F(QelShmPointRangeTest, SeveralThreads_ScanByOneReaderAtOnce) {
    auto const expected = scanned(sut);
    std::vector<std::thread> threads;
    threads.reserve(4);
    for (int i = 0; i < 4; ++i) {
        threads.emplace_back([&] {
            for (int round = 0; round < 300; ++round) {
                ASSERT_EQ(expected, scanned(sut));
            }
        });
    }
    for (auto& thread : threads) {
        thread.join();
    }
}

TEST_F(QelShmPointRangeTest, Scan_AllocatesAndLocksNothing_NotEvenTheFirst) {
    std::size_t count = 0;
    std::thread([&] {
        auto const allocations = qel::test::allocations();
        auto const locks = qel::test::locks();
        for (auto const& point : sut.points()) {
            for (auto const& value : point.values()) {
                count += value ? 1 : 0;
            }
        }
        EXPECT_EQ(allocations, qel::test::allocations());
        EXPECT_EQ(locks, qel::test::locks());
    }).join();
    EXPECT_EQ(4U, count);
}

TEST_F(QelShmPointRangeTest, Iterator_ServesTheAlgorithms) {
    using Iterator = shm::QelShmPointRange::Iterator;
    using Traits = std::iterator_traits<Iterator>;
    static_assert(std::is_same_v<Traits::iterator_category, std::input_iterator_tag>);
    static_assert(std::is_same_v<Traits::value_type, shm::QelShmPoint>);
    static_assert(std::is_same_v<Traits::reference, shm::QelShmPoint const&>);
    auto range = sut.points();
    EXPECT_EQ(5, std::count_if(range.begin(), range.end(),
                               [](auto const& point) { return point->pos != 7 && point->pos != 9; }));
    auto const found =
        std::find_if(range.begin(), range.end(), [](auto const& point) { return point->pos == 8; });
    ASSERT_TRUE(found != range.end());
    EXPECT_EQ(3U, found->depth());
    auto current = range.begin();
    shm::QelShmPoint const former = *current++;
    EXPECT_EQ(9U, former->pos);
    EXPECT_EQ(4U, (*current)->pos);
    EXPECT_FALSE(current == range.end());
    EXPECT_TRUE(Iterator() == range.end());
}

TEST_F(QelShmPointRangeTest, HooksAndStop_DoNotConcernAScan) {
    class Stopped : public MappedReader {
    public:
        Stopped() { stopVisits(true); }
        bool onDown(std::shared_ptr<shm::IQelVisitorResult>& /*result*/) override { return false; }
    };
    Stopped const stopped;
    EXPECT_EQ(7U, scanned(stopped).size());
}

/// Links that no writer makes.
class QelShmPointRangeCirclesTest : public QelShmPointRangeTest {
protected:
    void expectItEnds(std::size_t least, std::size_t most) const {
        std::size_t count = 0;
        unsigned int deepest = 0;
        for (auto const& point : sut.points()) {
            ASSERT_LE(++count, most);
            deepest = std::max(deepest, point.depth());
            ASSERT_TRUE(point.ancestor(1));
        }
        EXPECT_GE(count, least);
        EXPECT_LE(deepest, points);
    }
};

TEST_F(QelShmPointRangeCirclesTest, CircularSiblings_EndAfterAsManyAsThereAreSlots) {
    link(8, field::next, 8);
    EXPECT_EQ(visited(sut), scanned(sut));
    expectItEnds(806, 806);
    link(8, field::next, 0xFFFFFFFF);
    link(7, field::next, 7);
    expectItEnds(806, 806);
}

TEST_F(QelShmPointRangeCirclesTest, PointBelowItself_IsShownAtMostAsDeepAsThereAreSlots) {
    link(8, field::children, 8);
    expectItEnds(803, 1600);
    link(8, field::children, 9);
    expectItEnds(803, 1600);
    link(9, field::children, 9);
    expectItEnds(803, 1600);
}

TEST_F(QelShmPointRangeCirclesTest, CirclesInBothDirections_End) {
    link(8, field::children, 8);
    link(8, field::next, 8);
    expectItEnds(803, 1600);
    for (std::uint32_t pos = 0; pos < points; ++pos) {
        link(pos, field::next, (pos + 1) % points);
        link(pos, field::children, (pos + 7) % points);
    }
    expectItEnds(1600, 1600);
}

TEST_F(QelShmPointRangeCirclesTest, RandomLinks_End) {
    auto random = qel::test::randomNumbers(5);
    for (int round = 0; round < 50; ++round) {
        for (std::uint32_t pos = 0; pos < points; ++pos) {
            region.point(pos, static_cast<long long>(random()) << 16);
            link(pos, field::next, static_cast<std::uint32_t>(random() % (points + 100)));
            link(pos, field::children, static_cast<std::uint32_t>(random() % (points + 400)));
        }
        region.raw().set<std::uint32_t>(field::devices, static_cast<std::uint32_t>(random() % points));
        expectItEnds(1, 1600);
    }
}

/// Tables that are full.
class QelShmPointRangeFullTest : public testing::Test {
protected:
    void fill(std::function<std::uint32_t(std::uint32_t pos)> const& parentOf) {
        std::vector<Positions> children(points);
        Positions top;
        for (std::uint32_t pos = 0; pos < points; ++pos) {
            region.point(pos, svid(pos));
            region.values(pos, pos * 11, {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11});
            auto const parent = parentOf(pos);
            (parent < pos ? children[parent] : top).push_back(pos);
        }
        for (std::uint32_t pos = 0; pos < points; ++pos) {
            region.children(pos, children[pos]);
        }
        region.devices(top);
    }

    void expectShownAsVisited() {
        auto const expected = visited(sut);
        ASSERT_EQ(points, expected.size());
        std::vector<Shown> shown;
        qel::test::runOnSmallStack([&] { shown = scanned(sut); });
        EXPECT_EQ(expected, shown);
    }

    ForgedRegion region;
    MappedReader sut;
};

TEST_F(QelShmPointRangeFullTest, AllBesideEachOther) {
    fill([](auto /*pos*/) { return points; });
    expectShownAsVisited();
}

TEST_F(QelShmPointRangeFullTest, AllBelowEachOther) {
    fill([](auto pos) { return pos - 1; });
    expectShownAsVisited();
}

TEST_F(QelShmPointRangeFullTest, AllBelowOne) {
    fill([](auto pos) { return pos == 0 ? points : 0; });
    expectShownAsVisited();
}

TEST_F(QelShmPointRangeFullTest, InTens) {
    fill([](auto pos) { return pos < 10 ? points : pos / 10; });
    expectShownAsVisited();
}

TEST_F(QelShmPointRangeFullTest, PointsComingAndGoing_HideNoneThatStays) {
    fill([](auto pos) { return pos < 400 ? points : pos - 400; });
    std::vector<bool> isShown(points);
    for (auto const& point : sut.points()) {
        auto const pos = point->pos;
        isShown[pos] = true;
        // The child of an earlier point moves below a later one: some are shown twice.
        if (pos < 398 && pos % 2 == 0) {
            region.children(pos + 1, {pos + 401, pos + 400});
        }
    }
    EXPECT_EQ(points, static_cast<std::uint32_t>(std::count(isShown.begin(), isShown.end(), true)));
}

TEST(QelShmPointRangeRandomTreesTest, Scan_ShowsWhatAVisitShows_AndWhatTheBytesSay) {
    auto random = qel::test::randomNumbers(22);
    for (int round = 0; round < 100; ++round) {
        ForgedRegion const region;
        constexpr std::uint32_t count = 60;
        std::vector<Positions> children(count);
        std::array<Positions, 2> top;
        for (std::uint32_t pos = 0; pos < count; ++pos) {
            // Few ids, so some are there twice; kinds of which some sort otherwise than by the id; one device or two.
            auto const kind = static_cast<long long>(round % 3 == 0 ? 0 : random() % 5) << 48;
            auto const device = static_cast<long long>(random() % 2) << 56;
            region.point(pos,
                         (svid(round % 2 == 0 ? pos : static_cast<std::uint32_t>(random() % 90)) + device) |
                             kind);
            region.raw().set(rawPoint(pos) + field::pointType, static_cast<std::uint8_t>(random()));
            region.raw().set(rawPoint(pos) + field::pointState, static_cast<std::int32_t>(random() % 40));
            region.values(pos, pos * 20,
                          std::vector<std::uint16_t>(random() % 20, static_cast<std::uint16_t>(pos)));
            auto const parent = random() % (pos + 3);
            (parent < pos ? children[parent] : top[parent - pos != 0]).push_back(pos);
        }
        for (std::uint32_t pos = 0; pos < count; ++pos) {
            if (round % 4 == 1) {
                std::shuffle(children[pos].begin(), children[pos].end(), random);
            }
            region.children(pos, children[pos]);
        }
        region.devices(top[1]);
        region.groups(top[0]);
        MappedReader sut;
        ASSERT_EQ(visited(sut), scanned(sut)) << "round " << round;
        for (auto const& point : sut.points()) {
            auto const at = rawPoint(point->pos);
            ASSERT_EQ(region.raw().get<std::int64_t>(at + field::guid), point.svid());
            ASSERT_EQ(region.raw().get<std::uint8_t>(at + field::pointType), point.type());
            ASSERT_EQ(region.raw().get<std::int32_t>(at + field::pointState),
                      static_cast<std::int32_t>(point.state()));
        }
    }
}

} // namespace
