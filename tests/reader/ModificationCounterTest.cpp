// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "reader/ModificationCounter.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <limits>
#include <memory>
#include <optional>
#include <string>
#include <thread>
#include <vector>

namespace {

using shm::ModificationCounter;

TEST(ModificationCounterTest, New_IsZero) {
    EXPECT_EQ(0U, ModificationCounter().current());
}

TEST(ModificationCounterTest, Settle_NothingChanged_IsZero) {
    ModificationCounter sut;
    sut.raise();
    sut.raise();
    sut.settle(sut.snapshot());
    EXPECT_EQ(0U, sut.current());
}

TEST(ModificationCounterTest, Settle_RaisedMeanwhile_LowersByOneOnly) {
    ModificationCounter sut;
    sut.raise();
    auto const before = sut.snapshot();
    sut.raise();
    sut.raise();
    sut.settle(before);
    EXPECT_EQ(2U, sut.current());
}

TEST(ModificationCounterTest, Settle_RaisedFromZeroMeanwhile_StaysAtOne) {
    ModificationCounter sut;
    auto const before = sut.snapshot();
    sut.raise();
    sut.settle(before);
    EXPECT_EQ(1U, sut.current());
}

TEST(ModificationCounterTest, Settle_LoweredByAnotherMeanwhile_StaysAtZero) {
    ModificationCounter sut;
    sut.raise();
    auto const before = sut.snapshot();
    sut.settle(sut.snapshot());
    sut.settle(before);
    EXPECT_EQ(0U, sut.current());
}

TEST(ModificationCounterTest, Settle_SameNumberAfterAnotherLoweredIt_IsAChange) {
    ModificationCounter sut;
    sut.raise();
    auto const before = sut.snapshot();
    sut.settle(sut.snapshot());
    sut.raise();
    sut.settle(before);
    EXPECT_EQ(1U, sut.current()) << "the second change came after the snapshot";
}

TEST(ModificationCounterTest, KeepPending_RaisesAZeroOnly) {
    ModificationCounter sut;
    sut.keepPending();
    EXPECT_EQ(1U, sut.current());
    sut.raise();
    sut.keepPending();
    EXPECT_EQ(2U, sut.current());
}

/// What a counter is to do, told without thought for threads.
struct PlainCounter {
    unsigned int pending = 0;
    unsigned int changes = 0; // all that came

    void raise() {
        ++pending;
        ++changes;
    }
};

/// A rebuild as the reader does it: a snapshot, then an end.
struct PlainRebuild {
    unsigned int pending;
    unsigned int changes;
    unsigned int ended; // number of rebuilds that had ended
};

/// Walks through all interleavings of raises and rebuilds, each of which begins and then ends, settled or unfinished.
class Interleavings {
public:
    Interleavings(unsigned int raises, std::size_t rebuilders, unsigned int rounds)
        : raises_(raises),
          rounds_(rebuilders, rounds) {}

    /// Number of sequences; each one is replayed, and each state compared.
    unsigned long walk() {
        extend();
        return sequences_;
    }

private:
    enum Step { Raise, Begin, Settle, GiveUp };

    void extend() {
        bool isEnd = true;
        if (raises_ != 0) {
            isEnd = false;
            --raises_;
            step({Raise, 0});
            ++raises_;
        }
        for (std::size_t who = 0; who < rounds_.size(); ++who) {
            if (open_[who]) {
                isEnd = false;
                open_[who] = false;
                step({Settle, who});
                step({GiveUp, who});
                open_[who] = true;
            } else if (rounds_[who] != 0) {
                isEnd = false;
                --rounds_[who];
                open_[who] = true;
                step({Begin, who});
                open_[who] = false;
                ++rounds_[who];
            }
        }
        if (isEnd) {
            ++sequences_;
            replay();
        }
    }

    struct Move {
        Step step;
        std::size_t who;
    };

    void step(Move const& move) {
        moves_.push_back(move);
        extend();
        moves_.pop_back();
    }

    void replay() const {
        ModificationCounter sut;
        std::array<std::optional<ModificationCounter::Snapshot>, 3> snapshots;
        PlainCounter plain;
        std::array<PlainRebuild, 3> rebuilds{};
        unsigned int followed = 0; // the changes that came before the last index that is whole was begun
        unsigned int settled = 0;
        std::string told;
        for (auto const& [step, who] : moves_) {
            auto& rebuild = rebuilds.at(who);
            told += " RBSG"[1 + step] + std::to_string(who);
            switch (step) {
            case Raise:
                sut.raise();
                plain.raise();
                break;
            case Begin:
                snapshots.at(who) = sut.snapshot();
                rebuild = {plain.pending, plain.changes, settled};
                break;
            case Settle:
                sut.settle(*snapshots.at(who));
                followed = std::max(followed, rebuild.changes);
                if (plain.pending == rebuild.pending && plain.changes == rebuild.changes &&
                    settled == rebuild.ended) {
                    plain.pending = 0;
                } else if (plain.pending > 1) {
                    --plain.pending;
                }
                ++settled;
                break;
            case GiveUp:
                sut.keepPending();
                plain.pending = std::max(plain.pending, 1U);
                break;
            }
            ASSERT_EQ(plain.pending, sut.current()) << told;
            ASSERT_TRUE(sut.current() != 0 || followed == plain.changes) << "a change is lost:" << told;
        }
    }

    unsigned int raises_;
    std::vector<unsigned int> rounds_;
    std::array<bool, 3> open_{};
    std::vector<Move> moves_;
    unsigned long sequences_ = 0;
};

TEST(ModificationCounterTest, AllInterleavings_OfTwoRebuildersAndThreeChanges_AgreeWithThePlainModel) {
    auto const sequences = Interleavings(3, 2, 2).walk();
    EXPECT_GT(sequences, 10000UL);
    RecordProperty("sequences", std::to_string(sequences));
}

TEST(ModificationCounterTest, AllInterleavings_OfThreeRebuildersAndThreeChanges_AgreeWithThePlainModel) {
    auto const sequences = Interleavings(3, 3, 1).walk();
    EXPECT_GT(sequences, 10000UL);
    RecordProperty("sequences", std::to_string(sequences));
}

TEST(ModificationCounterTest, ManyThreads_NeitherFallBelowZeroNorLoseTheLastChange) {
    ModificationCounter sut;
    constexpr unsigned int changes = 20000;
    std::atomic<unsigned int> structure{0};
    std::atomic<unsigned int> followed{0};
    std::atomic<bool> isDone{false};
    std::atomic<bool> isTooHigh{false};
    auto const rebuild = [&] {
        auto const before = sut.snapshot();
        unsigned int const seen = structure;
        sut.settle(before);
        auto last = followed.load();
        while (last < seen && !followed.compare_exchange_weak(last, seen)) {
        }
        isTooHigh = isTooHigh || sut.current() > changes;
    };
    constexpr int threads = 2;
    std::vector<std::thread> rebuilders;
    rebuilders.reserve(threads);
    for (int i = 0; i < threads; ++i) {
        rebuilders.emplace_back([&] {
            while (!isDone) {
                rebuild();
            }
        });
    }
    for (unsigned int i = 0; i < changes; ++i) {
        ++structure;
        sut.raise();
    }
    isDone = true;
    for (auto& rebuilder : rebuilders) {
        rebuilder.join();
    }
    while (sut.current() != 0) {
        rebuild();
    }
    EXPECT_FALSE(isTooHigh);
    EXPECT_EQ(changes, followed) << "0 while an index lacks a change";
}

} // namespace
