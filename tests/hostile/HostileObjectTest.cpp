// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tests/hostile/HostileUnit.h"

#include "format/ValueKeys.h"
#include "tests/reader/SleepRecorder.h"
#include "tests/support/Eventually.h"
#include "tests/support/FakeHardwareManager.h"
#include "tests/support/Rounds.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <chrono>
#include <system_error>
#include <thread>
#include <vector>

namespace qel::test {

namespace {

namespace key = shm::key;
using Place = GuardedMappings::Place;
using namespace std::chrono_literals;

constexpr std::uint32_t seed = 20240613;

/// Leaves an object of the region's name with this content.
void leaveObject(std::vector<std::uint8_t> const& content) {
    int const fd = ::shm_open("QelSharedMemory", O_RDWR | O_CREAT | O_TRUNC, 0644);
    bool const isWritten =
        fd >= 0 && ::write(fd, content.data(), content.size()) == static_cast<ssize_t>(content.size());
    auto const error = errno;
    ::close(fd);
    if (!isWritten) {
        throw std::system_error(error, std::generic_category(), "writing the object");
    }
}

/// What a writer makes of the sample unit, byte for byte.
std::vector<std::uint8_t> laidOut() {
    auto const region = sampleUnit();
    auto const* const bytes = reinterpret_cast<std::uint8_t const*>(region.get());
    return {bytes, bytes + rawRegionSize};
}

std::vector<std::uint8_t> randomBytes(std::mt19937& random, std::size_t size) {
    std::vector<std::uint8_t> bytes(size);
    for (auto& byte : bytes) {
        byte = static_cast<std::uint8_t>(random());
    }
    return bytes;
}

/// An object that somebody else left, and a writer or reader that comes upon it.
class HostileObjectTest : public testing::TestWithParam<Place> {
protected:
    GuardedMappings const guards{GetParam()};
    std::mt19937 random = randomNumbers(seed);
};

TEST_P(HostileObjectTest, WriterOverGarbageOfAnySize_LaysOutWhatItLaysOutAfresh) {
    auto const fresh = laidOut();
    for (int round = 0, count = rounds(4, 100); round < count; ++round) {
        for (std::size_t const size : {std::size_t{0}, std::size_t{1}, rawRootOffset, rawRegionSize - 1,
                                       rawRegionSize, rawRegionSize + 1, std::size_t{1} << 20U}) {
            leaveObject(randomBytes(random, size));
            ASSERT_TRUE(fresh == laidOut()) << size << " bytes";
        }
    }
}

TEST_P(HostileObjectTest, WriterOverAUnitWithHostileLinks_LaysOutWhatItLaysOutAfresh) {
    auto const fresh = laidOut();
    for (int round = 0, count = rounds(20, 500); round < count; ++round) {
        auto hostile = fresh;
        for (int i = 0; i < 40; ++i) { // circles too: a writer must not follow what it finds
            auto const slot = static_cast<std::uint32_t>(random() % samplePoints);
            auto const offset = rawPoint(slot) + field::next + 4 * (random() % 5);
            auto const link = static_cast<std::uint32_t>(random() % samplePoints);
            std::memcpy(&hostile[offset], &link, sizeof link);
        }
        leaveObject(hostile);
        ASSERT_TRUE(fresh == laidOut()) << "round " << round;
    }
}

TEST_P(HostileObjectTest, ReaderOfGarbage_SeesItWiped_WhenAWriterStartsOver) {
    leaveObject(randomBytes(random, rawRegionSize));
    RawRegion const raw;
    MappedReader reader;
    ExposedWriter const writer;
    EXPECT_EQ(0xFF, reader.root()->version);
    RegionWalk const walk(raw);
    EXPECT_TRUE(walk.points().empty());
    EXPECT_EQ("", disagreement(reader, raw, walk));
}

TEST_P(HostileObjectTest, ObjectTooShort_IsNotMapped) {
    for (std::size_t const size : {std::size_t{0}, std::size_t{1}, rawRootOffset, rawRegionSize - 1}) {
        leaveObject(randomBytes(random, size));
        MappedReader reader;
        EXPECT_FALSE(reader.root()) << size;
        EXPECT_EQ("", reader.tree());
        EXPECT_EQ(nullptr, reader.mpnt(pointId(1, 0), true));
        reader.visit();
    }
}

/// A writer's own region, damaged under its feet.
class HostileWriterTest : public testing::TestWithParam<Place> {
protected:
    HostileWriterTest() {
        Definitions points;
        points[pointId(1, 0)] = withKeys({key::voltage, key::current});
        points[pointId(1, 0, 1)] = withKeys({key::voltage});
        points[pointId(1, 0, 2)] = withKeys({key::voltage});
        points[pointId(1, 0, 1, -1, 1)] = withKeys({key::voltage});
        points[pointId(1, 2, -1, -1, -1, 1)] = withKeys({key::activePower});
        writer.addStructure(points);
        writer.setActive();
    }

    GuardedMappings const guards{GetParam()};
    ExposedWriter writer;
    RawRegion const raw;
};

TEST_P(HostileWriterTest, ForeignNumbersInLinks_LeadUpdatesAndPropagationToNoSlotOutsideTheTables) {
    constexpr std::uint32_t numbers[] = {799, 800, 8799, 8800, 0x80000000, 0xFFFFFFFE, 0xFFFFFFFF};
    std::vector<std::size_t> links{field::devices, field::groups};
    for (std::uint32_t pos = 0; pos < 5; ++pos) {
        for (auto const offset :
             {field::pos, field::next, field::prev, field::mvs, field::children, field::parent}) {
            links.push_back(rawPoint(pos) + offset);
        }
    }
    for (std::uint32_t pos = 0; pos < 6; ++pos) {
        links.push_back(rawValue(pos) + field::valueNext);
    }
    for (auto const link : links) {
        for (auto const number : numbers) {
            auto const former = raw.u32(link);
            raw.set<std::uint32_t>(link, number);
            EXPECT_TRUE(writer.updateMV(pointId(1, 0, 1) | key::voltage, measured(1.0)));
            EXPECT_FALSE(writer.updateMV(pointId(1, 0, 1) | key::peakVoltage, measured(1.0)));
            writer.propagateStates();
            raw.set<std::uint32_t>(link, former);
        }
    }
    EXPECT_TRUE(writer.updateMV(pointId(1, 0, 1) | key::voltage, measured(1.0, 2, eStatus_HighAlarm)));
    writer.propagateStates();
    EXPECT_EQ(eStatus_ChildAlarm, raw.get<std::int32_t>(field::rootState));
}

INSTANTIATE_TEST_SUITE_P(Region, HostileObjectTest,
                         testing::Values(Place::BehindFrontGuard, Place::BeforeRearGuard), placeName);
INSTANTIATE_TEST_SUITE_P(Region, HostileWriterTest,
                         testing::Values(Place::BehindFrontGuard, Place::BeforeRearGuard), placeName);

TEST(HostileVersionTest, EveryVersionButOne_KeepsAWaitingReaderWaiting) {
    constexpr int active = 32;
    RawRegion const raw(true);
    FakeHardwareManager const service;
    LogCapture const log;
    SleepRecorder const sleeps;
    std::atomic<bool> isReady{false};
    std::thread client([&] {
        shm::QelSharedMemoryReader const reader(0xFFFFFFFF, true);
        isReady = true;
    });
    // The reader sleeps a second after each look; a look that began after the store saw the new byte.
    auto const looksTwice = [&] {
        auto const before = SleepRecorder::count(1s);
        return eventually([&] { return isReady || SleepRecorder::count(1s) >= before + 2; });
    };
    auto const isMapped = [&] {
        auto const entries = log.entries();
        return std::any_of(entries.begin(), entries.end(), [](auto const& entry) {
            return entry.text.find("onInitialized: modifications") == 0;
        });
    };
    EXPECT_TRUE(eventually(isMapped));
    for (int version = 0; version <= 0xFF && !HasFailure(); ++version) {
        if (version != active) {
            raw.set(field::version, static_cast<std::uint8_t>(version));
            EXPECT_TRUE(looksTwice()) << version;
            EXPECT_FALSE(isReady) << version;
        }
    }
    raw.set<std::uint8_t>(field::version, active);
    client.join();
    EXPECT_TRUE(isReady);
}

} // namespace

} // namespace qel::test
