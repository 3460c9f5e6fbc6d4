// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

// Whether what a reader shows is current: each condition, and the ways between them.

#include "reader/QelSharedMemoryReader.h"

#include "format/ValueKeys.h"
#include "tests/reader/MappedReader.h"
#include "tests/support/ForgedRegion.h"
#include "tests/support/LogCapture.h"
#include "tests/support/ObjectLock.h"
#include "tests/support/ProcessResources.h"

#include <gtest/gtest.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <chrono>
#include <memory>
#include <optional>

namespace {

using namespace std::chrono_literals;
using qel::test::ForgedRegion;
using qel::test::MappedReader;
using qel::test::ObjectLock;
using shm::ANY_AGE;
using shm::QelSharedMemoryReader;
using shm::QelShmCondition;

constexpr char name[] = "QelSharedMemory";

std::uint64_t now() {
    auto const passed = std::chrono::system_clock::now().time_since_epoch();
    return static_cast<std::uint64_t>(std::chrono::duration_cast<std::chrono::milliseconds>(passed).count());
}

/// One point with one value.
class QelSharedMemoryReaderConditionTest : public testing::Test {
protected:
    QelSharedMemoryReaderConditionTest() {
        region.point(5, 0x0100000000000000);
        region.values(5, 7, {shm::key::voltage});
        region.devices({5});
        region.activate();
        deliver(now());
    }

    void deliver(std::uint64_t at) const {
        region.raw().set(qel::test::rawValue(7) + qel::test::field::valueAt, at);
    }

    ForgedRegion region;
};

TEST_F(QelSharedMemoryReaderConditionTest, MappedAndCurrent_IsActive) {
    MappedReader const sut;
    EXPECT_EQ(sut.condition(1min), QelShmCondition::Active);
    EXPECT_EQ(sut.condition(ANY_AGE), QelShmCondition::Active);
}

TEST_F(QelSharedMemoryReaderConditionTest, NotMappedYet_IsInactiveWhileThereIsAnObject_ElseGone) {
    QelSharedMemoryReader const sut(0, false);
    EXPECT_EQ(sut.condition(1min), QelShmCondition::Inactive);
    EXPECT_EQ(sut.lastDelivery(), 0U);
    ::shm_unlink(name);
    EXPECT_EQ(sut.condition(1min), QelShmCondition::Gone);
}

TEST_F(QelSharedMemoryReaderConditionTest, OldDelivery_IsSilent_UntilTheNextOne) {
    MappedReader const sut;
    deliver(now() - 60'000);
    EXPECT_EQ(sut.condition(10s), QelShmCondition::Silent);
    EXPECT_EQ(sut.condition(10min), QelShmCondition::Active);
    deliver(now());
    EXPECT_EQ(sut.condition(10s), QelShmCondition::Active);
    deliver(now() + 3'600'000);
    EXPECT_EQ(sut.condition(0ms), QelShmCondition::Active);
    deliver(0);
    region.raw().set<std::uint64_t>(qel::test::rawPoint(5) + qel::test::field::pointAt, 0);
    EXPECT_EQ(sut.condition(24h), QelShmCondition::Silent);
    EXPECT_EQ(sut.condition(ANY_AGE), QelShmCondition::Active);
}

TEST_F(QelSharedMemoryReaderConditionTest, LastDelivery_IsTheNewestTime) {
    MappedReader const sut;
    deliver(1234567890123);
    EXPECT_EQ(sut.lastDelivery(), 1234567890123U);
}

TEST_F(QelSharedMemoryReaderConditionTest, VersionNotThatOfAnActiveRegion_IsInactive_AndBack) {
    MappedReader const sut;
    region.raw().set<std::uint8_t>(qel::test::field::version, 0xFF);
    EXPECT_EQ(sut.condition(ANY_AGE), QelShmCondition::Inactive);
    region.activate();
    EXPECT_EQ(sut.condition(ANY_AGE), QelShmCondition::Active);
}

TEST_F(QelSharedMemoryReaderConditionTest, NameRemoved_IsGone_AnotherObjectUnderIt_IsReplaced) {
    MappedReader const sut;
    ::shm_unlink(name);
    EXPECT_EQ(sut.condition(ANY_AGE), QelShmCondition::Gone);
    ForgedRegion const next;
    next.activate();
    EXPECT_EQ(sut.condition(ANY_AGE), QelShmCondition::Replaced);
    ObjectLock const lock;
    EXPECT_EQ(sut.condition(ANY_AGE), QelShmCondition::Replaced);
    ::shm_unlink(name);
    EXPECT_EQ(sut.condition(ANY_AGE), QelShmCondition::Gone);
}

TEST_F(QelSharedMemoryReaderConditionTest, NamedPipeOrFolderInItsPlace_IsReplaced_AndDoesNotHoldUp) {
    MappedReader const sut;
    ::shm_unlink(name);
    ASSERT_EQ(::mkfifo("/dev/shm/QelSharedMemory", 0600), 0);
    EXPECT_EQ(sut.condition(ANY_AGE), QelShmCondition::Replaced);
    ASSERT_EQ(::unlink("/dev/shm/QelSharedMemory"), 0);
    ASSERT_EQ(::mkdir("/dev/shm/QelSharedMemory", 0700), 0);
    EXPECT_EQ(sut.condition(ANY_AGE), QelShmCondition::Replaced);
    ASSERT_EQ(::rmdir("/dev/shm/QelSharedMemory"), 0);
    ASSERT_EQ(::symlink("/etc/hostname", "/dev/shm/QelSharedMemory"), 0);
    EXPECT_EQ(sut.condition(ANY_AGE), QelShmCondition::Replaced);
}

TEST_F(QelSharedMemoryReaderConditionTest, ObjectThatWasNeverLocked_TellsNothingOfItsWriter) {
    MappedReader const sut;
    for (int look = 0; look < 3; ++look) {
        EXPECT_EQ(sut.condition(ANY_AGE), QelShmCondition::Active);
    }
}

TEST_F(QelSharedMemoryReaderConditionTest, ObjectLockedWhenMapped_IsGoneOnceItIsNot_AndBack) {
    std::optional<ObjectLock> lock;
    lock.emplace();
    MappedReader const sut;
    lock.reset();
    EXPECT_EQ(sut.condition(ANY_AGE), QelShmCondition::Gone);
    lock.emplace();
    EXPECT_EQ(sut.condition(ANY_AGE), QelShmCondition::Active);
}

TEST_F(QelSharedMemoryReaderConditionTest, ObjectLockedLater_IsGoneOnceItIsNot) {
    MappedReader const sut;
    {
        ObjectLock const lock;
        EXPECT_EQ(sut.condition(1min), QelShmCondition::Active);
    }
    EXPECT_EQ(sut.condition(1min), QelShmCondition::Gone);
    region.raw().set<std::uint8_t>(qel::test::field::version, 0xFF);
    EXPECT_EQ(sut.condition(1min), QelShmCondition::Gone);
    ObjectLock const lock;
    EXPECT_EQ(sut.condition(1min), QelShmCondition::Inactive);
}

TEST_F(QelSharedMemoryReaderConditionTest, LockOfSomebodyWhoMayOnlyRead_IsNoWriters) {
    MappedReader const sut;
    {
        ObjectLock const writer;
        EXPECT_EQ(sut.condition(1min), QelShmCondition::Active);
    }
    ObjectLock const reader(F_RDLCK);
    EXPECT_EQ(sut.condition(1min), QelShmCondition::Gone);
}

/// Lets the name lead to another object just before, or just after, the region is mapped.
class RacingReader : public QelSharedMemoryReader {
public:
    explicit RacingReader(bool before) : QelSharedMemoryReader(0, false), before_(before) {
        QelSharedMemoryReader::onInitialized();
    }
    void openShm() override {
        exchange(before_);
        QelSharedMemoryReader::openShm();
        exchange(!before_);
    }

private:
    void exchange(bool now) {
        if (now) {
            ::shm_unlink(name);
            next_ = std::make_unique<ForgedRegion>();
            next_->activate();
        }
    }

    bool before_;
    std::unique_ptr<ForgedRegion> next_;
};

TEST_F(QelSharedMemoryReaderConditionTest, ObjectExchangedWhileItIsMapped_IsUnknown_SoReplaced) {
    EXPECT_EQ(RacingReader(true).condition(ANY_AGE), QelShmCondition::Replaced);
    EXPECT_EQ(RacingReader(false).condition(ANY_AGE), QelShmCondition::Replaced);
}

TEST_F(QelSharedMemoryReaderConditionTest, Asked_LogsNothingAndLeavesNothing) {
    MappedReader const sut;
    qel::test::LogCapture const log;
    auto const before = qel::test::ownResources();
    for (int look = 0; look < 1000; ++look) {
        EXPECT_EQ(sut.condition(1min), QelShmCondition::Active);
    }
    EXPECT_EQ(qel::test::ownResources().descriptors, before.descriptors);
    EXPECT_EQ(qel::test::ownResources().regions, before.regions);
    EXPECT_TRUE(log.entries().empty());
}

} // namespace
