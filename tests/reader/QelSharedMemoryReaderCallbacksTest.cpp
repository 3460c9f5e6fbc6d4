// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

// What callbacks of a visit may do to the reader that visits, and several threads with one reader.

#include "reader/QelSharedMemoryReader.h"

#include "reader/BaseQelShmVisitor.h"
#include "tests/reader/CountingVisitor.h"
#include "tests/reader/MappedReader.h"
#include "tests/support/FailureSeams.h"
#include "tests/support/ForgedRegion.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <atomic>
#include <functional>
#include <memory>
#include <stdexcept>
#include <string>
#include <thread>
#include <utility>
#include <vector>

namespace {

using qel::test::CountingVisitor;
using qel::test::ForgedRegion;
using qel::test::MappedReader;
using testing::ElementsAre;

using Events = std::vector<std::string>;
using Result = std::shared_ptr<shm::IQelVisitorResult>;

constexpr long long svid(int number) {
    return 0x0100000000000000 + number * 0x10000LL;
}

/// Notes what it is told under its name, and its end; does something once at one of the callbacks.
class NamedVisitor : public shm::BaseQelShmVisitor {
public:
    NamedVisitor(std::string name, Events& events, std::string when = {},
                 std::function<void()> action = nullptr)
        : name_(std::move(name)),
          events_(events),
          when_(std::move(when)),
          action_(std::move(action)) {}
    ~NamedVisitor() override { events_.push_back(name_ + " ends"); }

    void onRoot(shm::QelShmRoot const& /*root*/, Result& /*result*/) override { note("root"); }
    void onMPnt(shm::QelShmMPnt const& point, unsigned int /*depth*/, Result& /*result*/) override {
        note("point " + std::to_string(point->pos));
    }
    void onMVal(shm::QelShmMVal const& value, long long /*svid*/, unsigned int /*depth*/,
                Result& /*result*/) override {
        note("value " + std::to_string(value->key));
    }

private:
    void note(std::string const& what) {
        events_.push_back(name_ + " " + what);
        if (what == when_) {
            auto const action = std::exchange(action_, nullptr);
            if (action) {
                action();
                events_.push_back(name_ + " goes on"); // with its members in use
            }
        }
    }

    std::string name_;
    Events& events_;
    std::string when_;
    std::function<void()> action_;
};

/// Points 1, with the values 1 to 3, and 2, with value 4, below point 0.
class QelSharedMemoryReaderCallbacksTest : public testing::Test {
protected:
    QelSharedMemoryReaderCallbacksTest() {
        for (std::uint32_t const pos : {0U, 1U, 2U}) {
            region.point(pos, svid(static_cast<int>(pos)));
        }
        region.devices({0});
        region.children(0, {1, 2});
        region.values(1, 10, {1, 2, 3});
        region.values(2, 20, {4});
        sut.syncPositions(true);
    }

    void install(std::string const& name, std::string const& when = {},
                 std::function<void()> action = nullptr) {
        sut.visitor(std::make_unique<NamedVisitor>(name, events, when, std::move(action)));
    }

    ForgedRegion region;
    Events events;
    MappedReader sut;
};

TEST_F(QelSharedMemoryReaderCallbacksTest, VisitorTakenAway_InOnMVal_EndsTheTelling_AndOutlivesItsCallback) {
    install("first", "value 1", [&] { sut.visitor(nullptr); });
    sut.visit();
    EXPECT_THAT(events, ElementsAre("first root", "first point 0", "first point 1", "first value 1",
                                    "first goes on", "first ends"));
}

TEST_F(QelSharedMemoryReaderCallbacksTest, VisitorTakenAway_InOnMPnt_EndsTheTelling) {
    install("first", "point 1", [&] { sut.visitor(nullptr); });
    sut.visit();
    EXPECT_THAT(events,
                ElementsAre("first root", "first point 0", "first point 1", "first goes on", "first ends"));
}

TEST_F(QelSharedMemoryReaderCallbacksTest, VisitorTakenAway_InOnRoot_EndsTheTelling) {
    install("first", "root", [&] { sut.visitor(nullptr); });
    sut.visit();
    EXPECT_THAT(events, ElementsAre("first root", "first goes on", "first ends"));
}

TEST_F(QelSharedMemoryReaderCallbacksTest, VisitorTakenAway_InValues_EndsTheTelling) {
    install("first", "value 2", [&] { sut.visitor(nullptr); });
    Result result;
    sut.values(sut.mps(1, SensorType::Any).front(), 1, result);
    EXPECT_THAT(events, ElementsAre("first value 1", "first value 2", "first goes on", "first ends"));
}

TEST_F(QelSharedMemoryReaderCallbacksTest, VisitorExchanged_InOnMVal_IsToldNothingMoreOfThatPoint) {
    install("first", "value 1", [&] { install("second"); });
    sut.visit();
    EXPECT_THAT(events, ElementsAre("first root", "first point 0", "first point 1", "first value 1",
                                    "first goes on", "first ends", "second point 2", "second value 4"));
}

TEST_F(QelSharedMemoryReaderCallbacksTest, VisitorExchanged_InOnMPnt_IsToldThatPointsValues) {
    install("first", "point 2", [&] { install("second"); });
    sut.visit();
    EXPECT_EQ((Events{"first goes on", "second value 4", "first ends"}),
              Events(events.end() - 3, events.end()));
}

TEST_F(QelSharedMemoryReaderCallbacksTest, VisitorsExchangedOverAndOver_AllEnd) {
    install("a", "value 1", [&] {
        install("b");
        install("c", "point 2", [&] { install("d", "value 4", [&] { sut.visitor(nullptr); }); });
    });
    sut.visit();
    for (auto const* const name : {"a ends", "b ends", "c ends", "d ends"}) {
        EXPECT_THAT(events, testing::Contains(name).Times(1));
    }
}

TEST_F(QelSharedMemoryReaderCallbacksTest,
       VisitorExchanged_InAVisitWithinACallback_OutlivesTheOuterCallback) {
    install("first", "point 0", [&] {
        auto const point = sut.mps(1, SensorType::Any).front();
        install("second", "point 1", [&] { sut.visitor(nullptr); });
        sut.visit(point, 7);
        events.emplace_back("back");
    });
    sut.visit();
    EXPECT_THAT(events, ElementsAre("first root", "first point 0", "second point 1", "second goes on", "back",
                                    "first goes on", testing::EndsWith(" ends"), testing::EndsWith(" ends")));
}

TEST_F(QelSharedMemoryReaderCallbacksTest, VisitorExchanged_OutsideOfVisits_EndsAtOnce) {
    install("first");
    sut.visitor(nullptr);
    EXPECT_THAT(events, ElementsAre("first ends"));
}

TEST_F(QelSharedMemoryReaderCallbacksTest, LookUpWithARebuild_InACallback_LeavesTheVisitUndisturbed) {
    install("first", "value 1", [&] { EXPECT_NE(nullptr, sut.mpnt(svid(2), true)); });
    sut.visit();
    EXPECT_THAT(events,
                ElementsAre("first root", "first point 0", "first point 1", "first value 1", "first goes on",
                            "first value 2", "first value 3", "first point 2", "first value 4"));
}

TEST_F(QelSharedMemoryReaderCallbacksTest, ExceptionFromACallback_LeavesReaderAndMemoryAsTheyWere) {
    for (auto const* const when : {"root", "point 1", "value 2"}) {
        install("first", when, [] { throw std::runtime_error("callback"); });
        EXPECT_THROW(sut.visit(), std::runtime_error);
    }
    install("second");
    events.clear();
    sut.visitor(nullptr);
    EXPECT_THAT(events, ElementsAre("second ends")) << "no callback counts as running";
}

TEST_F(QelSharedMemoryReaderCallbacksTest, Visits_AllocateNothingAfterAThreadsFirst_WhereverTheValuesLie) {
    std::atomic<int> calls{0};
    sut.visitor(std::make_unique<CountingVisitor>(calls));
    region.children(0, {2, 1}); // not in order
    region.raw().set<std::uint32_t>(qel::test::rawValue(11) + qel::test::field::valueNext,
                                    13); // not side by side
    region.values(2, 20, {4});
    auto result = std::make_shared<shm::IQelVisitorResult>();
    sut.visit(result);
    auto const before = qel::test::allocations();
    sut.visit(result);
    EXPECT_EQ(before, qel::test::allocations());
    EXPECT_EQ(2 * (3 + 3 + 1), calls);
}

TEST_F(QelSharedMemoryReaderCallbacksTest, ValuesAnywhere_AreToldInTheOrderOfTheirChain) {
    auto const& raw = region.raw();
    for (auto const& [slot, key, next] : {std::array<std::uint32_t, 3>{8798, 5, 8799},
                                          {8799, 6, 12},
                                          {12, 7, 13},
                                          {13, 8, 11},
                                          {11, 9, 8800}}) {
        raw.set<std::uint16_t>(qel::test::rawValue(slot) + qel::test::field::valueKey,
                               static_cast<std::uint16_t>(key));
        raw.set<std::uint32_t>(qel::test::rawValue(slot) + qel::test::field::valueNext, next);
    }
    raw.set<std::uint32_t>(qel::test::rawPoint(1) + qel::test::field::mvs, 8798);
    install("v");
    sut.visit(sut.mps(1, SensorType::Any).front(), 1);
    EXPECT_THAT(events,
                ElementsAre("v point 1", "v value 5", "v value 6", "v value 7", "v value 8", "v value 9"));
}

TEST_F(QelSharedMemoryReaderCallbacksTest, CircularLists_EndAfterAsManyAsThereAreSlots) {
    std::atomic<int> calls{0};
    sut.visitor(std::make_unique<CountingVisitor>(calls));
    auto const& raw = region.raw();
    raw.set<std::uint32_t>(qel::test::rawValue(20) + qel::test::field::valueNext, 20);
    sut.visit(sut.mps(2, SensorType::Any).front(), 1);
    EXPECT_EQ(1 + 8800, calls);
    region.values(2, 20, {});
    region.values(1, 10, {});
    raw.set<std::uint32_t>(qel::test::rawPoint(2) + qel::test::field::next, 1);
    calls = 0;
    sut.visit();
    EXPECT_EQ(1 + 800, calls);
    EXPECT_EQ(800U, sut.mps(1, SensorType::Any).size());
}

TEST_F(QelSharedMemoryReaderCallbacksTest, SeveralThreads_VisitByOneReaderAtOnce) {
    std::atomic<int> calls{0};
    sut.visitor(std::make_unique<CountingVisitor>(calls));
    constexpr int threads = 4;
    constexpr int rounds = 300;
    std::vector<std::thread> visiting;
    visiting.reserve(threads);
    for (int i = 0; i < threads; ++i) {
        visiting.emplace_back([&] {
            for (int round = 0; round < rounds; ++round) {
                sut.visit();
            }
        });
    }
    for (auto& thread : visiting) {
        thread.join();
    }
    EXPECT_EQ(threads * rounds * 7, calls);
}

} // namespace
