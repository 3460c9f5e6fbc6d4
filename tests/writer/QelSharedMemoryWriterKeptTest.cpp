// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

// updateMV of a kept value.

#include "writer/QelSharedMemoryWriter.h"

#include "format/ValueKeys.h"
#include "tests/model/ReferenceSvid.h"
#include "tests/support/Eventually.h"
#include "tests/support/FailureSeams.h"
#include "tests/writer/WriterFixture.h"
#include "writer/QelShmKeptUpdate.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <atomic>
#include <cmath>
#include <cstring>
#include <limits>
#include <memory>
#include <thread>
#include <vector>

namespace qel::test {

namespace {

namespace key = shm::key;
using shm::QelShmKeptUpdate;
using testing::IsEmpty;

constexpr long long device = pointId(1, 0);
constexpr long long other = pointId(2, 0);
constexpr std::uint64_t time1 = 0x1122334455667788;

class QelSharedMemoryWriterKeptTest : public WriterTest {
protected:
    /// Stores by one writer what updateMV() of an id stores, and expects the same bytes of a kept value: when it is
    /// looked up, and when it is remembered.
    void expectTheSameBytes(long long svid, double stored, std::uint64_t at, eStatus_Bits state) {
        auto const before = raw.copy();
        bool const isStored = sut.updateMV(svid, measured(stored, at, state));
        auto const expected = raw.copy();
        QelShmKeptUpdate kept(svid);
        for (char const* const how : {"looked up", "remembered"}) {
            std::memcpy(raw.bytes(), before.data(), before.size());
            ASSERT_EQ(isStored, sut.updateMV(kept, stored, at, state)) << hex(svid) << ", " << how;
            ASSERT_EQ(expected, raw.copy()) << hex(svid) << ", " << how;
        }
    }
    bool store(QelShmKeptUpdate& kept, double stored = 7.0) {
        return sut.updateMV(kept, stored, 1, eStatus_NoError);
    }
};

} // namespace

TEST_F(QelSharedMemoryWriterKeptTest, Svid_IsTheOneOfTheConstructor) {
    EXPECT_EQ(device | key::voltage, QelShmKeptUpdate(device | key::voltage).svid());
}

TEST_F(QelSharedMemoryWriterKeptTest, StoresTimeStateAndNumber) {
    sut.addMP(device, {{key::voltage, 0}, {key::peakVoltage, 0}}, rawNone);
    auto expected = raw.copy();
    std::vector<std::uint8_t> const slot{
        0,    0,    0,    0,    0,    0,    0xF8, 0x3F, // 1.5
        0x88, 0x77, 0x66, 0x55, 0x44, 0x33, 0x22, 0x11, // at
        1,    0,    0,    0                             // state
    };
    std::copy(slot.begin(), slot.end(), expected.begin() + 38400 + 32);
    QelShmKeptUpdate kept(device | key::peakVoltage);

    EXPECT_TRUE(sut.updateMV(kept, 1.5, time1, eStatus_HighAlarm));

    EXPECT_EQ(expected, raw.copy());
}

class QelSharedMemoryWriterKeptKeysTest : public QelSharedMemoryWriterKeptTest,
                                          public testing::WithParamInterface<int> {};

TEST_P(QelSharedMemoryWriterKeptKeysTest, EveryKey_GoesWhereItsRuleSays) {
    auto const keys = keysOfPart(GetParam());
    sut.addMP(device, keys, rawNone);
    std::uint32_t pos = 0;
    for (auto each = keys.begin(); each != keys.end(); ++each, ++pos) {
        int const key = each->first;
        QelShmKeptUpdate kept(device | key);
        for (int round = 1; round <= 2; ++round) {
            auto const at = time1 + static_cast<std::uint64_t>(100000) * static_cast<unsigned int>(round) +
                            static_cast<unsigned int>(key);
            auto const state = static_cast<eStatus_Bits>((key + round) % 44);
            auto const delivered = 12345.0 * round + key;

            ASSERT_TRUE(sut.updateMV(kept, delivered, at, state)) << key;

            bool const isOfPoint = reference::isPointStateKey(key);
            ASSERT_EQ(at,
                      raw.get<std::uint64_t>(isOfPoint ? field::pointAt : rawValue(pos) + field::valueAt));
            ASSERT_EQ(state,
                      isOfPoint ? pointState(0) : raw.get<std::int32_t>(rawValue(pos) + field::valueState))
                << key;
            ASSERT_EQ(isOfPoint ? 0.0 : reference::storedNumber(key, delivered), number(pos)) << key;
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Parts, QelSharedMemoryWriterKeptKeysTest, testing::Range(0, keyParts));

TEST_F(QelSharedMemoryWriterKeptTest, EveryKindOfNumberAndState_LeavesTheBytesOfUpdateById) {
    sut.addMP(device, {{key::voltage, 0}, {key::activeEnergy, 0}}, rawNone);
    using Limits = std::numeric_limits<double>;
    for (double const stored :
         {0.0, -0.0, 1.0, 1234.0, -1e300, Limits::min(), Limits::denorm_min(), Limits::max(),
          Limits::infinity(), -Limits::infinity(), Limits::quiet_NaN(), std::nan("7")}) {
        for (int const state : {-3, -2, -1, 0, 1, 17, 43, 44}) {
            for (int const key : {int{key::voltage}, int{key::activeEnergy}, int{key::state}, 5}) {
                expectTheSameBytes(device | key, stored, time1 + static_cast<unsigned int>(key),
                                   static_cast<eStatus_Bits>(state));
            }
        }
    }
}

TEST_F(QelSharedMemoryWriterKeptTest, UnknownPointOrKey_ReturnsFalse_WritesAndLogsNothing) {
    sut.addMP(device, {{key::voltage, 0}}, rawNone);
    auto const before = raw.copy();
    WriterLog const log;
    for (auto const svid : {other | key::voltage, other | key::fuseState, device | key::peakVoltage, device,
                            rootSvid | key::globalState}) {
        QelShmKeptUpdate kept(svid);
        EXPECT_FALSE(store(kept)) << hex(svid);
        EXPECT_FALSE(store(kept)) << hex(svid);
    }
    EXPECT_EQ(before, raw.copy());
    EXPECT_THAT(log.entries(), IsEmpty());
}

TEST_F(QelSharedMemoryWriterKeptTest, ValueThatIsAddedLater_IsFoundThen) {
    QelShmKeptUpdate kept(device | key::voltage);
    EXPECT_FALSE(store(kept));
    sut.addMP(device, {}, rawNone);
    EXPECT_FALSE(store(kept));

    sut.addMP(device, {{key::voltage, 0}}, rawNone);

    EXPECT_TRUE(store(kept));
    EXPECT_EQ(7.0, number(0));
}

TEST_F(QelSharedMemoryWriterKeptTest, Remembered_TakesNoLockAndNoMemory) {
    sut.addMP(device, {{key::voltage, 0}}, rawNone);
    QelShmKeptUpdate kept(device | key::voltage);
    auto const atFirst = locks();
    ASSERT_TRUE(store(kept));
    ASSERT_EQ(atFirst + 1, locks());
    {
        MemoryRunsOut const noMemory(0);
        MutexesFail const broken;
        EXPECT_TRUE(store(kept, 8.0));
    }
    EXPECT_EQ(atFirst + 1, locks());
    EXPECT_EQ(8.0, number(0));
}

TEST_F(QelSharedMemoryWriterKeptTest, LookUp_NeedsNoMemory) {
    sut.addMP(device, {{key::voltage, 0}}, rawNone);
    QelShmKeptUpdate kept(device | key::voltage);
    MemoryRunsOut const noMemory(0);

    EXPECT_TRUE(store(kept));
}

TEST_F(QelSharedMemoryWriterKeptTest, LookUp_FailingMutex_ReturnsFalse_TheNextCallStores) {
    sut.addMP(device, {{key::voltage, 0}}, rawNone);
    QelShmKeptUpdate kept(device | key::voltage);
    auto const before = raw.copy();
    WriterLog const log;
    {
        MutexesFail const broken;
        EXPECT_FALSE(store(kept));
    }
    EXPECT_EQ(before, raw.copy());
    EXPECT_THAT(log.entries(), IsEmpty());
    EXPECT_TRUE(store(kept));
}

// The structure changes

TEST_F(QelSharedMemoryWriterKeptTest, RemovedPoint_IsGone_AndItsSlotsAreLeftAlone) {
    sut.addStructure({{device, withKeys({key::voltage})}, {other, withKeys({key::voltage})}});
    QelShmKeptUpdate value(device | key::voltage);
    QelShmKeptUpdate state(device | key::state);
    QelShmKeptUpdate staying(other | key::voltage);
    ASSERT_TRUE(store(value) && store(state) && store(staying));

    sut.removeStructure({{other, withKeys({})}});
    auto const before = raw.copy();

    EXPECT_FALSE(store(value, 9.0));
    EXPECT_FALSE(store(state, 9.0));
    EXPECT_EQ(before, raw.copy());
    EXPECT_TRUE(store(staying, 9.0));
    EXPECT_EQ(9.0, number(1));
}

TEST_F(QelSharedMemoryWriterKeptTest, PointThatComesBackElsewhere_IsStoredThere) {
    sut.addStructure({{device, withKeys({key::voltage})}});
    QelShmKeptUpdate kept(device | key::voltage);
    ASSERT_TRUE(store(kept));

    sut.removeStructure({});
    sut.addStructure({{device, withKeys({key::voltage})}}); // freed slots come last

    EXPECT_TRUE(store(kept, 9.0));
    EXPECT_EQ(7.0, number(0));
    EXPECT_EQ(9.0, number(1));
}

// No slot is free but those of the removed point, so another one gets them.
TEST_F(QelSharedMemoryWriterKeptTest, SlotsThatServeAnotherPoint_AreNotTouched) {
    WriterLog const silence(log4cpp::Priority::EMERG);
    Definitions definitions;
    for (int number = 0; number < 800; ++number) {
        definitions[pointId(number / 256, 2, number % 256)] = withKeys({key::voltage});
    }
    auto const gone = pointId(0, 2, 1);
    Keys keys;
    for (int key = 1000; key < 1000 + 8000; ++key) {
        keys[static_cast<unsigned short>(key)] = 0;
    }
    for (auto const& [svid, definition] : definitions) {
        ASSERT_LT(sut.addMP(svid, definition.mvs, rawNone), 800U);
    }
    auto const slot = sut.addMP(gone, {}, rawNone);
    sut.addMP(pointId(0, 2, 0), keys, rawNone);
    QelShmKeptUpdate kept(gone | key::voltage);
    ASSERT_TRUE(store(kept));
    definitions.erase(gone);
    ASSERT_TRUE(sut.removeStructure(definitions));
    ASSERT_EQ(slot, sut.addMP(other, {{key::voltage, 0}}, rawNone));
    ASSERT_EQ(1U, values(slot).size());
    auto const before = raw.copy();

    EXPECT_FALSE(store(kept));

    EXPECT_EQ(before, raw.copy());
}

TEST_F(QelSharedMemoryWriterKeptTest, ValuesOfAPointWhoseSlotNamesAnother_AreGone) {
    sut.addStructure({{device, withKeys({key::voltage})}, {other, withKeys({key::voltage})}});
    QelShmKeptUpdate kept(other | key::voltage);
    ASSERT_TRUE(store(kept));
    raw.set<std::int64_t>(rawPoint(0) + field::guid, other); // the slot of device
    std::unordered_set<long long> removed;

    sut.unlinkMP(0, true, removed); // frees the values of other

    auto const before = raw.copy();
    EXPECT_FALSE(sut.updateMV(other | key::voltage, measured(9.0)));
    EXPECT_FALSE(store(kept, 9.0));
    EXPECT_EQ(before, raw.copy());
}

// Regions and writers

TEST_F(QelSharedMemoryWriterKeptTest, WithoutARegion_ReturnsFalse) {
    sut.addMP(device, {{key::voltage, 0}}, rawNone);
    QelShmKeptUpdate remembered(device | key::voltage);
    QelShmKeptUpdate unused(device | key::voltage);
    ASSERT_TRUE(store(remembered));

    sut.closeShm();

    EXPECT_FALSE(store(remembered));
    EXPECT_FALSE(store(unused));
}

TEST(QelSharedMemoryWriterKeptLifeTest, RegionOpenedAgain_ElsewhereInMemory_IsStoredInto) {
    ExposedWriter sut;
    sut.addMP(device, {{key::voltage, 0}}, rawNone);
    QelShmKeptUpdate kept(device | key::voltage);
    ASSERT_TRUE(sut.updateMV(kept, 1.0, 1, eStatus_NoError));
    auto const* const former = sut.region();
    sut.closeShm();
    ExposedWriter const takesItsPlace; // mostly where the first mapping was
    auto const* const inItsPlace = takesItsPlace.region();

    sut.openShm();

    ASSERT_TRUE(sut.region() != nullptr && (sut.region() != former || inItsPlace != former));
    EXPECT_TRUE(sut.updateMV(kept, 2.0, 2, eStatus_NoError));
    EXPECT_EQ(2.0, sut.region()->values[0].value);
    EXPECT_EQ(2U, sut.region()->values[0].at);
}

TEST(QelSharedMemoryWriterKeptLifeTest, AnotherWriter_LooksItUp) {
    auto first = std::make_unique<ExposedWriter>();
    first->addMP(device, {{key::voltage, 0}}, rawNone);
    QelShmKeptUpdate kept(device | key::voltage);
    ASSERT_TRUE(first->updateMV(kept, 1.0, 1, eStatus_NoError));

    ExposedWriter second;
    second.addMP(other, {{key::voltage, 0}}, rawNone);
    EXPECT_FALSE(second.updateMV(kept, 2.0, 2, eStatus_NoError));
    second.addMP(device, {{key::current, 0}, {key::voltage, 0}}, rawNone);
    EXPECT_TRUE(second.updateMV(kept, 3.0, 3, eStatus_NoError));
    EXPECT_EQ(0.0, second.region()->values[0].value);
    EXPECT_EQ(3.0, second.region()->values[1].value);
    EXPECT_TRUE(first->updateMV(kept, 4.0, 4, eStatus_NoError));
}

TEST(QelSharedMemoryWriterKeptLifeTest, WriterInTheMemoryOfAFormerOne_LooksItUp) {
    alignas(ExposedWriter) std::array<unsigned char, sizeof(ExposedWriter)> memory{};
    QelShmKeptUpdate kept(device | key::voltage);
    for (unsigned short const first : {key::voltage, key::current}) {
        auto* const sut = new (memory.data()) ExposedWriter;
        sut->addMP(device, {{first, 0}}, rawNone);
        sut->addMP(device, {{key::voltage, 0}}, rawNone);

        EXPECT_TRUE(sut->updateMV(kept, 5.0, 1, eStatus_NoError));

        EXPECT_EQ(5.0, sut->region()->values[first == key::voltage ? 0 : 1].value);
        sut->~ExposedWriter();
    }
}

// Threads

TEST_F(QelSharedMemoryWriterKeptTest, WhileItsPointGetsMoreValues_StoresEachTime) {
    WriterLog const silence(log4cpp::Priority::EMERG);
    sut.addMP(device, {{key::temperature, 0}}, rawNone);
    std::atomic<bool> stop{false};
    std::atomic<unsigned int> stored{0};
    std::atomic<unsigned int> refused{0};
    std::thread updating([&] {
        QelShmKeptUpdate value(device | key::temperature);
        QelShmKeptUpdate late(device | 0x300);
        for (std::uint64_t time = 1; !stop; ++time) {
            ++(sut.updateMV(value, 1.0, time, eStatus_NoError) ? stored : refused);
            sut.updateMV(late, 2.0, time, time % 2 == 0 ? eStatus_NoError : eStatus_HighAlarm);
        }
    });
    for (unsigned int key = 0x101; key < 0x101 + 600; ++key) {
        sut.addMP(device, {{static_cast<unsigned short>(key), 0}}, rawNone);
    }
    eventually([&] { return stored > 0; });
    stop = true;
    updating.join();
    EXPECT_EQ(0U, refused);
    EXPECT_GT(stored, 0U);
}

} // namespace qel::test
