// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

// Every operation of the writer, with memory that runs out at each of its allocations: at those of the operation alone,
// and at those of the lines that it logs as well.

#include "writer/QelSharedMemoryWriter.h"

#include "format/ValueKeys.h"
#include "tests/support/FailureSeams.h"
#include "tests/support/ScarceMemory.h"
#include "tests/writer/PlainTree.h"
#include "tests/writer/WriterFixture.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstring>
#include <functional>
#include <memory>
#include <new>
#include <ostream>
#include <set>
#include <string>
#include <unordered_map>
#include <unordered_set>
#include <utility>
#include <vector>

namespace qel::test {

namespace {

namespace key = shm::key;

constexpr long long device = pointId(1, 0);
constexpr long long inlet = pointId(1, 0, 1);
constexpr long long phase = pointId(1, 0, 1, 1);
constexpr long long fuse = pointId(1, 0, 1, 1, 1);
constexpr long long sensor = pointId(1, 1, 0, 1, 1);
constexpr long long group = pointId(1, 2);

constexpr long long socket(int number) {
    return pointId(1, 0, 1, 1, 1, number);
}

/// A unit with points of every kind; its point ids are in no particular order of slots.
Definitions smallUnit() {
    return {{device, withKeys({key::voltage, key::current})},
            {inlet, withKeys({key::voltage})},
            {phase, withKeys({})},
            {fuse, withKeys({key::activePower})},
            {socket(1), withKeys({key::voltage, key::current})},
            {socket(3), withKeys({key::voltage, key::current, key::activePower})},
            {sensor, withKeys({6, key::differentialCurrentAc})},
            {group, withKeys({key::activePower})}};
}

/// One point with more values than one step of the index holds.
Definitions manyValues() {
    Definitions unit{{device, {}}};
    for (unsigned short key = 0; key < 20; ++key) {
        unit[device].mvs[static_cast<unsigned short>(0x100 + key * 7)] = 0;
    }
    return unit;
}

Definitions without(Definitions unit, std::vector<long long> const& svids) {
    for (auto const svid : svids) {
        unit.erase(svid);
    }
    return unit;
}

std::unordered_set<long long> svidsOf(Definitions const& unit) {
    std::unordered_set<long long> svids;
    for (auto const& [svid, definition] : unit) {
        svids.insert(svid);
        for (auto const& value : definition.mvs) {
            svids.insert(svid | value.first);
        }
    }
    return svids;
}

/// Fuses with 38 sockets each: short lists.
long long filler(int number) {
    return number % 39 == 0 ? pointId(1, 0, 1, 1, 2 + number / 39)
                            : pointId(1, 0, 1, 1, 2 + number / 39, number % 39);
}

/// The small unit and as many points more as there are slots.
Definitions fullUnit() {
    auto unit = smallUnit();
    for (int i = 0; unit.size() < 800; ++i) {
        unit[filler(i)] = withKeys({key::voltage, key::peakVoltage, 3});
    }
    return unit;
}

struct Case {
    std::string name;
    std::function<void(ExposedWriter&)> prepare;
    std::function<void(ExposedWriter&)> operate;
};

std::ostream& operator<<(std::ostream& out, Case const& one) {
    return out << one.name;
}

void nothing(ExposedWriter& /*writer*/) {}
void layOut(ExposedWriter& writer) {
    writer.addStructure(smallUnit());
    writer.setActive();
}
void layOutInFullTables(ExposedWriter& writer) {
    writer.addStructure(fullUnit());
    writer.removeStructure(without(fullUnit(), {filler(1), filler(2), filler(5), filler(6)}));
    writer.setActive();
}

std::vector<Case> cases() { // NOLINT(readability-function-size): a table, one row a case
    Keys const twoKeys{{key::peakVoltage, 0}, {key::activePower, 0}};
    return {
        {"AddMP_TopLevel", nothing,
         [=](auto& writer) {
             writer.addMP(device, twoKeys, rawNone);
         }},
        {"AddMP_WithoutValues", layOut,
         [](auto& writer) {
             writer.addMP(pointId(2, 0), {}, rawNone);
         }},
        {"AddMP_BetweenSiblings", layOut,
         [=](auto& writer) {
             writer.addMP(socket(2), twoKeys, 3);
         }},
        {"AddMP_BeforeSiblings", layOut,
         [=](auto& writer) {
             writer.addMP(socket(0), twoKeys, 3);
         }},
        {"AddMP_ManyValues", layOut,
         [](auto& writer) {
             writer.addMP(pointId(2, 0), manyValues().at(device).mvs, rawNone);
         }},
        {"AddMP_KnownPoint", layOut,
         [=](auto& writer) {
             writer.addMP(device, twoKeys, rawNone);
         }},
        {"AddMP_KnownPointManyValues", layOut,
         [](auto& writer) {
             writer.addMP(device, manyValues().at(device).mvs, rawNone);
         }},
        {"AddMP_RecycledSlots", layOutInFullTables,
         [=](auto& writer) {
             writer.addMP(socket(2), twoKeys, 3);
         }},
        {"AddStructure_FromEmpty", nothing,
         [](auto& writer) {
             writer.addStructure(smallUnit());
         }},
        {"AddStructure_ManyValues", nothing,
         [](auto& writer) {
             writer.addStructure(manyValues());
         }},
        {"AddStructure_TheRest",
         [](auto& writer) {
             writer.addStructure(without(smallUnit(), {socket(1), sensor, group}));
         },
         [](auto& writer) {
             writer.addStructure(smallUnit());
         }},
        {"AddStructure_RecycledSlots", layOutInFullTables,
         [](auto& writer) {
             writer.addStructure({{socket(5), withKeys({key::voltage, key::peakVoltage})},
                                  {socket(6), withKeys({key::voltage, key::peakVoltage, 3})}});
         }},
        {"ModifyStructure_AddsAndRemoves", layOut,
         [](auto& writer) {
             auto unit = without(smallUnit(), {socket(1), sensor});
             unit[socket(2)] = withKeys({key::voltage, key::current});
             unit[device].mvs[50] = 0;
             writer.modifyStructure(svidsOf(unit));
         }},
        {"RemoveStructure_Leaf", layOut,
         [](auto& writer) {
             writer.removeStructure(without(smallUnit(), {socket(3)}));
         }},
        {"RemoveStructure_Subtree", layOut,
         [](auto& writer) {
             writer.removeStructure(without(smallUnit(), {fuse, socket(1), socket(3)}));
         }},
        {"RemoveStructure_Everything", layOut,
         [](auto& writer) {
             writer.removeStructure({});
         }},
        {"RemoveStructure_ManyValues", [](auto& writer) { writer.addStructure(manyValues()); },
         [](auto& writer) {
             writer.removeStructure({});
         }},
        {"RemoveStructure_FullTables", layOutInFullTables,
         [remaining = without(fullUnit(), {socket(3), filler(3), filler(700)})](auto& writer) {
             writer.removeStructure(remaining);
         }},
        {"InjectTypes", layOut,
         [](auto& writer) {
             writer.injectTypes({{device, 1}, {socket(1), 5}, {sensor | 6, 3}, {77, 1}});
         }},
    };
}

/// A writer and its region, laid out for a case.
struct Laid {
    explicit Laid(Case const& one) { one.prepare(writer); }

    WriterLog silence{log4cpp::Priority::EMERG};
    ExposedWriter writer;
    RawRegion raw;
};

/// What the region may never show: a slot or an id twice, a list whose ways back are not its ways forth; and what
/// cannot be done with it: to update a value that it shows.
void expectSound(Laid& laid) {
    PlainTree const tree(laid.raw);
    EXPECT_THAT(tree.faults(), testing::IsEmpty());
    for (auto const& [pos, point] : tree.points()) {
        for (auto const& [key, value] : point.values) {
            auto const at = laid.raw.get<std::uint64_t>(rawValue(value) + field::valueAt);
            EXPECT_TRUE(laid.writer.updateMV(point.guid | key, measured(0.0, at + 1))) << "key " << key;
            EXPECT_EQ(at + 1, laid.raw.get<std::uint64_t>(rawValue(value) + field::valueAt))
                << "another slot was stored to, key " << key;
        }
    }
}

/// Takes all free slots: each slot is either among them, once, or in use.
void expectEachSlotFreeOnceOrInUse(Laid& laid) {
    PlainTree const before(laid.raw);
    auto points = before.pointSlots();
    auto values = before.valueSlots();
    // The points first, so that one is left for the values.
    std::vector<unsigned int> taken;
    for (int i = 0;; ++i) {
        // Of a kind that is linked nowhere, which takes no time.
        auto const pos = laid.writer.addMP(pointId(100 + i / 256, 3, i % 256), {}, rawNone);
        if (pos == rawNone) {
            break;
        }
        EXPECT_TRUE(points.insert(pos).second) << "point slot " << pos << " is in use";
        taken.push_back(pos);
        ASSERT_LE(taken.size(), 800U);
    }
    EXPECT_EQ(800U, points.size());
    ASSERT_FALSE(before.points().empty() && taken.empty());
    auto const owner = taken.empty() ? before.points().begin()->second.guid
                                     : laid.raw.get<std::int64_t>(rawPoint(taken.front()) + field::guid);
    Keys keys;
    for (unsigned int key = 0x400; key < 0x400 + 8801; ++key) {
        keys[static_cast<unsigned short>(key)] = 0;
    }
    auto const known = values.size();
    laid.writer.addMP(owner, keys, rawNone);
    std::set<std::uint32_t> handedOut;
    for (unsigned int key = 0x400; key < 0x400 + 8801; ++key) {
        // A value's slot is where its time goes.
        if (laid.writer.updateMV(owner | key, measured(0.0, 0x5E00000000ULL + key))) {
            handedOut.insert(key);
        }
    }
    EXPECT_EQ(8800U, known + handedOut.size());
    std::set<std::uint64_t> times;
    for (std::uint32_t pos = 0; pos < 8800; ++pos) {
        auto const time = laid.raw.get<std::uint64_t>(rawValue(pos) + field::valueAt);
        if (time >= 0x5E00000000ULL && times.insert(time).second) {
            EXPECT_TRUE(values.insert(pos).second) << "value slot " << pos << " is in use";
        }
    }
    EXPECT_EQ(handedOut.size(), times.size()) << "two keys share a slot";
    EXPECT_EQ(8800U, values.size());
}

} // namespace

class QelSharedMemoryWriterMemoryTest : public testing::TestWithParam<Case> {
protected:
    /// @return the region after the operation with all the memory that it needs
    static std::vector<std::uint8_t> undisturbed() {
        Laid laid(GetParam());
        GetParam().operate(laid.writer);
        auto region = laid.raw.copy();
        expectSound(laid);
        expectEachSlotFreeOnceOrInUse(laid);
        return region;
    }

    /// @return whether the operation ran out of memory
    static bool runsOut(Laid& laid) {
        try {
            GetParam().operate(laid.writer);
            return false;
        } catch (std::bad_alloc const&) {
            return true;
        }
    }

    /// The region that a failed operation left is sound, and a retry completes it.
    static void expectRetryCompletes(Laid& laid, std::vector<std::uint8_t> const& expected) {
        auto const left = laid.raw.copy();
        expectSound(laid);
        std::memcpy(laid.raw.bytes(), left.data(), left.size()); // without the updates

        GetParam().operate(laid.writer);

        EXPECT_TRUE(expected == laid.raw.copy()) << "the retry makes another region";
        expectSound(laid);
    }
};

TEST_P(QelSharedMemoryWriterMemoryTest, AtEachAllocation_TheRegionStaysSound_AndARetryCompletesIt) {
    auto const expected = undisturbed();
    for (std::size_t allowed = 0; !HasFailure(); ++allowed) {
        SCOPED_TRACE(std::to_string(allowed) + " allocations succeed");
        Laid laid(GetParam());
        bool failed = false;
        {
            MemoryRunsOut const then(allowed);
            failed = runsOut(laid);
        }
        if (!failed) {
            EXPECT_EQ(expected, laid.raw.copy());
            EXPECT_GT(allowed, 0U) << "nothing was ever allocated";
            RecordProperty("failed_allocations", static_cast<int>(allowed));
            return;
        }
        expectRetryCompletes(laid, expected);
        expectEachSlotFreeOnceOrInUse(laid);
    }
}

// A line that cannot be logged is dropped, and the operation goes on without it.
TEST_P(QelSharedMemoryWriterMemoryTest,
       AtEachAllocationOfLoggedLines_TheRegionStaysSound_AndARetryCompletesIt) {
    QEL_SKIP_WITHOUT_SCARCE_MEMORY();
    auto const expected = undisturbed();
    std::size_t lostLines = 0;
    for (auto const limited : {&ScarceMemory::afterAllocations, &ScarceMemory::onceAfterAllocations}) {
        std::size_t allowed = 0;
        std::size_t failures = 0;
        do {
            SCOPED_TRACE(std::to_string(allowed) + " allocations succeed");
            Laid laid(GetParam());
            bool failed = false;
            {
                WriterLog const lines;
                auto const memory = limited(allowed);
                failed = runsOut(laid);
                failures = memory.failures();
            }
            if (failed) {
                expectRetryCompletes(laid, expected);
            } else {
                EXPECT_TRUE(expected == laid.raw.copy()) << "a lost line makes another region";
                lostLines += failures == 0 ? 0 : 1;
            }
            ++allowed;
        } while (failures != 0 && !HasFailure());
    }
    EXPECT_GT(lostLines, 0U) << "no allocation of a line failed";
}

INSTANTIATE_TEST_SUITE_P(Operation, QelSharedMemoryWriterMemoryTest, testing::ValuesIn(cases()),
                         [](auto const& one) { return one.param.name; });

TEST(QelSharedMemoryWriterMemoryHotPathTest, UpdatesAndPropagation_NeedNoMemory) {
    Laid laid({"", layOut, nothing});
    auto const before = allocations();
    auto value = measured(2.5, 7, eStatus_HighAlarm);
    auto own = measured(0.0, 8, eStatus_Off);
    auto const made = allocations() - before;
    {
        MemoryRunsOut const none(0);
        EXPECT_TRUE(laid.writer.updateMV(device | key::voltage, std::move(value)));
        EXPECT_TRUE(laid.writer.updateMV(inlet | key::fuseState, std::move(own)));
        laid.writer.propagateStates();
        laid.writer.setActive();
        laid.writer.propagateStates();
    }
    EXPECT_EQ(before + made, allocations());
    EXPECT_EQ(9, laid.raw.get<std::int32_t>(rawPoint(0) + field::pointState));
    EXPECT_EQ(23, laid.raw.get<std::int32_t>(field::rootState));
}

TEST(QelSharedMemoryWriterMemoryHotPathTest, UpdatesAndPropagationThatLog_DoTheSameWithoutMemory) {
    QEL_SKIP_WITHOUT_SCARCE_MEMORY();
    auto const operate = [](ExposedWriter& writer, auto const& limited) {
        auto value = measured(2.5, 7, eStatus_HighAlarm);
        auto own = measured(0.0, 8, eStatus_Off);
        auto third = measured(1.0, 9);
        WriterLog const lines;
        auto const memory = limited();
        EXPECT_TRUE(writer.updateMV(device | key::voltage, std::move(value)));
        EXPECT_TRUE(writer.updateMV(inlet | key::fuseState, std::move(own)));
        {
            ConversionThrowsInt const isLogged;
            EXPECT_FALSE(writer.updateMV(device | key::current, std::move(third)));
        }
        writer.propagateStates();
        writer.setActive();
        return memory.failures();
    };
    Laid undisturbed({"", layOut, nothing});
    EXPECT_EQ(0U, operate(undisturbed.writer, [] { return ScarceMemory::afterAllocations(100000); }));
    for (auto const limited : {&ScarceMemory::afterAllocations, &ScarceMemory::onceAfterAllocations}) {
        std::size_t allowed = 0;
        std::size_t failures = 0;
        do {
            Laid laid({"", layOut, nothing});
            failures = operate(laid.writer, [&] { return limited(allowed); });
            EXPECT_TRUE(undisturbed.raw.copy() == laid.raw.copy()) << allowed << " allocations succeed";
            ++allowed;
        } while (failures != 0 && !HasFailure());
        EXPECT_GT(allowed, 5U) << "no allocation of a line failed";
    }
}

} // namespace qel::test
