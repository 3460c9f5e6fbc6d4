// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "reader/BaseQelShmVisitor.h"
#include "reader/QelSharedMemoryReader.h"
#include "reader/QelShmMPntCmp.h"
#include "tests/reader/MappedReader.h"
#include "tests/reader/SampleTree.h"
#include "tests/support/ForgedRegion.h"
#include "tests/support/RandomNumbers.h"
#include "tests/support/SmallStack.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <functional>
#include <list>
#include <memory>
#include <string>
#include <typeinfo>
#include <utility>
#include <vector>

namespace {

using qel::test::addSampleTree;
using qel::test::ForgedRegion;
using qel::test::MappedReader;
using qel::test::svid;
using shm::IQelVisitorResult;
using testing::ElementsAre;
using testing::IsEmpty;

using Result = std::shared_ptr<IQelVisitorResult>;
using Events = std::vector<std::string>;

std::string show(long long id) {
    return std::to_string((id - svid(0)) / 0x10000);
}

/// Notes each call; what a test wants to happen besides hangs in the functions.
class NotingVisitor : public shm::IQelSharedMemoryVisitor {
public:
    explicit NotingVisitor(Events& events) : events_(events) {}

    void onRoot(shm::QelShmRoot const& root, Result& /*result*/) override {
        events_.push_back(root ? "root" : "null root");
    }
    void onMPnt(shm::QelShmMPnt const& point, unsigned int depth, Result& /*result*/) override {
        events_.push_back("point " + show(point->guid) + " at " + std::to_string(depth));
    }
    void onMVal(shm::QelShmMVal const& value, long long id, unsigned int depth, Result& /*result*/) override {
        events_.push_back("value " + std::to_string(value->key) + " of " + show(id) + " at " +
                          std::to_string(depth));
        sought_ = value->key == seek;
    }
    bool mvFound() const override {
        events_.emplace_back("found?");
        return sought_;
    }

    int seek = -1;

private:
    Events& events_;
    bool sought_ = false;
};

/// Notes each hook, and answers it by the functions.
class NotingReader : public MappedReader {
public:
    using QelSharedMemoryReader::visit;

    bool onDown(Result& /*result*/) override {
        events.emplace_back("list");
        return walkLists[lists_++];
    }
    bool onDown(shm::QelShmMPnt const& point, unsigned int depth, Result& /*result*/) override {
        events.push_back("down " + show(point->guid) + " at " + std::to_string(depth));
        return walkChildren(point->guid);
    }
    void onUp(Result& /*result*/) override { events.emplace_back("up"); }
    bool beforeValues(long long id, unsigned int depth, Result& /*result*/) override {
        events.push_back("values of " + show(id) + " at " + std::to_string(depth));
        return walkValues(id);
    }
    void afterValues(Result& /*result*/) override { events.emplace_back("after"); }

    NotingVisitor& noteVisitor() {
        auto owned = std::make_unique<NotingVisitor>(events);
        auto& installed = *owned;
        visitor(std::move(owned));
        return installed;
    }

    void stop() { stopVisits(true); }
    void resume() { stopVisits(false); }

    Events events;
    std::vector<bool> walkLists{true, true};
    std::function<bool(long long)> walkChildren = [](long long) {
        return true;
    };
    std::function<bool(long long)> walkValues = [](long long) {
        return true;
    };

private:
    std::size_t lists_ = 0;
};

class QelSharedMemoryReaderVisitsOfATreeTest : public testing::Test {
protected:
    QelSharedMemoryReaderVisitsOfATreeTest() { addSampleTree(region); }

    shm::QelShmMPnt point(std::uint32_t pos) const { return sut.mps(pos, SensorType::Any).front(); }

    ForgedRegion region;
    NotingReader sut;
};

TEST_F(QelSharedMemoryReaderVisitsOfATreeTest, Visit_CallsEverythingInOrder) {
    sut.noteVisitor();
    sut.visit();
    EXPECT_THAT(sut.events,
                ElementsAre("root",                                                                      //
                            "list",                                                                      //
                            "point 9 at 1", "values of 9 at 1", "after", "down 9 at 1",                  //
                            "point 4 at 2", "values of 4 at 2",                                          //
                            "value 31 of 4 at 2", "found?", "value 30 of 4 at 2", "found?",              //
                            "value 32 of 4 at 2", "found?", "after", "down 4 at 2",                      //
                            "point 8 at 3", "values of 8 at 3", "after", "down 8 at 3", "up",            //
                            "up",                                                                        //
                            "point 5 at 2", "values of 5 at 2", "after", "down 5 at 2", "up",            //
                            "point 6 at 2", "values of 6 at 2", "after", "down 6 at 2", "up",            //
                            "up",                                                                        //
                            "point 2 at 1", "values of 2 at 1", "after", "down 2 at 1", "up",            //
                            "up",                                                                        //
                            "list",                                                                      //
                            "point 7 at 1", "values of 7 at 1", "value 30 of 7 at 1", "found?", "after", //
                            "down 7 at 1", "up",                                                         //
                            "up"));
}

TEST_F(QelSharedMemoryReaderVisitsOfATreeTest, Visit_WithoutVisitor_RunsTheHooksOnly) {
    sut.visit();
    EXPECT_THAT(sut.events, ElementsAre("list",                                                 //
                                        "values of 9 at 1", "after", "down 9 at 1",             //
                                        "values of 4 at 2", "after", "down 4 at 2",             //
                                        "values of 8 at 3", "after", "down 8 at 3", "up", "up", //
                                        "values of 5 at 2", "after", "down 5 at 2", "up",       //
                                        "values of 6 at 2", "after", "down 6 at 2", "up", "up", //
                                        "values of 2 at 1", "after", "down 2 at 1", "up", "up", //
                                        "list",                                                 //
                                        "values of 7 at 1", "after", "down 7 at 1", "up", "up"));
}

TEST_F(QelSharedMemoryReaderVisitsOfATreeTest, Visit_NullVisitor_TakesTheFormerOneAway) {
    sut.noteVisitor();
    sut.visitor(nullptr);
    sut.visit();
    EXPECT_THAT(sut.events, testing::Not(testing::Contains("root")));
}

TEST_F(QelSharedMemoryReaderVisitsOfATreeTest, Visit_MvFound_EndsTheValuesOfThatPointOnly) {
    sut.noteVisitor().seek = 30;
    Result result;
    sut.visit(point(4), 2, result);
    EXPECT_THAT(sut.events,
                ElementsAre("point 4 at 2", "values of 4 at 2", "value 31 of 4 at 2", "found?",
                            "value 30 of 4 at 2", "found?", "after", "down 4 at 2", "point 8 at 3",
                            "values of 8 at 3", "after", "down 8 at 3", "up", "up"));
}

TEST_F(QelSharedMemoryReaderVisitsOfATreeTest, Visit_FoundFlagOfBaseVisitor_StaysForLaterPoints) {
    class Seeker : public shm::BaseQelShmVisitor {
    public:
        explicit Seeker(std::vector<int>& keys) : keys_(keys) {}
        void onMVal(shm::QelShmMVal const& value, long long /*svid*/, unsigned int /*depth*/,
                    Result& /*result*/) override {
            keys_.push_back(value->key);
            found_ = found_ || value->key == 30;
        }

    private:
        std::vector<int>& keys_;
    };
    region.values(5, 300, {1, 2, 3});
    region.values(8, 400, {4, 5, 6});
    std::vector<int> keys;
    sut.visitor(std::make_unique<Seeker>(keys));
    sut.visit();
    EXPECT_THAT(keys, ElementsAre(31, 30, /* point 8 */ 4, /* point 5 */ 1, /* point 7 */ 30));
}

TEST_F(QelSharedMemoryReaderVisitsOfATreeTest, Visit_ListNotWalked_HasNoUp) {
    sut.noteVisitor();
    sut.walkLists = {false, true};
    sut.visit();
    EXPECT_THAT(sut.events, ElementsAre("root", "list", "list", "point 7 at 1", "values of 7 at 1",
                                        "value 30 of 7 at 1", "found?", "after", "down 7 at 1", "up", "up"));
}

TEST_F(QelSharedMemoryReaderVisitsOfATreeTest, Visit_GroupsNotWalked_HaveNoUp) {
    sut.walkLists = {true, false};
    region.devices({2});
    sut.visit();
    EXPECT_THAT(sut.events,
                ElementsAre("list", "values of 2 at 1", "after", "down 2 at 1", "up", "up", "list"));
}

TEST_F(QelSharedMemoryReaderVisitsOfATreeTest, Visit_ChildrenNotWalked_LeavesOutDescendantsAndUp) {
    sut.noteVisitor();
    sut.walkChildren = [](long long id) {
        return id != svid(9);
    };
    region.devices({9});
    region.groups({});
    sut.visit();
    EXPECT_THAT(sut.events, ElementsAre("root", "list", "point 9 at 1", "values of 9 at 1", "after",
                                        "down 9 at 1", "up", "list", "up"));
}

TEST_F(QelSharedMemoryReaderVisitsOfATreeTest, Visit_ValuesNotWalked_LeavesOutAfterValues) {
    sut.noteVisitor();
    sut.walkValues = [](long long) {
        return false;
    };
    Result result;
    sut.visit(point(7), 1, result);
    EXPECT_THAT(sut.events, ElementsAre("point 7 at 1", "values of 7 at 1", "down 7 at 1", "up"));
}

TEST_F(QelSharedMemoryReaderVisitsOfATreeTest, Visit_Stopped_DoesNothingPerPoint) {
    sut.noteVisitor();
    sut.stop();
    sut.visit();
    EXPECT_THAT(sut.events, ElementsAre("root", "list", "up", "list", "up"));
    sut.events.clear();
    sut.resume();
    sut.visit(point(2), 1);
    EXPECT_THAT(sut.events, ElementsAre("point 2 at 1", "values of 2 at 1", "after", "down 2 at 1", "up"));
}

TEST_F(QelSharedMemoryReaderVisitsOfATreeTest, Visit_StoppedUnderWay_CutsShortWhatFollows) {
    sut.noteVisitor();
    sut.walkChildren = [this](long long id) {
        if (id == svid(4)) {
            sut.stop();
        }
        return true;
    };
    sut.visit();
    EXPECT_EQ(std::count(sut.events.begin(), sut.events.end(), "up"), 4) << "of 4, of 9 and of both lists";
    EXPECT_THAT(sut.events, testing::Not(testing::Contains("point 8 at 3")));
    EXPECT_THAT(sut.events, testing::Not(testing::Contains("point 5 at 2")));
    EXPECT_THAT(sut.events, testing::Not(testing::Contains("point 7 at 1")));
}

TEST_F(QelSharedMemoryReaderVisitsOfATreeTest, VisitOfPoint_StartsAtTheGivenDepth) {
    sut.noteVisitor();
    sut.visit(point(4), 41);
    EXPECT_THAT(sut.events,
                testing::AllOf(testing::Contains("point 4 at 41"), testing::Contains("point 8 at 42"),
                               testing::Not(testing::Contains("root")),
                               testing::Not(testing::Contains("list"))));
}

TEST_F(QelSharedMemoryReaderVisitsOfATreeTest, Values_WithoutVisitor_DoesNothing) {
    Result result;
    sut.values(point(4), 2, result);
    EXPECT_THAT(sut.events, IsEmpty());
}

TEST_F(QelSharedMemoryReaderVisitsOfATreeTest, Values_FeedsTheVisitorWithoutHooks) {
    sut.noteVisitor();
    Result result;
    sut.values(point(7), 5, result);
    EXPECT_THAT(sut.events, ElementsAre("value 30 of 7 at 5", "found?"));
}

TEST_F(QelSharedMemoryReaderVisitsOfATreeTest, Visit_LinksOutOfRange_EndQuietly) {
    auto const& raw = region.raw();
    raw.set<std::uint32_t>(qel::test::field::devices, 800);
    raw.set<std::uint32_t>(qel::test::rawPoint(7) + qel::test::field::next, 0x80000000);
    raw.set<std::uint32_t>(qel::test::rawPoint(7) + qel::test::field::children, 0x7FFFFFFF);
    raw.set<std::uint32_t>(qel::test::rawPoint(7) + qel::test::field::mvs, 8800);
    sut.noteVisitor();
    sut.visit();
    EXPECT_THAT(sut.events, ElementsAre("root", "list", "up", "list", "point 7 at 1", "values of 7 at 1",
                                        "after", "down 7 at 1", "up", "up"));
}

TEST_F(QelSharedMemoryReaderVisitsOfATreeTest, Visit_EmptyRegion_WalksTwoEmptyLists) {
    region.raw().fill(0xFF);
    sut.noteVisitor();
    sut.visit();
    EXPECT_THAT(sut.events, ElementsAre("root", "list", "up", "list", "up"));
}

TEST(QelSharedMemoryReaderVisitsTest, Visit_NothingMapped_CallsRootAndListHooksOnly) {
    NotingReader sut; // there is no object to map
    sut.noteVisitor();
    sut.visit();
    EXPECT_THAT(sut.events, ElementsAre("null root", "list", "up", "list", "up"));
}

TEST(QelSharedMemoryReaderVisitsTest, Visit_NothingMapped_ListNotWalkedHasNoUp) {
    NotingReader sut;
    sut.walkLists = {false, false};
    sut.visit();
    EXPECT_THAT(sut.events, ElementsAre("list", "list"));
}

TEST(QelSharedMemoryReaderVisitsTest, Visitor_ReplacedOrLeftAtTheEnd_IsDestroyed) {
    class Counted : public shm::BaseQelShmVisitor {
    public:
        explicit Counted(int& alive) : alive_(alive) { ++alive_; }
        ~Counted() override { --alive_; }

    private:
        int& alive_;
    };
    int alive = 0;
    {
        shm::QelSharedMemoryReader sut(0, false);
        sut.visitor(std::make_unique<Counted>(alive));
        EXPECT_EQ(alive, 1);
        sut.visitor(std::make_unique<Counted>(alive));
        EXPECT_EQ(alive, 1);
        sut.visitor(nullptr);
        EXPECT_EQ(alive, 0);
        sut.visitor(std::make_unique<Counted>(alive));
    }
    EXPECT_EQ(alive, 0);
}

/// A result of a test's own.
class Tally : public IQelVisitorResult {
public:
    int calls = 0;
};

TEST_F(QelSharedMemoryReaderVisitsOfATreeTest, Result_OfTheCaller_ReachesEveryCallback) {
    class Tallying : public shm::IQelSharedMemoryVisitor {
    public:
        static void count(Result& result) { ++dynamic_cast<Tally&>(*result).calls; }
        void onRoot(shm::QelShmRoot const& /*root*/, Result& result) override { count(result); }
        void onMPnt(shm::QelShmMPnt const& /*point*/, unsigned int /*depth*/, Result& result) override {
            count(result);
        }
        void onMVal(shm::QelShmMVal const& /*value*/, long long /*svid*/, unsigned int /*depth*/,
                    Result& result) override {
            count(result);
        }
        bool mvFound() const override { return false; }
    };
    sut.visitor(std::make_unique<Tallying>());
    auto const tally = std::make_shared<Tally>();
    Result result = tally;
    sut.visit(result);
    EXPECT_EQ(tally->calls, 1 + 7 + 4);
    sut.visit(point(4), 2, result);
    EXPECT_EQ(tally->calls, 12 + 2 + 3);
}

TEST_F(QelSharedMemoryReaderVisitsOfATreeTest, Result_OfAVisitWithoutOne_IsAPlainOneThatIsDropped) {
    class Keeping : public shm::BaseQelShmVisitor {
    public:
        explicit Keeping(std::vector<std::weak_ptr<IQelVisitorResult>>& results) : results_(results) {}
        void onMPnt(shm::QelShmMPnt const& /*point*/, unsigned int /*depth*/, Result& result) override {
            ASSERT_NE(result, nullptr);
            IQelVisitorResult const& plain = *result;
            EXPECT_TRUE(typeid(plain) == typeid(IQelVisitorResult));
            results_.push_back(result);
        }

    private:
        std::vector<std::weak_ptr<IQelVisitorResult>>& results_;
    };
    std::vector<std::weak_ptr<IQelVisitorResult>> results;
    sut.visitor(std::make_unique<Keeping>(results));
    sut.visit();
    sut.visit(point(4), 1);
    EXPECT_EQ(results.size(), 7U + 2U);
    for (auto const& result : results) {
        EXPECT_TRUE(result.expired());
    }
}

TEST(QelSharedMemoryReaderVisitsTest, PointWithLinks_OfAReaderWithoutARegion_IsVisitedAlone) {
    NotingReader sut;
    sut.noteVisitor();
    shm::record::QelShmMP slot{};
    slot.guid = svid(1);
    slot.mvs = 0;
    slot.children = 0;

    auto result = std::make_shared<IQelVisitorResult>();
    sut.visit(shm::QelShmMPnt(&slot), 3, result);

    EXPECT_THAT(sut.events, ElementsAre("point 1 at 3", "values of 1 at 3", "after", "down 1 at 3", "up"));
}

TEST(QelSharedMemoryReaderVisitsTest, Children_AreSortedByTheirKeys_TopLevelListsAreNot) {
    ForgedRegion const region;
    // Keys: an electrical point with a large id, a monitor (sorts without its kind byte), an electrical one
    // between.
    region.point(1, 0x0100000100000000);
    region.point(2, 0x0104000050000000);
    region.point(3, 0x0100000060000000);
    region.point(4, 0x0100000000000000);
    // I2C sensors that differ in bytes 2 and 5 only keep their order.
    region.point(5, 0x0101FF0000FF0000);
    region.point(6, 0x0101000000000000);
    region.children(4, {1, 5, 3, 6, 2});
    region.devices({4});

    std::vector<std::uint32_t> order;
    class Ordering : public shm::BaseQelShmVisitor {
    public:
        explicit Ordering(std::vector<std::uint32_t>& order) : order_(order) {}
        void onMPnt(shm::QelShmMPnt const& point, unsigned int /*depth*/, Result& /*result*/) override {
            order_.push_back(point->pos);
        }

    private:
        std::vector<std::uint32_t>& order_;
    };
    MappedReader sut;
    sut.visitor(std::make_unique<Ordering>(order));
    sut.visit();
    EXPECT_THAT(order, ElementsAre(4, 2, 3, 1, 5, 6));

    order.clear();
    region.children(4, {});
    region.groups({3, 1, 2});
    sut.visit();
    EXPECT_THAT(order, ElementsAre(4, 3, 1, 2));
}

TEST(QelSharedMemoryReaderVisitsTest, Subtrees_AreVisitedThroughTheVirtualOperation) {
    class Overriding : public MappedReader {
    public:
        using QelSharedMemoryReader::visit;
        void visit(shm::QelShmMPnt const& point, unsigned int depth, Result& result) override {
            visited.push_back(point->pos);
            QelSharedMemoryReader::visit(point, depth, result);
        }
        std::vector<std::uint32_t> visited;
    };
    ForgedRegion const region;
    for (std::uint32_t const pos : {1U, 2U, 3U}) {
        region.point(pos, svid(pos));
    }
    region.devices({1});
    region.children(1, {2});
    region.groups({3});
    Overriding sut;
    sut.visit();
    EXPECT_THAT(sut.visited, ElementsAre(1, 2, 3));
    sut.visit(sut.mps(1, SensorType::Any).front(), 1);
    EXPECT_THAT(sut.visited, ElementsAre(1, 2, 3, 1, 2));
}

TEST(QelSharedMemoryReaderVisitsTest, EveryPointNestedBelowTheOther_FitsOnASmallStack) {
    ForgedRegion const region;
    for (std::uint32_t pos = 0; pos < 800; ++pos) {
        region.point(pos, svid(pos));
        region.siblings({pos});
        if (pos != 0) {
            region.children(pos - 1, {pos});
        }
    }
    region.devices({0});
    MappedReader sut;
    std::unique_ptr<shm::QelShmMPnt> deepest;
    qel::test::runOnSmallStack([&] { deepest = sut.mpnt(svid(799), false); });
    ASSERT_NE(deepest, nullptr);
    EXPECT_EQ((*deepest)->pos, 799U);
}

/// What a visit shows, got the plain way: by lists, each of children sorted.
void visitPlainly(MappedReader const& reader, std::list<shm::QelShmMPnt> const& points, unsigned int depth,
                  Events& events) {
    for (auto const& point : points) {
        events.push_back("point " + show(point->guid) + " at " + std::to_string(depth));
        for (auto const& value : reader.mvs(point->mvs)) {
            events.push_back("value " + std::to_string(value->key) + " of " + show(point->guid) + " at " +
                             std::to_string(depth));
            events.emplace_back("found?");
        }
        auto children = reader.mps(point->children, SensorType::Any);
        children.sort(shm::QelShmMPntCmp());
        visitPlainly(reader, children, depth + 1, events);
    }
}

TEST(QelSharedMemoryReaderRandomTreesTest, Visit_ShowsWhatListsShow) {
    auto random = qel::test::randomNumbers(21);
    for (int round = 0; round < 100; ++round) {
        ForgedRegion const region;
        // Each point hangs below an earlier one or in a list of the root; children in any order of their ids,
        // of several kinds, some ids twice.
        constexpr std::uint32_t points = 60;
        std::vector<std::vector<std::uint32_t>> children(points);
        std::vector<std::uint32_t> devices;
        std::vector<std::uint32_t> groups;
        for (std::uint32_t pos = 0; pos < points; ++pos) {
            auto const kind = static_cast<long long>(random() % 5) << 48;
            region.point(pos, svid(static_cast<std::uint32_t>(random() % 90)) | kind);
            region.values(pos, pos * 4,
                          std::vector<std::uint16_t>(random() % 4, static_cast<std::uint16_t>(pos)));
            auto const parent = random() % (pos + 3);
            (parent < pos ? children[parent] : parent == pos ? groups : devices).push_back(pos);
        }
        bool const inOrder = round % 2 == 0;
        for (std::uint32_t pos = 0; pos < points; ++pos) {
            if (inOrder) {
                std::stable_sort(children[pos].begin(), children[pos].end(), [&](auto left, auto right) {
                    auto const* const slots = region.raw().bytes();
                    auto const point = [&](std::uint32_t slot) {
                        return shm::QelShmMPnt(
                            reinterpret_cast<shm::QelShmMP const*>(slots + qel::test::rawPoint(slot)));
                    };
                    return shm::QelShmMPntCmp()(point(left), point(right));
                });
            }
            region.children(pos, children[pos]);
        }
        region.devices(devices);
        region.groups(groups);

        MappedReader sut;
        Events expected{"root"};
        visitPlainly(sut, sut.mps(sut.root()->devices, SensorType::Any), 1, expected);
        visitPlainly(sut, sut.mps(sut.root()->groups, SensorType::Any), 1, expected);
        Events events;
        sut.visitor(std::make_unique<NotingVisitor>(events));
        sut.visit();
        ASSERT_EQ(expected, events) << "round " << round;
    }
}

} // namespace
