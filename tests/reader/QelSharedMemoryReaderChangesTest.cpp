// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

// What a reader shows while a writer changes the structure and has not announced it yet, or changes it within a visit.

#include "reader/QelSharedMemoryReader.h"

#include "format/ValueKeys.h"
#include "reader/BaseQelShmVisitor.h"
#include "tests/reader/MappedReader.h"
#include "tests/writer/WriterFixture.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <map>
#include <memory>
#include <set>
#include <tuple>
#include <unordered_set>
#include <vector>

namespace qel::test {

namespace {

namespace key = shm::key;
using testing::ElementsAre;
using testing::IsSupersetOf;

using Result = std::shared_ptr<shm::IQelVisitorResult>;

constexpr long long unit = pointId(1, 0);
constexpr long long inlet = pointId(1, 0, 1);
constexpr long long phase = pointId(1, 0, 1, 1);
constexpr long long circuit = pointId(1, 0, 1, 1, 1);

constexpr long long socket(int number) {
    return pointId(1, 0, 1, 1, 1, number);
}

/// The number that a value holds for good: it tells whose value is shown.
double numberOf(long long svid) {
    return static_cast<double>(svid >> 16 & 0xFF) * 1000 + static_cast<double>(svid & 0xFFFF);
}

/// Sockets by their number, each with the keys of its values.
using Sockets = std::map<int, std::set<unsigned short>>;

/// Calls what a test wants to happen at each point and value.
class ActingVisitor : public shm::BaseQelShmVisitor {
public:
    void onRoot(shm::QelShmRoot const& /*root*/, Result& /*result*/) override {
        if (atRoot) {
            atRoot();
        }
    }
    void onMPnt(shm::QelShmMPnt const& point, unsigned int /*depth*/, Result& /*result*/) override {
        if (atPoint) {
            atPoint(point->guid);
        }
    }
    void onMVal(shm::QelShmMVal const& value, long long svid, unsigned int /*depth*/,
                Result& /*result*/) override {
        if (atValue) {
            atValue(svid | value->key);
        }
    }

    std::function<void()> atRoot;
    std::function<void(long long)> atPoint;
    std::function<void(long long)> atValue;
};

class QelSharedMemoryReaderChangesTest : public testing::Test {
protected:
    /// Lays out one circuit with these sockets, and gives each value its number.
    static void layOut(ExposedWriter& writer, Sockets const& sockets) {
        Definitions definitions;
        for (auto const point : {unit, inlet, phase, circuit}) {
            definitions[point] = {};
        }
        for (auto const& [number, keys] : sockets) {
            definitions[socket(number)] = withKeys(keys);
        }
        writer.addStructure(definitions);
        writer.setActive();
        for (auto const& [number, keys] : sockets) {
            number_(writer, number, keys);
        }
    }

    static void number_(ExposedWriter& writer, int number, std::set<unsigned short> const& keys) {
        for (auto const key : keys) {
            auto const svid = socket(number) | key;
            EXPECT_TRUE(writer.updateMV(svid, measured(numberOf(svid))));
        }
    }

    /// Removes all sockets but these.
    void keep(std::set<int> const& numbers) {
        std::unordered_set<long long> all{unit, inlet, phase, circuit};
        for (auto const number : numbers) {
            all.insert(socket(number));
        }
        EXPECT_TRUE(writer.modifyStructure(all));
    }

    /// Takes every value slot that was never used, so that those that are freed serve next.
    void useUpValues() {
        for (int point = 0; point < 9; ++point) {
            Keys keys;
            for (unsigned short key = 0; key < 1000; ++key) {
                keys[key] = 0;
            }
            writer.addMP(pointId(2 + point, 0), keys, rawNone);
        }
    }

    double shown(long long svid) {
        auto const value = reader.mval(svid, false);
        return value ? value->value : -1;
    }
    double shown(shm::QelShmKeptMVal& kept) {
        auto const value = reader.mval(kept);
        return value ? value->value : -1;
    }

    ActingVisitor& act() {
        auto owned = std::make_unique<ActingVisitor>();
        auto& installed = *owned;
        reader.visitor(std::move(owned));
        return installed;
    }

    ExposedWriter writer;
    MappedReader reader;
};

TEST_F(QelSharedMemoryReaderChangesTest,
       Mval_AfterARestartWithOneSensorFewer_BeforeTheSignal_IsNoOtherPointsValue) {
    Sockets sockets;
    for (int number = 1; number <= 6; ++number) {
        sockets[number] = {1, 4};
    }
    layOut(writer, sockets);
    std::vector<shm::QelShmKeptMVal> kept;
    for (auto const& [number, keys] : sockets) {
        for (auto const key : keys) {
            kept.emplace_back(socket(number) | key);
            ASSERT_EQ(numberOf(kept.back().svid()), shown(kept.back()));
        }
    }
    sockets.erase(3);
    ExposedWriter next; // as after a crash: the object is taken over and wiped
    layOut(next, sockets);
    for (auto& one : kept) {
        for (auto const number : {shown(one.svid()), shown(one)}) {
            EXPECT_TRUE(number == -1 || number == numberOf(one.svid()))
                << hex(one.svid()) << " shows " << number;
        }
    }
    reader.syncPositions(true);
    EXPECT_EQ(numberOf(socket(6) | key::current), shown(socket(6) | key::current));
    EXPECT_EQ(-1, shown(socket(3) | key::current));
}

TEST_F(QelSharedMemoryReaderChangesTest,
       Mval_AfterARestartWithOneValueFewer_BeforeTheSignal_IsNoOtherPointsValue) {
    layOut(writer, {{1, {1, 4, 19}}, {2, {19, 20}}});
    shm::QelShmKeptMVal kept(socket(1) | key::activePower);
    ASSERT_EQ(numberOf(kept.svid()), shown(kept));
    ExposedWriter next;
    layOut(next, {{1, {1, 4}}, {2, {19, 20}}});
    EXPECT_EQ(-1, shown(kept)) << "its slot is the other socket's now, under the same key";
    EXPECT_EQ(-1, shown(kept.svid()));
}

TEST_F(QelSharedMemoryReaderChangesTest,
       Mval_RemovedPointWhoseValueSlotsServeAnother_BeforeTheSignal_IsNull) {
    layOut(writer, {{1, {1, 4}}, {6, {1, 4}}});
    shm::QelShmKeptMVal kept(socket(6) | key::voltage);
    ASSERT_EQ(numberOf(kept.svid()), shown(kept));
    useUpValues();
    keep({1});
    layOut(writer, {{7, {1, 4}}});
    EXPECT_EQ(-1, shown(kept.svid()))
        << "the slot still bears the id, and its chain holds the other's values";
    EXPECT_EQ(-1, shown(kept));
    reader.syncPositions(true);
    EXPECT_EQ(numberOf(socket(7) | key::voltage), shown(socket(7) | key::voltage));
}

TEST_F(QelSharedMemoryReaderChangesTest, Mval_RemovedPoint_BeforeTheSignal_IsNull_AndItsNeighboursAreFound) {
    layOut(writer, {{1, {1}}, {2, {1}}, {3, {1}}});
    std::vector<shm::QelShmKeptMVal> kept;
    for (int number = 1; number <= 3; ++number) {
        kept.emplace_back(socket(number) | key::voltage);
        ASSERT_EQ(numberOf(kept.back().svid()), shown(kept.back()));
    }
    for (int const removed : {2, 1}) {
        std::set<int> left{1, 3};
        if (removed == 1) {
            left = {3};
        }
        keep(left);
        for (int number = 1; number <= 3; ++number) {
            auto const svid = socket(number) | key::voltage;
            auto const expected = left.count(number) != 0 ? numberOf(svid) : -1;
            EXPECT_EQ(expected, shown(svid)) << number;
            EXPECT_EQ(expected, shown(kept[static_cast<std::size_t>(number - 1)])) << number;
        }
    }
}

TEST_F(QelSharedMemoryReaderChangesTest, Mval_PointThatIsAddedBefore_LeavesTheOthersFound) {
    layOut(writer, {{2, {1}}, {3, {1}}});
    shm::QelShmKeptMVal kept(socket(2) | key::voltage);
    ASSERT_EQ(numberOf(kept.svid()), shown(kept));
    layOut(writer, {{1, {1}}});
    EXPECT_EQ(numberOf(kept.svid()), shown(kept));
    EXPECT_EQ(numberOf(socket(3) | key::voltage), shown(socket(3) | key::voltage));
    EXPECT_EQ(-1, shown(socket(1) | key::voltage)) << "not announced yet";
}

/// What the writer does within the callback of the first, of a middle or of the last socket.
class QelSharedMemoryReaderVisitDuringAChangeTest
    : public QelSharedMemoryReaderChangesTest,
      public testing::WithParamInterface<std::tuple<int, bool>> {
protected:
    QelSharedMemoryReaderVisitDuringAChangeTest() {
        layOut(writer, {{1, {1}}, {2, {1}}, {3, {1}}, {4, {1}}, {5, {1}}});
    }

    static int socketOfAction() { return std::get<0>(GetParam()); }

    /// The sockets that a visit, or a scan, shows, while something happens at one of them.
    std::vector<int> visitWhile(std::function<void()> action) {
        std::vector<int> numbers;
        std::function<void(long long)> const atPoint = [&](long long svid) {
            auto const number = static_cast<int>(svid >> 16 & 0xFF);
            if (number == 0xFF) {
                return; // no socket
            }
            numbers.push_back(number);
            if (numbers.back() == socketOfAction()) {
                action();
            }
        };
        if (std::get<1>(GetParam())) {
            for (auto const& point : reader.points()) {
                atPoint(point.svid());
            }
        } else {
            act().atPoint = atPoint;
            reader.visit();
        }
        return numbers;
    }
};

TEST_P(QelSharedMemoryReaderVisitDuringAChangeTest, CurrentPointRemoved_AllThatStayAreVisited) {
    std::set<int> left{1, 2, 3, 4, 5};
    left.erase(socketOfAction());
    EXPECT_THAT(visitWhile([&] { keep(left); }), ElementsAre(1, 2, 3, 4, 5));
}

TEST_P(QelSharedMemoryReaderVisitDuringAChangeTest, FollowingPointRemoved_AllThatStayAreVisited) {
    std::set<int> left{1, 2, 3, 4, 5};
    left.erase(socketOfAction() % 5 + 1);
    EXPECT_THAT(visitWhile([&] { keep(left); }), IsSupersetOf(left));
}

TEST_P(QelSharedMemoryReaderVisitDuringAChangeTest, AllPointsRemovedAndOthersLaidOut_NoneIsVisitedTwice) {
    auto numbers = visitWhile([&] {
        keep({});
        layOut(writer, {{11, {1}}, {12, {1}}});
    });
    std::sort(numbers.begin(), numbers.end());
    EXPECT_EQ(numbers.end(), std::adjacent_find(numbers.begin(), numbers.end()));
}

TEST_P(QelSharedMemoryReaderVisitDuringAChangeTest, PointAdded_AllOthersAreVisited) {
    EXPECT_THAT(visitWhile([&] { layOut(writer, {{6, {1}}}); }), IsSupersetOf({1, 2, 3, 4, 5}));
}

INSTANTIATE_TEST_SUITE_P(AtSocket, QelSharedMemoryReaderVisitDuringAChangeTest,
                         testing::Combine(testing::Values(1, 3, 5), testing::Bool()));

TEST_F(QelSharedMemoryReaderChangesTest, Visit_TopLevelPointRemoved_AllThatStayAreVisited) {
    for (int number = 1; number <= 4; ++number) {
        writer.addMP(pointId(number, 0), {}, rawNone);
    }
    std::vector<long long> seen;
    act().atPoint = [&](long long svid) {
        seen.push_back(svid);
        if (svid == pointId(2, 0)) {
            writer.modifyStructure({pointId(1, 0), pointId(3, 0), pointId(4, 0)});
        }
    };
    reader.visit();
    EXPECT_THAT(seen, ElementsAre(pointId(1, 0), pointId(2, 0), pointId(3, 0), pointId(4, 0)));
}

TEST_F(QelSharedMemoryReaderChangesTest, Visit_ValueSlotsReusedWithinACallback_TellsAsManyValuesAsThereWere) {
    layOut(writer, {{1, {1, 2, 3, 4}}});
    useUpValues();
    int values = 0;
    act().atValue = [&](long long svid) {
        if ((svid & ~0xFFFFLL) != socket(1)) {
            return;
        }
        if (++values == 1) {
            keep({});
            layOut(writer, {{2, {9}}}); // takes the first one's slot, which ends its chain
        }
    };
    reader.visit();
    EXPECT_EQ(4, values);
}

TEST_F(QelSharedMemoryReaderChangesTest, Scan_ValueSlotsReusedMeanwhile_ShowsAsManyValuesAsThereWere) {
    layOut(writer, {{1, {1, 2, 3, 4}}});
    useUpValues();
    int values = 0;
    for (auto const& point : reader.points()) {
        if (point.svid() != socket(1)) {
            continue;
        }
        for ([[maybe_unused]] auto const& value : point.values()) {
            if (++values == 1) {
                keep({});
                layOut(writer, {{2, {9}}}); // takes the first one's slot, which ends its chain
            }
        }
    }
    EXPECT_EQ(4, values);
}

} // namespace

} // namespace qel::test
