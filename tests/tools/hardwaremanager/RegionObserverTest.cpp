// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tools/hardwaremanager/RegionObserver.h"

#include "format/ValueKeys.h"
#include "inspect/image/FileDescriptor.h"

#include "tests/writer/WriterFixture.h"
#include "writer/WriterLock.h"

#include <gtest/gtest.h>

#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>

#include <cstring>
#include <memory>

namespace qel::tools {

namespace {

namespace key = shm::key;
using Change = RegionObserver::Change;
using Writer = shm::QelSharedMemoryWriter;

constexpr long long unitId = test::pointId(1, 0);
constexpr long long inletId = test::pointId(1, 0, 1);

test::Definitions unitAndInlet() {
    return {{unitId, {}}, {inletId, test::withKeys({key::voltage, key::current})}};
}

std::unique_ptr<Writer> activeUnit() {
    auto writer = std::make_unique<Writer>();
    writer->addStructure(unitAndInlet());
    writer->setActive();
    return writer;
}

/// An active region without points that no writer has open.
class ActiveObject {
public:
    ActiveObject() : descriptor_(::shm_open(shm::REGION_NAME, O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC, 0644)) {
        auto const region = std::make_unique<shm::record::Region>();
        std::memset(region.get(), shm::WIPE_BYTE, sizeof *region);
        region->root.version = shm::ACTIVE_VERSION;
        EXPECT_EQ(static_cast<ssize_t>(sizeof *region),
                  ::write(descriptor_.number(), region.get(), sizeof *region));
    }
    ~ActiveObject() { ::shm_unlink(shm::REGION_NAME); }
    ActiveObject(ActiveObject const&) = delete;
    ActiveObject& operator=(ActiveObject const&) = delete;

    /// By one byte.
    void cutOff() const { EXPECT_EQ(0, ::ftruncate(descriptor_.number(), sizeof(shm::record::Region) - 1)); }

private:
    inspect::FileDescriptor descriptor_;
};

} // namespace

TEST(RegionObserverTest, NoObject_IsNotActive) {
    RegionObserver sut;
    EXPECT_FALSE(sut.isActive());
    EXPECT_EQ(Change::None, sut.observe());
    EXPECT_FALSE(test::rawRegionExists());
}

TEST(RegionObserverTest, Region_IsActiveFromItsActivationToItsWritersEnd) {
    RegionObserver sut;
    auto writer = std::make_unique<Writer>();
    writer->addStructure(unitAndInlet());
    EXPECT_FALSE(sut.isActive());
    EXPECT_EQ(Change::None, sut.observe());

    writer->setActive();
    EXPECT_TRUE(sut.isActive());
    EXPECT_EQ(Change::Activated, sut.observe());
    EXPECT_EQ(2U, sut.pointCount());
    EXPECT_EQ(2U, sut.valueCount());
    EXPECT_EQ(Change::None, sut.observe());

    writer.reset();
    EXPECT_FALSE(sut.isActive());
    EXPECT_EQ(Change::Deactivated, sut.observe());
    EXPECT_EQ(Change::None, sut.observe());
}

TEST(RegionObserverTest, Structure_IsThatOfPointsAndValues) {
    RegionObserver sut;
    auto const writer = activeUnit();
    sut.observe();

    writer->updateMV(inletId | key::voltage, test::measured(230.0));
    writer->propagateStates();
    EXPECT_EQ(Change::None, sut.observe());

    writer->addMP(inletId, {{key::activePower, 0}}, 0);
    EXPECT_EQ(Change::StructureChanged, sut.observe());
    EXPECT_EQ(3U, sut.valueCount());
    EXPECT_EQ(Change::None, sut.observe());

    writer->removeStructure({{unitId, {}}});
    EXPECT_EQ(Change::StructureChanged, sut.observe());
    EXPECT_EQ(1U, sut.pointCount());
}

// The slots are other ones, as queues hand them out.
TEST(RegionObserverTest, PointThatLeftAndCameBackBetweenTwoLooks_IsAChange) {
    RegionObserver sut;
    auto const writer = activeUnit();
    sut.observe();

    writer->removeStructure({{unitId, {}}});
    writer->addStructure(unitAndInlet());

    EXPECT_EQ(Change::StructureChanged, sut.observe());
}

TEST(RegionObserverTest, NextObject_IsActivatedAnew) {
    RegionObserver sut;
    auto writer = activeUnit();
    sut.observe();
    writer.reset();
    writer = std::make_unique<Writer>();

    EXPECT_EQ(Change::Deactivated, sut.observe());
    writer->addStructure(unitAndInlet());
    writer->setActive();
    EXPECT_TRUE(sut.isActive());
    EXPECT_EQ(Change::Activated, sut.observe());
}

// A killed writer leaves its object, and the system releases its lock.
TEST(RegionObserverTest, RegionOfAKilledWriter_IsNotActiveUntilTheNextWriterActivatesIt) {
    ActiveObject const object;
    RegionObserver sut;
    {
        shm::WriterLock const lock;
        ASSERT_TRUE(lock.isHeld());
        EXPECT_EQ(Change::Activated, sut.observe());
    }
    EXPECT_FALSE(sut.isActive());
    EXPECT_EQ(Change::Deactivated, sut.observe());

    auto const writer = activeUnit();
    EXPECT_TRUE(sut.isActive());
    EXPECT_EQ(Change::Activated, sut.observe());
}

TEST(RegionObserverTest, NextObjectThatNobodyLocks_IsActive) {
    RegionObserver sut;
    auto writer = activeUnit();
    ASSERT_TRUE(sut.isActive());
    writer.reset();
    ActiveObject const object;
    EXPECT_TRUE(sut.isActive()) << "the former one was locked";
}

TEST(RegionObserverTest, RegionThatNobodyWasSeenToLock_IsActive) {
    ActiveObject const object;
    RegionObserver sut;
    EXPECT_TRUE(sut.isActive());
    EXPECT_EQ(Change::Activated, sut.observe());
    EXPECT_EQ(0U, sut.pointCount());

    object.cutOff();
    EXPECT_FALSE(sut.isActive());
    EXPECT_EQ(Change::Deactivated, sut.observe());
}

} // namespace qel::tools
