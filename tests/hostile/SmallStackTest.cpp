// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tests/support/SmallStack.h"

#include "format/ValueKeys.h"
#include "reader/BaseQelShmVisitor.h"
#include "tests/reader/MappedReader.h"
#include "tests/writer/WriterFixture.h"

#include <algorithm>
#include <cstdint>
#include <functional>
#include <iterator>
#include <memory>
#include <string>
#include <unordered_set>

namespace qel::test {

namespace {

constexpr int pointSlots = 800;
constexpr int valueSlots = 8800;

/// How many points and values a visit met, and how deep.
struct Count {
    int points = 0;
    int values = 0;
    unsigned int depth = 0;
};

class Counting : public shm::BaseQelShmVisitor {
public:
    explicit Counting(Count& count) : count_(count) {}
    void onMPnt(shm::QelShmMPnt const& /*point*/, unsigned int depth,
                std::shared_ptr<shm::IQelVisitorResult>& /*result*/) override {
        ++count_.points;
        count_.depth = std::max(count_.depth, depth);
    }
    void onMVal(shm::QelShmMVal const& /*value*/, long long /*svid*/, unsigned int /*depth*/,
                std::shared_ptr<shm::IQelVisitorResult>& /*result*/) override {
        ++count_.values;
    }

private:
    Count& count_;
};

/// A writer whose tables are full, in one shape or another, and all that is done with them on a small stack.
class SmallStackTest : public WriterTest {
protected:
    static long long svid(int number) { return pointId(number / 256, 0, number % 256); }

    /// Each point takes its share of the value slots, so both tables are full after the last one.
    void fill(std::function<std::uint32_t(int number)> const& parentOf) {
        Keys keys;
        for (unsigned short key = 1; key <= valueSlots / pointSlots; ++key) {
            keys[key] = 0;
        }
        for (int number = 0; number < pointSlots; ++number) {
            ASSERT_EQ(static_cast<std::uint32_t>(number), sut.addMP(svid(number), keys, parentOf(number)));
        }
        ASSERT_EQ(rawNone, sut.addMP(svid(pointSlots), {}, rawNone)) << "the tables are not full";
        sut.setActive();
        ASSERT_TRUE(
            sut.updateMV(svid(pointSlots - 1) | shm::key::voltage, measured(1.0, 1, eStatus_HighAlarm)));
    }

    void expectAllWorksTo(unsigned int depth, int globalState) {
        Count count;
        std::string tree;
        std::uint32_t last = rawNone;
        runOnSmallStack([&] {
            sut.propagateStates();
            MappedReader reader;
            reader.visitor(std::make_unique<Counting>(count));
            reader.visit();
            tree = reader.tree();
            last = (*reader.mpnt(svid(pointSlots - 1), true))->pos;
        });
        EXPECT_EQ(globalState, this->globalState());
        EXPECT_EQ(eStatus_OnAlarm, pointState(pointSlots - 1));
        EXPECT_EQ(pointSlots, count.points);
        EXPECT_EQ(valueSlots, count.values);
        EXPECT_EQ(depth, count.depth);
        EXPECT_EQ(1 + pointSlots, std::count(tree.begin(), tree.end(), '\n'));
        EXPECT_EQ(std::uint32_t{pointSlots - 1}, last);
    }

    void expectRemovedWhole() {
        bool isChanged = false;
        runOnSmallStack([&] { isChanged = sut.modifyStructure({}); });
        EXPECT_TRUE(isChanged);
        EXPECT_TRUE(devices().empty());
    }

    void expectUnlinkedWhole() {
        std::unordered_set<long long> removed;
        runOnSmallStack([&] { sut.unlinkMP(0, false, removed); });
        EXPECT_EQ(std::size_t{pointSlots}, removed.size());
    }
};

constexpr auto besideEachOther = [](int /*number*/) {
    return rawNone;
};
constexpr auto belowEachOther = [](int number) {
    return number == 0 ? rawNone : static_cast<std::uint32_t>(number - 1);
};
constexpr auto belowOne = [](int number) {
    return number == 0 ? rawNone : 0U;
};
/// Depth and length at once: each point has two children.
constexpr auto inPairs = [](int number) {
    return number == 0 ? rawNone : static_cast<std::uint32_t>((number - 1) / 2);
};

TEST_F(SmallStackTest, FullTables_AllPointsBesideEachOther) {
    fill(besideEachOther);
    expectAllWorksTo(1, eStatus_ChildAlarm);
    expectRemovedWhole();
}

TEST_F(SmallStackTest, FullTables_AllPointsBelowEachOther) {
    fill(belowEachOther);
    expectAllWorksTo(pointSlots, eStatus_ChildAlarm);
    expectRemovedWhole();
}

TEST_F(SmallStackTest, FullTables_AllPointsBelowOne) {
    fill(belowOne);
    expectAllWorksTo(2, eStatus_ChildAlarm);
    expectRemovedWhole();
}

TEST_F(SmallStackTest, FullTables_InPairs) {
    fill(inPairs);
    expectAllWorksTo(10, eStatus_ChildAlarm);
    expectRemovedWhole();
}

TEST_F(SmallStackTest, FullTables_UnlinkedFromTheFirstOn_BesideEachOther) {
    fill(besideEachOther);
    expectUnlinkedWhole();
}

TEST_F(SmallStackTest, FullTables_UnlinkedFromTheFirstOn_BelowEachOther) {
    fill(belowEachOther);
    expectUnlinkedWhole();
}

TEST_F(SmallStackTest, EveryValueInOneChain) {
    Keys keys;
    for (unsigned short key = 1; key <= valueSlots; ++key) {
        keys[key] = 0;
    }
    ASSERT_EQ(0U, sut.addMP(svid(pointSlots - 1), keys, rawNone));
    Count count;
    std::ptrdiff_t listed = 0;
    runOnSmallStack([&] {
        sut.propagateStates();
        MappedReader reader;
        auto const values = reader.mvs(0);
        listed = std::distance(values.begin(), values.end());
        reader.visitor(std::make_unique<Counting>(count));
        reader.visit();
    });
    EXPECT_EQ(valueSlots, listed);
    EXPECT_EQ(valueSlots, count.values);
}

} // namespace

} // namespace qel::test
