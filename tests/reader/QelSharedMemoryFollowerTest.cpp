// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

// A reader that follows its writer: what it gives in each condition, and when it makes another reader.

#include "reader/QelSharedMemoryFollower.h"

#include "format/ValueKeys.h"
#include "tests/reader/BusFailures.h"
#include "tests/support/Eventually.h"
#include "tests/support/FailureSeams.h"
#include "tests/support/FakeHardwareManager.h"
#include "tests/support/ForgedRegion.h"
#include "tests/support/LogCapture.h"
#include "tests/support/MainLoopThread.h"
#include "tests/support/NoMoreDescriptors.h"
#include "tests/support/ObjectLock.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/mman.h>
#include <unistd.h>

#include <chrono>
#include <functional>
#include <memory>
#include <optional>
#include <sstream>
#include <stdexcept>
#include <string>
#include <thread>
#include <utility>
#include <vector>

namespace {

namespace key = shm::key;
using namespace std::chrono_literals;
using qel::test::eventually;
using qel::test::FakeHardwareManager;
using qel::test::ForgedRegion;
using qel::test::LogCapture;
using qel::test::MainLoopThread;
using qel::test::ObjectLock;
using shm::ANY_AGE;
using shm::QelSharedMemoryFollower;
using shm::QelShmCondition;
using Conditions = std::vector<QelShmCondition>;

constexpr long long point = 0x0100000000000000;
constexpr long long value = point | key::voltage;

/// An object with one point and one value, of this number.
std::unique_ptr<ForgedRegion> region(double number, std::uint32_t pos = 5) {
    auto made = std::make_unique<ForgedRegion>();
    made->point(pos, point);
    made->values(pos, 7, {key::voltage});
    made->devices({pos});
    made->raw().set(qel::test::rawValue(7), number);
    made->raw().set<std::uint64_t>(qel::test::rawValue(7) + qel::test::field::valueAt, 1000);
    return made;
}

std::unique_ptr<ForgedRegion> activeRegion(double number, std::uint32_t pos = 5) {
    auto made = region(number, pos);
    made->activate();
    return made;
}

void removeName() {
    ::shm_unlink("QelSharedMemory");
}

class PointCounter : public shm::IQelSharedMemoryVisitor {
public:
    void onRoot(shm::QelShmRoot const& /*root*/,
                std::shared_ptr<shm::IQelVisitorResult>& /*result*/) override {
        ++roots;
    }
    void onMPnt(shm::QelShmMPnt const& /*point*/, unsigned int /*depth*/,
                std::shared_ptr<shm::IQelVisitorResult>& /*result*/) override {
        ++points;
    }
    void onMVal(shm::QelShmMVal const& /*value*/, long long /*svid*/, unsigned int /*depth*/,
                std::shared_ptr<shm::IQelVisitorResult>& /*result*/) override {
        ++values;
    }
    bool mvFound() const override { return false; }

    int roots = 0;
    int points = 0;
    int values = 0;
};

/// Does something with the first point that it is told.
class ActingVisitor : public PointCounter {
public:
    explicit ActingVisitor(std::function<void()> act) : act_(std::move(act)) {}
    void onMPnt(shm::QelShmMPnt const& reached, unsigned int depth,
                std::shared_ptr<shm::IQelVisitorResult>& result) override {
        PointCounter::onMPnt(reached, depth, result);
        if (points == 1) {
            act_();
        }
    }

private:
    std::function<void()> act_;
};

class QelSharedMemoryFollowerTest : public testing::Test {
protected:
    bool visit(shm::IQelSharedMemoryVisitor& visitor) {
        auto result = std::make_shared<shm::IQelVisitorResult>();
        return sut->visit(visitor, result);
    }

    void become(QelShmCondition condition) {
        EXPECT_TRUE(eventually([&] { return sut->condition() == condition; }))
            << "wanted " << condition << ", is " << sut->condition();
    }

    /// Waits for the second region, of which a second reader gives the number 2.
    void expectSecondServed() {
        become(QelShmCondition::Active);
        expectNumber(2);
        EXPECT_EQ(readers(), 2U);
        EXPECT_EQ(voided.size(), 1U);
    }

    void expectNumber(double number) {
        auto const found = sut->mval(value);
        ASSERT_TRUE(found);
        EXPECT_EQ(found->value, number);
        auto const again = sut->mval(kept);
        ASSERT_TRUE(again);
        EXPECT_EQ(again->value, number);
        auto const there = sut->mpnt(point);
        ASSERT_TRUE(there);
        EXPECT_EQ((*there)->guid, point);
        EXPECT_NE(sut->reader(), nullptr);
        PointCounter counter;
        EXPECT_TRUE(visit(counter));
        EXPECT_EQ(counter.roots, 1);
        EXPECT_EQ(counter.points, 1);
        EXPECT_EQ(counter.values, 1);
    }

    void expectNothing() {
        EXPECT_FALSE(sut->mval(value));
        EXPECT_FALSE(sut->mval(kept));
        EXPECT_FALSE(sut->mpnt(point));
        EXPECT_FALSE(sut->mpnt(point, true));
        EXPECT_EQ(sut->reader(), nullptr);
        PointCounter counter;
        EXPECT_FALSE(visit(counter));
        EXPECT_EQ(counter.roots, 0);
    }

    /// How many readers have been made.
    std::size_t readers() const {
        return log.count({"qel.shm.access.reader", log4cpp::Priority::INFO, "QelSharedMemoryReader: start"});
    }

    void make(unsigned int seconds = 60, std::chrono::milliseconds maxAge = ANY_AGE) {
        sut.emplace(seconds, maxAge, [this](QelShmCondition condition) {
            voided.push_back(condition);
            readersAtVoiding.push_back(readers());
        });
    }

    /// A region with the number 1, and a follower that serves it.
    std::unique_ptr<ForgedRegion> served() {
        auto made = activeRegion(1);
        make();
        become(QelShmCondition::Active);
        return made;
    }

    LogCapture log;
    FakeHardwareManager manager;
    MainLoopThread const loop;
    shm::QelShmKeptMVal kept{value};
    Conditions voided;
    std::vector<std::size_t> readersAtVoiding;
    std::optional<QelSharedMemoryFollower> sut;
};

TEST_F(QelSharedMemoryFollowerTest, Construction_MakesNoReader) {
    make();
    EXPECT_EQ(readers(), 0U);
}

TEST_F(QelSharedMemoryFollowerTest, ActiveRegion_IsServed) {
    auto const first = served();
    expectNumber(1);
    EXPECT_EQ(readers(), 1U);
    EXPECT_EQ(voided, Conditions{});
}

TEST_F(QelSharedMemoryFollowerTest, WithoutCallback_Follows) {
    auto first = activeRegion(1);
    sut.emplace(60U, ANY_AGE);
    become(QelShmCondition::Active);
    removeName();
    become(QelShmCondition::Gone);
}

TEST_F(QelSharedMemoryFollowerTest, RegionNotLaidOutYet_GivesNothing_ThenIsServedByTheSameReader) {
    auto const first = region(1);
    make();
    become(QelShmCondition::Inactive);
    expectNothing();
    first->activate();
    become(QelShmCondition::Active);
    expectNumber(1);
    EXPECT_EQ(readers(), 1U);
    EXPECT_EQ(voided, Conditions{});
}

TEST_F(QelSharedMemoryFollowerTest, NameRemoved_GivesNothing_AndWaitsWithTheReaderThatItHas) {
    auto const first = served();
    removeName();
    expectNothing();
    EXPECT_EQ(sut->condition(), QelShmCondition::Gone);
    EXPECT_EQ(voided, Conditions{QelShmCondition::Gone});
    EXPECT_EQ(readers(), 1U);
}

TEST_F(QelSharedMemoryFollowerTest, AnotherObject_IsFollowed_AfterTheHandlesWereVoided) {
    auto const first = served();
    expectNumber(1);
    removeName();
    auto const second = activeRegion(2, 9);
    EXPECT_NE(sut->condition(), QelShmCondition::Active) << "the new reader cannot have it mapped yet";
    EXPECT_EQ(voided, Conditions{QelShmCondition::Replaced});
    EXPECT_EQ(readersAtVoiding, std::vector<std::size_t>{1});
    expectSecondServed();
}

TEST_F(QelSharedMemoryFollowerTest, WriterThatTookTheSameObjectOver_IsFollowed) {
    auto const first = served();
    first->raw().set<std::uint8_t>(qel::test::field::version, 0xFF);
    expectNothing();
    EXPECT_EQ(sut->condition(), QelShmCondition::Inactive);
    EXPECT_EQ(voided, Conditions{QelShmCondition::Inactive});
    first->raw().set(qel::test::rawValue(7), 2.0);
    first->activate();
    EXPECT_NE(sut->condition(), QelShmCondition::Active) << "not with the reader of the former writer";
    expectSecondServed();
}

TEST_F(QelSharedMemoryFollowerTest, LockLost_GivesNothing_LockHeldAgain_IsFollowed) {
    auto const first = activeRegion(1);
    std::optional<ObjectLock> writer;
    writer.emplace();
    make();
    become(QelShmCondition::Active);
    expectNumber(1);
    writer.reset();
    expectNothing();
    EXPECT_EQ(voided, Conditions{QelShmCondition::Gone});
    writer.emplace();
    become(QelShmCondition::Active);
    expectNumber(1);
    EXPECT_EQ(readers(), 2U);
}

TEST_F(QelSharedMemoryFollowerTest, LockSeenByAFormerReader_CountsForTheNextOne) {
    auto const first = activeRegion(1);
    std::optional<ObjectLock> writer;
    writer.emplace();
    make();
    become(QelShmCondition::Active);
    writer.reset();
    EXPECT_EQ(sut->condition(), QelShmCondition::Gone);
    writer.emplace();
    manager.setAnswer(0); // so that the next reader maps the region after this writer has ended, too
    EXPECT_NE(sut->condition(), QelShmCondition::Active);
    writer.reset();
    manager.setAnswer(1);
    EXPECT_FALSE(eventually([&] { return sut->condition() == QelShmCondition::Active; }, 1s));
    expectNothing();
}

TEST_F(QelSharedMemoryFollowerTest, ObjectTakenOverBetweenTwoLooks_IsFollowed) {
    auto const first = served();
    std::this_thread::sleep_for(20ms); // the clock of files is a coarse one
    first->raw().set<std::uint8_t>(qel::test::field::version, 0xFF);
    int const writer = ::shm_open("QelSharedMemory", O_RDWR, 0);
    ASSERT_EQ(::ftruncate(writer, 320032), 0); // as each writer does at its start
    ::close(writer);
    first->raw().set(qel::test::rawValue(7), 2.0);
    first->activate();
    EXPECT_NE(sut->condition(), QelShmCondition::Active);
    EXPECT_EQ(voided, Conditions{QelShmCondition::Gone});
    become(QelShmCondition::Active);
    expectNumber(2);
    EXPECT_EQ(readers(), 2U);
}

TEST_F(QelSharedMemoryFollowerTest, StoringIntoTheRegion_IsNoTakingOver) {
    auto const first = served();
    for (int round = 0; round < 50; ++round) {
        first->raw().set(qel::test::rawValue(7), 1.0 * round);
        std::this_thread::sleep_for(2ms);
        ASSERT_EQ(sut->condition(), QelShmCondition::Active);
    }
    EXPECT_EQ(readers(), 1U);
}

TEST_F(QelSharedMemoryFollowerTest, AnotherObjectDuringAVisit_IsFollowedAfterIt) {
    auto const first = served();
    std::unique_ptr<ForgedRegion> second;
    ActingVisitor visitor([&] {
        removeName();
        second = activeRegion(2, 9);
        EXPECT_EQ(sut->condition(), QelShmCondition::Replaced);
        EXPECT_FALSE(sut->mval(value));
        EXPECT_FALSE(sut->mpnt(point));
        EXPECT_EQ(readers(), 1U) << "the visit needs the reader that it runs by";
    });
    EXPECT_TRUE(visit(visitor));
    EXPECT_EQ(visitor.values, 1) << "the visit goes on by the region that it began with";
    EXPECT_EQ(voided, Conditions{QelShmCondition::Replaced});
    expectSecondServed();
}

TEST_F(QelSharedMemoryFollowerTest, VisitInsideAVisit_IsRefused_LookUpsAreNot) {
    auto const first = served();
    PointCounter inner;
    ActingVisitor visitor([&] {
        EXPECT_FALSE(visit(inner));
        EXPECT_TRUE(sut->mval(value));
    });
    EXPECT_TRUE(visit(visitor));
    EXPECT_EQ(inner.roots, 0);
    EXPECT_EQ(visitor.values, 1);
    expectNumber(1);
}

TEST_F(QelSharedMemoryFollowerTest, VisitThatThrew_IsOver) {
    auto const first = served();
    ActingVisitor visitor([] { throw std::runtime_error("of the client"); });
    EXPECT_THROW(visit(visitor), std::runtime_error);
    expectNumber(1);
}

TEST_F(QelSharedMemoryFollowerTest, MemoryThatEndsInsideAnotherCallback_EndsTheVisitOnly) {
    auto const first = served();
    QelSharedMemoryFollower other(60, ANY_AGE);
    ASSERT_TRUE(eventually([&] { return other.condition() == QelShmCondition::Active; }));
    auto result = std::make_shared<shm::IQelVisitorResult>();
    ActingVisitor outer([&] {
        std::optional<qel::test::MemoryRunsOut> scarce;
        {
            ActingVisitor inner([&] { scarce.emplace(0); });
            EXPECT_TRUE(sut->visit(inner, result));
            EXPECT_EQ(inner.values, 1);
        }
        scarce.reset();
        sut->reader()->visit(result); // with nobody to tell, for the visitor is gone
    });
    EXPECT_TRUE(other.visit(outer, result));
    expectNumber(1);
}

TEST_F(QelSharedMemoryFollowerTest, VisitorThatIsTakenAwayDuringItsVisit_IsToldNoMore) {
    auto const first = served();
    ActingVisitor visitor([&] { sut->reader()->visitor(nullptr); });
    EXPECT_TRUE(visit(visitor));
    EXPECT_EQ(visitor.values, 0);
    expectNumber(1);
}

TEST_F(QelSharedMemoryFollowerTest, WithoutDescriptors_ServesOn) {
    auto const first = activeRegion(1);
    ObjectLock const writer;
    make();
    become(QelShmCondition::Active);
    {
        qel::test::NoMoreDescriptors const none;
        EXPECT_EQ(sut->condition(), QelShmCondition::Active);
        EXPECT_TRUE(sut->mval(value));
    }
    EXPECT_EQ(sut->condition(), QelShmCondition::Active);
    EXPECT_EQ(readers(), 1U);
    EXPECT_EQ(voided, Conditions{});
}

TEST_F(QelSharedMemoryFollowerTest, SilentRegion_GivesNothing_ThenIsServedByTheSameReader) {
    auto const first = activeRegion(1);
    make(60, 1h);
    become(QelShmCondition::Silent);
    expectNothing();
    auto const at = std::chrono::duration_cast<std::chrono::milliseconds>(
                        std::chrono::system_clock::now().time_since_epoch())
                        .count();
    first->raw().set(qel::test::rawValue(7) + qel::test::field::valueAt, static_cast<std::uint64_t>(at));
    EXPECT_EQ(sut->condition(), QelShmCondition::Active);
    expectNumber(1);
    first->raw().set<std::uint64_t>(qel::test::rawValue(7) + qel::test::field::valueAt, 1000);
    expectNothing();
    EXPECT_EQ(voided, Conditions{QelShmCondition::Silent});
    EXPECT_EQ(readers(), 1U);
}

TEST_F(QelSharedMemoryFollowerTest, WaitBudgetRunsOut_AnotherReaderWaits) {
    auto const first = activeRegion(1);
    manager.setAnswer(0);
    make(1);
    ASSERT_TRUE(eventually([&] { return sut->condition() == QelShmCondition::Active || readers() >= 3; }));
    EXPECT_GE(readers(), 3U);
    expectNothing();
    manager.setAnswer(1);
    become(QelShmCondition::Active);
    expectNumber(1);
}

TEST_F(QelSharedMemoryFollowerTest, ManagerThatAnswersWithoutAnObject_IsAskedAgainOnceThereIsOne) {
    make();
    ASSERT_TRUE(eventually([&] {
        EXPECT_EQ(sut->condition(), QelShmCondition::Gone);
        return log.contains(
            {"qel.shm.access.reader", log4cpp::Priority::DEBUG, "onInitialized: modifications = 0x1"});
    }));
    std::this_thread::sleep_for(300ms);
    EXPECT_EQ(sut->condition(), QelShmCondition::Gone);
    EXPECT_EQ(readers(), 1U) << "another one would find nothing either";
    auto const first = activeRegion(1);
    become(QelShmCondition::Active);
    expectNumber(1);
    EXPECT_EQ(readers(), 2U);
}

TEST_F(QelSharedMemoryFollowerTest, BudgetOfNothing_MapsNothing_AndTakesItsTime) {
    auto const first = activeRegion(1);
    make(0);
    auto const start = std::chrono::steady_clock::now();
    for (int look = 0; look < 100; ++look) {
        EXPECT_EQ(sut->condition(), QelShmCondition::Inactive);
    }
    auto const most = static_cast<std::size_t>((std::chrono::steady_clock::now() - start) / 250ms) + 1;
    EXPECT_LE(readers(), most);
}

TEST_F(QelSharedMemoryFollowerTest, KeptValue_IsNotMistakenForThatOfAnotherReader) {
    // In the second object the same slots hold a point and a key of the same ids, but the value belongs to another point.
    auto const first = served();
    expectNumber(1);
    removeName();
    auto const second = region(2);
    second->point(6, point + 0x10000);
    second->values(6, 7, {key::voltage});
    second->values(5, 8, {key::voltage});
    second->devices({5, 6});
    second->raw().set(qel::test::rawValue(8), 3.0);
    second->activate();
    become(QelShmCondition::Active);
    auto const found = sut->mval(kept);
    ASSERT_TRUE(found);
    EXPECT_EQ(found->value, 3.0);
}

TEST_F(QelSharedMemoryFollowerTest, SeveralInOneProcess_EachFindTheNewStructure) {
    QelSharedMemoryFollower other(60, ANY_AGE);
    auto const first = activeRegion(1);
    make();
    for (auto* follower : {&*sut, &other}) {
        EXPECT_TRUE(eventually([&] { return follower->condition() == QelShmCondition::Active; }));
        EXPECT_TRUE(follower->mpnt(point));
    }
    removeName();
    auto const second = activeRegion(2, 9);
    for (auto* follower : {&*sut, &other}) {
        EXPECT_TRUE(eventually([&] { return follower->condition() == QelShmCondition::Active; }));
        auto const there = follower->mpnt(point);
        ASSERT_TRUE(there);
        EXPECT_EQ((*there)->pos, 9U);
    }
}

TEST_F(QelSharedMemoryFollowerTest, PointWhoseSlotShowsAnother_IsNotGiven) {
    auto const first = served();
    expectNumber(1);
    first->point(5, point + 0x10000); // and no signal
    EXPECT_FALSE(sut->mpnt(point));
}

TEST_F(QelSharedMemoryFollowerTest, ConnectionClosed_AnotherReaderHearsAgain) {
    auto const first = served();
    expectNumber(1);
    {
        auto const connection = qel::test::sharedConnection();
        g_dbus_connection_set_exit_on_close(connection.get(), FALSE);
        g_dbus_connection_close_sync(connection.get(), nullptr, nullptr);
    }
    // A try that gets the closed connection, which is the shared one until its last user is gone, fails.
    EXPECT_TRUE(eventually([&] { return sut->condition() == QelShmCondition::Active && readers() > 1; }));
    EXPECT_EQ(voided, Conditions{QelShmCondition::Active});
    expectNumber(1);
    auto const before = sut->reader()->modifications();
    manager.emitStructureChanged();
    EXPECT_TRUE(eventually([&] { return sut->reader()->modifications() > before; }));
}

/// As examples/reader.cpp uses it.
TEST_F(QelSharedMemoryFollowerTest, UseOfTheExample_Works) {
    auto const first = activeRegion(21.5);
    std::ostringstream out;
    shm::QelSharedMemoryFollower unit(60, ANY_AGE, [&](shm::QelShmCondition now) {
        out << "handles are void: " << now << '\n'; // "gone", "silent", ...
    });
    shm::QelShmKeptMVal outlet(value); // kept across restarts of the writer
    EXPECT_TRUE(eventually([&] { return static_cast<bool>(unit.mval(outlet)); }));
    if (auto const found = unit.mval(outlet)) { // null while nothing vouches for it
        out << found->value << " W\n";
    }
    removeName();
    EXPECT_FALSE(unit.mval(outlet));
    EXPECT_EQ(out.str(), "21.5 W\nhandles are void: gone\n");
}

TEST(QelSharedMemoryFollowerWithoutBusTest, NothingIsThrown_AndTriesAreASecondApart) {
    auto const first = activeRegion(1);
    LogCapture const log;
    QelSharedMemoryFollower sut(60, ANY_AGE);
    std::size_t tries = 0;
    {
        qel::test::UnreachableBus const down;
        auto const start = std::chrono::steady_clock::now();
        while (std::chrono::steady_clock::now() - start < 2500ms) {
            EXPECT_EQ(sut.reader(), nullptr);
            EXPECT_EQ(sut.condition(), QelShmCondition::Gone);
            EXPECT_FALSE(sut.mval(value));
            std::this_thread::sleep_for(5ms);
        }
        tries = log.count({"qel.shm.access.reader", log4cpp::Priority::INFO, "QelSharedMemoryReader: start"});
    }
    EXPECT_GE(tries, 2U);
    EXPECT_LE(tries, 3U);
    FakeHardwareManager const manager;
    EXPECT_TRUE(eventually([&] { return sut.condition() == QelShmCondition::Active; }));
    EXPECT_TRUE(sut.mval(value));
}

} // namespace
