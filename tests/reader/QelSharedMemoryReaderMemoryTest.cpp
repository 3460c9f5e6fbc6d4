// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

// What the reader's operations leave behind when memory ends within them.

#include "reader/QelSharedMemoryReader.h"

#include "format/ValueKeys.h"
#include "reader/BaseQelShmVisitor.h"
#include "tests/reader/CountingVisitor.h"
#include "tests/reader/MappedReader.h"
#include "tests/support/FailureSeams.h"
#include "tests/support/ForgedRegion.h"

#include <gtest/gtest.h>

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <new>
#include <thread>
#include <vector>

namespace {

namespace key = shm::key;
using qel::test::CountingVisitor;
using qel::test::ForgedRegion;
using qel::test::MappedReader;
using qel::test::MemoryRunsOut;

using Result = std::shared_ptr<shm::IQelVisitorResult>;

constexpr int points = 40;
constexpr int valuesPerPoint = 3;

constexpr long long svid(int number) {
    return 0x0100000000000000 + number * 0x10000LL;
}

/// Point 0 with all others below it; the values of the last one lie scattered.
class QelSharedMemoryReaderMemoryTest : public testing::Test {
protected:
    QelSharedMemoryReaderMemoryTest() {
        std::vector<std::uint32_t> children;
        for (std::uint32_t pos = 0; pos < points; ++pos) {
            region.point(pos, svid(static_cast<int>(pos)));
            region.values(pos, pos * valuesPerPoint, {key::voltage, key::current, key::peakCurrent});
            if (pos != 0) {
                children.push_back(pos);
            }
        }
        region.devices({0});
        region.children(0, children);
        auto const scattered = (points - 1U) * valuesPerPoint;
        region.raw().set<std::uint32_t>(qel::test::rawValue(scattered) + qel::test::field::valueNext, 8000);
        region.raw().set<std::uint16_t>(qel::test::rawValue(8000) + qel::test::field::valueKey, 4);
        sut.syncPositions(true);
        sut.visitor(std::make_unique<CountingVisitor>(calls));
    }

    /// Does something with 0, 1, 2 ... allocations granted until it succeeds.
    /// @return the number of times that it failed
    std::size_t failEach(std::function<void()> const& action, std::function<void()> const& afterFailure) {
        for (std::size_t allowed = 0;; ++allowed) {
            bool isDone = false;
            // A thread of its own, which has no memory for visits yet.
            std::thread([&] {
                MemoryRunsOut const out(allowed);
                try {
                    action();
                    isDone = true;
                } catch (std::bad_alloc const&) {
                }
            }).join();
            if (isDone) {
                return allowed;
            }
            afterFailure();
        }
    }

    void expectAllInPlace() {
        calls = 0;
        sut.visit();
        EXPECT_EQ(points + points * valuesPerPoint - 1, calls) << "the client's visitor is told everything";
        for (int number = 0; number < points; ++number) {
            auto const point = sut.mpnt(svid(number), false);
            ASSERT_NE(nullptr, point) << number;
            EXPECT_EQ(svid(number), (*point)->guid);
            EXPECT_TRUE(sut.mval(svid(number) | key::current, false)) << number;
        }
        EXPECT_EQ(nullptr, sut.mpnt(svid(points), false));
        EXPECT_EQ(0U, sut.modifications());
    }

    ForgedRegion region;
    MappedReader sut;
    std::atomic<int> calls{0};
};

TEST_F(QelSharedMemoryReaderMemoryTest, SyncPositions_LeavesTheCounterRaisedAndTheVisitorInPlace) {
    auto const failures = failEach([&] { sut.syncPositions(true); },
                                   [&] {
                                       EXPECT_EQ(1U, sut.modifications());
                                       expectAllInPlace();
                                   });
    EXPECT_GE(failures, std::size_t{points}) << "a node for each point";
    expectAllInPlace();
}

TEST_F(QelSharedMemoryReaderMemoryTest, Mpnt_Forced_LeavesTheNextLookUpRight) {
    auto const failures =
        failEach([&] { EXPECT_NE(nullptr, sut.mpnt(svid(7), true)); }, [&] { expectAllInPlace(); });
    EXPECT_GT(failures, std::size_t{points});
}

TEST_F(QelSharedMemoryReaderMemoryTest, Mpnt_ThrowsAndChangesNothing) {
    EXPECT_EQ(1U, failEach([&] { EXPECT_NE(nullptr, sut.mpnt(svid(7), false)); },
                           [&] {
                               EXPECT_EQ(0U, sut.modifications());
                               expectAllInPlace();
                           }));
}

TEST_F(QelSharedMemoryReaderMemoryTest, Mval_NeedsNone) {
    shm::QelShmKeptMVal kept(svid(7) | key::current);
    EXPECT_EQ(0U, failEach(
                      [&] {
                          EXPECT_TRUE(sut.mval(svid(7) | key::current, false));
                          EXPECT_TRUE(sut.mval(kept));
                          EXPECT_TRUE(sut.mval(kept));
                      },
                      [] {}));
}

TEST_F(QelSharedMemoryReaderMemoryTest, Mval_Forced_LeavesTheNextLookUpRight) {
    auto const failures =
        failEach([&] { EXPECT_TRUE(sut.mval(svid(7) | key::current, true)); }, [&] { expectAllInPlace(); });
    EXPECT_GE(failures, std::size_t{points});
}

TEST_F(QelSharedMemoryReaderMemoryTest, KeptValue_WhoseRebuildFails_IsFoundAfterwards) {
    shm::QelShmKeptMVal kept(svid(7) | key::current);
    ASSERT_TRUE(sut.mval(kept));
    auto const* const slot = &*sut.mval(kept);
    {
        MemoryRunsOut const out(5);
        EXPECT_THROW(sut.syncPositions(true), std::bad_alloc);
        EXPECT_THROW(sut.mval(kept), std::bad_alloc) << "the index has to be built";
    }
    EXPECT_EQ(slot, &*sut.mval(kept));
    expectAllInPlace();
}

TEST_F(QelSharedMemoryReaderMemoryTest, Visit_ThrowsAndChangesNothing) {
    EXPECT_EQ(2U, failEach([&] { sut.visit(); }, [&] { expectAllInPlace(); }))
        << "the result, the memory of the lists";
    auto result = std::make_shared<shm::IQelVisitorResult>();
    EXPECT_EQ(1U, failEach([&] { sut.visit(result); }, [&] { expectAllInPlace(); }));
    auto const last = sut.mps(points - 1, SensorType::Any).front();
    EXPECT_EQ(1U, failEach([&] { sut.values(last, 1, result); }, [&] { expectAllInPlace(); }))
        << "scattered values";
    auto const first = sut.mps(0, SensorType::Any).front();
    EXPECT_EQ(0U, failEach([&] { sut.values(first, 1, result); }, [] {})) << "values side by side";
}

TEST_F(QelSharedMemoryReaderMemoryTest, Lists_ThrowAndChangeNothing) {
    EXPECT_EQ(std::size_t{points - 1},
              failEach([&] { sut.mps(1, SensorType::Any); }, [&] { expectAllInPlace(); }));
    EXPECT_EQ(std::size_t{valuesPerPoint}, failEach([&] { sut.mvs(0); }, [&] { expectAllInPlace(); }));
}

TEST_F(QelSharedMemoryReaderMemoryTest, VisitorTakenAwayInACallback_ThrowsAndStays) {
    class Leaving : public CountingVisitor {
    public:
        Leaving(MappedReader& reader, std::atomic<int>& calls) : CountingVisitor(calls), reader_(reader) {}
        void onMVal(shm::QelShmMVal const& value, long long id, unsigned int depth, Result& result) override {
            CountingVisitor::onMVal(value, id, depth, result);
            MemoryRunsOut const out(0);
            EXPECT_THROW(reader_.visitor(nullptr), std::bad_alloc);
        }

    private:
        MappedReader& reader_;
    };
    sut.visitor(std::make_unique<Leaving>(sut, calls));
    Result result;
    sut.values(sut.mps(0, SensorType::Any).front(), 1, result);
    EXPECT_EQ(valuesPerPoint, calls);
}

} // namespace
