// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

// setActive and updateMV.

#include "writer/QelSharedMemoryWriter.h"

#include "format/ValueKeys.h"
#include "tests/model/ReferenceSvid.h"
#include "tests/support/Eventually.h"
#include "tests/support/FailureSeams.h"
#include "tests/writer/WriterFixture.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <atomic>
#include <cmath>
#include <limits>
#include <thread>

namespace qel::test {

namespace {

namespace key = shm::key;
using log4cpp::Priority;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr long long device = pointId(1, 0);
constexpr std::uint64_t time1 = 0x1122334455667788;

std::unique_ptr<measval::MeasureValue> text(char const* words) {
    return std::make_unique<measval::MeasureValue>(words, time1, eStatus_HighWarning);
}

} // namespace

class QelSharedMemoryWriterUpdatesTest : public WriterTest {
protected:
    std::uint64_t valueTime(std::uint32_t pos) const {
        return raw.get<std::uint64_t>(rawValue(pos) + field::valueAt);
    }
    int valueState(std::uint32_t pos) const {
        return raw.get<std::int32_t>(rawValue(pos) + field::valueState);
    }
};

// setActive

TEST_F(QelSharedMemoryWriterUpdatesTest, SetActive_StampsTheRoot) {
    sut.addMP(device, {}, rawNone);
    auto expected = raw.copy();
    std::vector<std::uint8_t> const stamp{
        0,    0,    0xFF, 0xFF, 0xFF, 0xFF, 0, 0xFF, // guid
        0,    0,    0,    0,    0,    0,    0, 0,    // unused
        0,    0,    0,    0,                         // devices: as linked before
        0xFF, 0xFF, 0xFF, 0xFF,                      // groups
        17,   0,    0,    0,                         // state
        32,   0xFF, 0xFF, 0xFF                       // version, reserved
    };
    std::copy(stamp.begin(), stamp.end(), expected.begin() + 320000);

    sut.setActive();

    EXPECT_EQ(expected, raw.copy());
}

TEST_F(QelSharedMemoryWriterUpdatesTest, SetActive_LogsTheVersion) {
    WriterLog const log;

    sut.setActive();

    EXPECT_THAT(log.entries(), ElementsAre(writerLine(Priority::INFO, "setActive: root.version = 0x20")));
}

// updateMV: values

TEST_F(QelSharedMemoryWriterUpdatesTest, UpdateMV_StoresTimeStateAndNumber) {
    sut.addMP(device, {{key::voltage, 0}, {key::peakVoltage, 0}}, rawNone);
    auto expected = raw.copy();
    std::vector<std::uint8_t> const slot{
        0,    0,    0,    0,    0,    0,    0xF8, 0x3F, // 1.5
        0x88, 0x77, 0x66, 0x55, 0x44, 0x33, 0x22, 0x11, // at
        1,    0,    0,    0                             // state
    };
    std::copy(slot.begin(), slot.end(), expected.begin() + 38400 + 32);

    EXPECT_TRUE(sut.updateMV(device | key::peakVoltage, measured(1.5, time1, eStatus_HighAlarm)));

    EXPECT_EQ(expected, raw.copy());
}

TEST_F(QelSharedMemoryWriterUpdatesTest, UpdateMV_EnergyIsStoredInUnits_OthersAsDelivered) {
    sut.addMP(device, {{key::apparentEnergy, 0}, {39, 0}, {key::activeEnergyResettableDeltaBaseValue, 0}},
              rawNone);

    EXPECT_TRUE(sut.updateMV(device | key::apparentEnergy, measured(1234.0)));
    EXPECT_TRUE(sut.updateMV(device | 39, measured(1234.0)));
    EXPECT_TRUE(sut.updateMV(device | key::activeEnergyResettableDeltaBaseValue, measured(1234.0)));

    EXPECT_EQ(1.234, number(0));
    EXPECT_EQ(1234.0, number(1));
    EXPECT_EQ(1.234, number(2));
}

class QelSharedMemoryWriterKeysTest : public QelSharedMemoryWriterUpdatesTest,
                                      public testing::WithParamInterface<int> {};

TEST_P(QelSharedMemoryWriterKeysTest, UpdateMV_EveryKey_GoesWhereItsRuleSays) {
    auto const keys = keysOfPart(GetParam());
    sut.addMP(device, keys, rawNone);

    std::uint32_t pos = 0;
    for (auto each = keys.begin(); each != keys.end(); ++each, ++pos) {
        int const key = each->first;
        auto const at = std::uint64_t{1000000} + static_cast<unsigned int>(key);
        auto const state = static_cast<eStatus_Bits>(key % 44);
        auto const delivered = 12345.0 + key;
        auto const pointBefore = pointState(0);

        ASSERT_TRUE(sut.updateMV(device | key, measured(delivered, at, state))) << key;

        if (reference::isPointStateKey(key)) {
            ASSERT_EQ(at, raw.get<std::uint64_t>(field::pointAt)) << key;
            ASSERT_EQ(state, pointState(0)) << key;
            ASSERT_EQ(0U, valueTime(pos)) << key;
            ASSERT_EQ(-2, valueState(pos)) << key;
            ASSERT_EQ(0.0, number(pos)) << key;
        } else {
            ASSERT_EQ(pointBefore, pointState(0)) << key;
            ASSERT_EQ(at, valueTime(pos)) << key;
            ASSERT_EQ(state, valueState(pos)) << key;
            ASSERT_EQ(reference::storedNumber(key, delivered), number(pos)) << key;
        }
    }
}

INSTANTIATE_TEST_SUITE_P(AllKeys, QelSharedMemoryWriterKeysTest, testing::Range(0, keyParts));

TEST_F(QelSharedMemoryWriterUpdatesTest, UpdateMV_NumbersOfEveryType_AreConverted) {
    sut.addMP(device, {{key::voltage, 0}, {key::apparentEnergy, 0}}, rawNone);
    auto const stored = [&](auto value, long long key) {
        EXPECT_TRUE(
            sut.updateMV(device | key, std::make_unique<measval::MeasureValue>(value, 1, eStatus_NoError)));
        return number(key == 1 ? 0 : 1);
    };

    EXPECT_EQ(-7.0, stored(-7LL, 1));
    EXPECT_EQ(2.5, stored(2500LL, 32));
    EXPECT_EQ(1.0, stored(true, 1));
    EXPECT_EQ(0.0, stored(false, 1));
    EXPECT_TRUE(std::isinf(stored(std::numeric_limits<double>::infinity(), 1)));
    EXPECT_TRUE(std::isnan(stored(std::numeric_limits<double>::quiet_NaN(), 32)));
    EXPECT_TRUE(std::signbit(stored(-0.0, 1)));
}

TEST_F(QelSharedMemoryWriterUpdatesTest, UpdateMV_Text_ReturnsFalse_YetTimeAndStateAreNew) {
    sut.addMP(device, {{key::voltage, 0}}, rawNone);
    sut.updateMV(device | key::voltage, measured(5.5, 1, eStatus_NoError));

    EXPECT_FALSE(sut.updateMV(device | key::voltage, text("12")));

    EXPECT_EQ(time1, valueTime(0));
    EXPECT_EQ(eStatus_HighWarning, valueState(0));
    EXPECT_EQ(5.5, number(0));
}

TEST_F(QelSharedMemoryWriterUpdatesTest, UpdateMV_DoesNotPropagateStates) {
    sut.addMP(device, {{key::voltage, 0}}, rawNone);
    sut.setActive();

    sut.updateMV(device | key::voltage, measured(1.0, 1, eStatus_HighAlarm));

    EXPECT_EQ(17, pointState(0));
    EXPECT_EQ(17, globalState());
}

// updateMV: the point's own state

TEST_F(QelSharedMemoryWriterUpdatesTest, UpdateMV_PointStateKey_WritesOnlyTimeAndStateOfThePoint) {
    for (int const key :
         {key::fuseState, key::socket, key::pduState, key::sensorState, key::circuitState, key::phaseState,
          key::rcdState, key::socketGroupState, key::globalState, key::state}) {
        auto const svid = pointId(key, 0);
        auto const pos = sut.addMP(svid, {{key::voltage, 0}, {static_cast<unsigned short>(key), 0}}, rawNone);
        auto expected = raw.copy();
        for (std::size_t i = 0; i < 8; ++i) {
            expected[rawPoint(pos) + 32 + i] = static_cast<std::uint8_t>(time1 >> (8 * i));
        }
        expected[rawPoint(pos) + 40] = 18;

        EXPECT_TRUE(sut.updateMV(svid | key, measured(9.0, time1, eStatus_Off)));

        EXPECT_EQ(expected, raw.copy()) << key;
    }
}

TEST_F(QelSharedMemoryWriterUpdatesTest, UpdateMV_PointStateKey_NeedsNoValueOfThatKey) {
    sut.addMP(device, {}, rawNone);

    EXPECT_TRUE(sut.updateMV(device | key::fuseState, measured(0.0, 3, eStatus_OffIdentify)));

    EXPECT_EQ(16, pointState(0));
    EXPECT_EQ(3U, raw.get<std::uint64_t>(field::pointAt));
}

TEST_F(QelSharedMemoryWriterUpdatesTest, UpdateMV_PointStateKey_TakesAnyTypeAndNoLock) {
    sut.addMP(device, {}, rawNone);
    MutexesFail const broken;

    EXPECT_TRUE(sut.updateMV(device | key::pduState, text("on")));

    EXPECT_EQ(eStatus_HighWarning, pointState(0));
}

// updateMV: failures

TEST_F(QelSharedMemoryWriterUpdatesTest, UpdateMV_UnknownPointOrKey_ReturnsFalse_WritesAndLogsNothing) {
    sut.addMP(device, {{key::voltage, 0}}, rawNone);
    auto const before = raw.copy();
    WriterLog const log;

    EXPECT_FALSE(sut.updateMV(pointId(2, 0) | key::voltage, measured(1.0)));
    EXPECT_FALSE(sut.updateMV(pointId(2, 0) | key::fuseState, measured(1.0)));
    EXPECT_FALSE(sut.updateMV(device | key::peakVoltage, measured(1.0)));
    EXPECT_FALSE(sut.updateMV(device, measured(1.0)));
    EXPECT_FALSE(sut.updateMV(rootSvid | key::globalState, measured(1.0)));

    EXPECT_EQ(before, raw.copy());
    EXPECT_THAT(log.entries(), IsEmpty());
}

TEST_F(QelSharedMemoryWriterUpdatesTest, UpdateMV_WithoutAValue_ReturnsFalse) {
    sut.addMP(device, {{key::voltage, 0}}, rawNone);
    auto const before = raw.copy();

    EXPECT_FALSE(sut.updateMV(device | key::voltage, nullptr));
    EXPECT_FALSE(sut.updateMV(device | key::fuseState, nullptr));

    EXPECT_EQ(before, raw.copy());
}

TEST_F(QelSharedMemoryWriterUpdatesTest, UpdateMV_FailingMutex_ReturnsFalse_WritesAndLogsNothing) {
    sut.addMP(device, {{key::voltage, 0}}, rawNone);
    auto const before = raw.copy();
    bool updated = true;
    WriterLog const log;
    {
        MutexesFail const broken;
        updated = sut.updateMV(device | key::voltage, measured(1.0));
    }
    EXPECT_FALSE(updated);
    EXPECT_EQ(before, raw.copy());
    EXPECT_THAT(log.entries(), IsEmpty());
    EXPECT_TRUE(sut.updateMV(device | key::voltage, measured(1.0)));
}

TEST_F(QelSharedMemoryWriterUpdatesTest, UpdateMV_ExceptionOfNoStandardType_IsLogged_AndGivesFalse) {
    sut.addMP(device, {{key::voltage, 0}}, rawNone);
    WriterLog const log;
    bool updated = true;
    {
        ConversionThrowsInt const broken;
        updated = sut.updateMV(device | key::voltage, measured(1.0));
    }
    EXPECT_FALSE(updated);
    EXPECT_THAT(log.entries(),
                ElementsAre(writerLine(Priority::ERROR, "updateMV: ran into a very exceptional state")));
}

TEST_F(QelSharedMemoryWriterUpdatesTest, UpdateMV_WhileItsPointGetsMoreValues_StoresEachTime) {
    WriterLog const silence(log4cpp::Priority::EMERG);
    sut.addMP(pointId(7, 0), {{key::temperature, 0}}, rawNone);
    std::atomic<bool> stop{false};
    std::atomic<unsigned int> stored{0};
    std::atomic<unsigned int> refused{0};
    std::thread updating([&] {
        for (std::uint64_t time = 1; !stop; ++time) {
            ++(sut.updateMV(pointId(7, 0) | key::temperature, measured(1.0, time)) ? stored : refused);
            sut.updateMV(pointId(7, 0) | (0x100 + static_cast<long long>(time % 600)), measured(2.0, time));
            sut.updateMV(pointId(7, 0) | key::fuseState, measured(0.0, time));
        }
    });
    for (unsigned int key = 0x101; key < 0x101 + 500; ++key) {
        sut.addMP(pointId(7, 0), {{static_cast<unsigned short>(key), 0}}, rawNone);
    }
    eventually([&] { return stored > 0; });
    stop = true;
    updating.join();
    EXPECT_EQ(0U, refused);
    EXPECT_GT(stored, 0U);
    for (unsigned int key = 0x100; key < 0x101 + 500; ++key) {
        EXPECT_TRUE(sut.updateMV(pointId(7, 0) | key, measured(3.0))) << key;
    }
}

TEST_F(QelSharedMemoryWriterUpdatesTest, UpdateMV_Success_NeitherLogsNorAllocates) {
    sut.addMP(device, {{key::voltage, 0}, {key::apparentEnergy, 0}}, rawNone);
    auto plain = measured(1.0);
    auto energy = measured(2.0);
    auto state = measured(3.0);
    WriterLog const log;
    auto const before = allocations();

    sut.updateMV(device | key::voltage, std::move(plain));
    sut.updateMV(device | key::apparentEnergy, std::move(energy));
    sut.updateMV(device | key::fuseState, std::move(state));

    EXPECT_EQ(before, allocations());
    EXPECT_THAT(log.entries(), IsEmpty());
    EXPECT_EQ(1.0, number(0));
}

} // namespace qel::test
