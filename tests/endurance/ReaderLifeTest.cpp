// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

// Readers that come and go thousands of times, and two readers of one process used by many threads at once.

#include "format/ValueKeys.h"
#include "reader/BaseQelShmVisitor.h"
#include "reader/QelSharedMemoryReader.h"
#include "tests/endurance/BusWatch.h"
#include "tests/support/ChangingUnit.h"
#include "tests/support/Eventually.h"
#include "tests/support/FakeHardwareManager.h"
#include "tests/support/MainLoopThread.h"
#include "tests/support/ProcessResources.h"
#include "tests/support/RandomNumbers.h"
#include "tests/support/Rounds.h"
#include "writer/QelSharedMemoryWriter.h"

#include <gtest/gtest.h>

#include <array>
#include <atomic>
#include <chrono>
#include <functional>
#include <memory>
#include <random>
#include <shared_mutex>
#include <thread>
#include <vector>

namespace qel::test {

namespace {

constexpr long long voltage = changingUnit::inlet | shm::key::voltage;

/// What must be the same before and after.
struct Holdings {
    ProcessResources process;
    std::size_t sources = 0;
    std::size_t matchRules = 0;

    bool operator==(Holdings const& other) const {
        return process == other.process && sources == other.sources && matchRules == other.matchRules;
    }
};

std::ostream& operator<<(std::ostream& out, Holdings const& holdings) {
    return out << holdings.process << ", " << holdings.sources << " sources, " << holdings.matchRules
               << " match rules";
}

/// Counts what it meets.
class Counter : public shm::BaseQelShmVisitor {
public:
    explicit Counter(std::atomic<unsigned long>& values) : values_(values) {}
    void onMVal(shm::QelShmMVal const& /*value*/, long long /*svid*/, unsigned int /*depth*/,
                std::shared_ptr<shm::IQelVisitorResult>& /*result*/) override {
        ++values_;
    }

private:
    std::atomic<unsigned long>& values_;
};

/// A hardware manager and a writer with an active region, in this process.
class ReaderLife : public testing::Test {
protected:
    ReaderLife() {
        writer_.modifyStructure(changingUnit::whole());
        writer_.setActive();
    }

    Holdings holdings() const { return {ownResources(), attachedSources(), bus_.matchRules()}; }

    // A wait thread ends a little after it has mapped the region.
    Holdings settledHoldings() const {
        auto now = holdings();
        EXPECT_TRUE(eventually([&] {
            auto const former = now;
            std::this_thread::sleep_for(std::chrono::milliseconds(50));
            now = holdings();
            return now == former;
        }));
        return now;
    }

    // GLib closes a connection in a thread of its own, after its last user has gone.
    void expectEndsWith(Holdings const& before) const {
        EXPECT_TRUE(eventually([&] { return holdings() == before; }))
            << "before: " << before << "\nafter: " << holdings();
    }

    // Equal subscriptions of a connection are one rule to the bus; how many there are shows in what arrives.
    unsigned int deliveriesOfOneSignal(shm::QelSharedMemoryReader& reader) {
        reader.syncPositions(true);
        EXPECT_EQ(0U, reader.modifications());
        manager_.emitStructureChanged();
        EXPECT_TRUE(eventually([&] { return reader.modifications() > 0; }));
        std::this_thread::sleep_for(std::chrono::milliseconds(50));
        return reader.modifications();
    }

    static std::unique_ptr<shm::QelSharedMemoryReader> newReader() {
        return std::make_unique<shm::QelSharedMemoryReader>(60, false);
    }
    static bool becomesMapped(shm::QelSharedMemoryReader const& reader) {
        return eventually([&] { return static_cast<bool>(reader.root()); });
    }

    FakeHardwareManager manager_;
    MainLoopThread signals_;
    BusWatch bus_;
    shm::QelSharedMemoryWriter writer_;
};

TEST_F(ReaderLife, OneReader_HoldsAMappingAndAConnectionThatListens) {
    auto const before = settledHoldings();
    auto const reader = newReader();
    ASSERT_TRUE(becomesMapped(*reader));
    auto const after = settledHoldings();
    EXPECT_EQ(before.process.regions + 1, after.process.regions);
    EXPECT_LT(before.process.descriptors, after.process.descriptors);
    EXPECT_EQ(before.process.threads, after.process.threads);
    EXPECT_LT(before.matchRules, after.matchRules);
    EXPECT_EQ(1U, deliveriesOfOneSignal(*reader));
}

TEST_F(ReaderLife, ManyReadersOneAfterTheOther_LeaveNothing) {
    int const lives = rounds(50, 5000);
    auto random = randomNumbers(1);
    auto const before = settledHoldings();
    for (int number = 0; number < lives; ++number) {
        auto const reader = newReader();
        if (number % 3 == 0) { // gone before or while it maps the region
            std::this_thread::sleep_for(std::chrono::microseconds(random() % 2000));
            continue;
        }
        ASSERT_TRUE(becomesMapped(*reader)) << number;
        ASSERT_TRUE(reader->mpnt(changingUnit::unit, true)) << number;
        ASSERT_TRUE(reader->mval(voltage, false)) << number;
        if (number % 3 == 1) { // gone with a signal under way
            manager_.emitStructureChanged();
        }
    }
    expectEndsWith(before);
}

TEST_F(ReaderLife, OverlappingReaders_LeaveNothingEither) {
    int const lives = rounds(25, 2500);
    auto const none = settledHoldings();
    auto reader = newReader();
    ASSERT_TRUE(becomesMapped(*reader));
    auto const one = settledHoldings();
    for (int number = 0; number < lives; ++number) {
        auto next = newReader();
        ASSERT_TRUE(becomesMapped(*next)) << number;
        ASSERT_TRUE(next->mpnt(changingUnit::unit, true)) << number;
        reader = std::move(next); // the elder one goes first
    }
    expectEndsWith(one);
    EXPECT_EQ(1U, deliveriesOfOneSignal(*reader));
    reader.reset();
    expectEndsWith(none);
}

/// One reader and the threads of its clients. Look-ups go on side by side; a visit is kept apart from them, since
/// they lend the reader's visitor to the building of the index.
class Clients {
public:
    explicit Clients(std::unique_ptr<shm::QelSharedMemoryReader> reader) : reader_(std::move(reader)) {
        reader_->visitor(std::make_unique<Counter>(visited_));
    }

    void start() {
        loop([this] { lookUp([this] { return reader_->mpnt(changingUnit::unit, false) != nullptr; }); });
        loop([this] { lookUp([this] { return static_cast<bool>(reader_->mval(voltage, false)); }); });
        loop([this, kept = shm::QelShmKeptMVal(voltage)]() mutable {
            lookUp([&] { return static_cast<bool>(reader_->mval(kept)); });
        });
        loop([this] {
            lookUp([this] {
                reader_->syncPositions(true);
                return true;
            });
        });
        loop([this] {
            std::unique_lock<std::shared_mutex> const alone(structure_);
            reader_->visit();
            std::shared_ptr<shm::IQelVisitorResult> result;
            reader_->values(reader_->mps(0, SensorType::Any).front(), 1, result);
            ++done_;
        });
    }

    void stop() {
        ended_ = true;
        for (auto& thread : threads_) {
            thread.join();
        }
    }

    unsigned long done() const { return done_; }
    unsigned long misses() const { return misses_; }
    unsigned long visited() const { return visited_; }
    shm::QelSharedMemoryReader& reader() { return *reader_; }

private:
    void loop(std::function<void()> work) {
        threads_.emplace_back([this, work = std::move(work)] {
            while (!ended_) {
                work();
            }
        });
    }

    template <typename Question>
    void lookUp(Question const& finds) {
        std::shared_lock<std::shared_mutex> const besideOthers(structure_);
        misses_ += finds() ? 0 : 1;
        ++done_;
    }

    std::unique_ptr<shm::QelSharedMemoryReader> reader_;
    std::shared_mutex structure_;
    std::atomic<bool> ended_{false};
    std::atomic<unsigned long> done_{0};
    std::atomic<unsigned long> misses_{0};
    std::atomic<unsigned long> visited_{0};
    std::vector<std::thread> threads_;
};

TEST_F(ReaderLife, TwoReadersManyThreads_FindWhatAlwaysWasThere) {
    int const changes = rounds(60, 20000);
    auto random = randomNumbers(2);
    auto const before = settledHoldings();
    {
        std::array<Clients, 2> clients{Clients(newReader()), Clients(newReader())};
        for (auto& client : clients) {
            ASSERT_TRUE(becomesMapped(client.reader()));
            ASSERT_TRUE(client.reader().mpnt(changingUnit::unit, true));
        }
        for (auto& client : clients) {
            client.start();
        }
        for (int change = 0; change < changes; ++change) {
            writer_.modifyStructure(changingUnit::part(random));
            writer_.propagateStates();
            manager_.emitStructureChanged();
        }
        for (auto& client : clients) {
            client.stop();
            EXPECT_EQ(0U, client.misses());
            EXPECT_GT(client.done(), 0U);
            EXPECT_GT(client.visited(), 0U);
            std::cout << client.done() << " look-ups and visits\n";
        }
    }
    expectEndsWith(before);
}

} // namespace

} // namespace qel::test
