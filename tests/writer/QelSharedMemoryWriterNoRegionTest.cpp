// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

// A writer that has no region: it could not be created, or was closed.

#include "writer/QelSharedMemoryWriter.h"

#include "format/ValueKeys.h"
#include "region/Exceptions.h"
#include "tests/writer/WriterFixture.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <sched.h>
#include <sys/mount.h>

#include <cerrno>
#include <cstring>
#include <system_error>

namespace qel::test {

namespace {

namespace key = shm::key;
using log4cpp::Priority;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr long long device = pointId(1, 0);

/// A /dev/shm of 64 KiB, seen by this thread alone: the region does not fit in.
class SmallSharedMemory {
public:
    SmallSharedMemory() {
        if (::unshare(CLONE_NEWNS) != 0 || ::mount("none", "/dev/shm", nullptr, MS_PRIVATE, nullptr) != 0 ||
            ::mount("tmpfs", "/dev/shm", "tmpfs", 0, "size=64k") != 0) {
            throw std::system_error(errno, std::generic_category(), "small /dev/shm");
        }
    }
    ~SmallSharedMemory() { ::umount("/dev/shm"); }
    SmallSharedMemory(SmallSharedMemory const&) = delete;
    SmallSharedMemory& operator=(SmallSharedMemory const&) = delete;
};

LogEntry notMapped(std::string const& operation) {
    return writerLine(Priority::ERROR, operation + ": the shared memory is not mapped");
}

} // namespace

TEST(QelSharedMemoryWriterNoSpaceTest, Constructor_LogsTheFailure_AndHasNoRegion) {
    SmallSharedMemory const small;
    LogCapture const log("qel.shm.access", Priority::ERROR);

    ExposedWriter sut;

    EXPECT_THAT(log.entries(),
                ElementsAre(LogEntry{"qel.shm.access", Priority::ERROR,
                                     std::string("errorShm: failed to resize/map the shared memory, ") +
                                         std::strerror(ENOSPC)}));
    EXPECT_EQ(nullptr, sut.region());
    EXPECT_FALSE(sut.root());
    EXPECT_EQ(0U, sut.root().dvcCnt());
    EXPECT_FALSE(rawRegionExists());
}

TEST(QelSharedMemoryWriterNoSpaceTest, EveryOperation_ReportsAndTouchesNothing) {
    SmallSharedMemory const small;
    ExposedWriter sut;
    WriterLog log(Priority::ERROR);

    EXPECT_EQ(rawNone, sut.addMP(device, {{key::voltage, 0}}, rawNone));
    EXPECT_THAT(log.take(), ElementsAre(notMapped("addMP")));

    EXPECT_THROW(sut.addStructure({{device, withKeys({key::voltage})}}), ex::InvalidSensorIdException);
    EXPECT_THAT(log.take(),
                ElementsAre(notMapped("addMP"),
                            writerLine(Priority::ERROR, "bailout: failed to handle MP 0x100ffffffff0000")));

    EXPECT_THROW(sut.modifyStructure({device}), ex::InvalidSensorIdException);
    log.take();

    EXPECT_FALSE(sut.modifyStructure({}));
    EXPECT_THAT(log.take(), IsEmpty());

    sut.setActive();
    EXPECT_THAT(log.take(), ElementsAre(notMapped("setActive")));

    sut.propagateStates();
    EXPECT_THAT(log.take(), ElementsAre(notMapped("propagateStates")));

    EXPECT_FALSE(sut.updateMV(device | key::voltage, measured(1.0)));
    EXPECT_THAT(sut.injectTypes({{device, 1}}), IsEmpty());
    EXPECT_EQ("", sut.tree());
    EXPECT_THAT(log.take(), IsEmpty());
}

TEST(QelSharedMemoryWriterClosedTest, AfterCloseShm_KnownPointsAreOutOfReach) {
    ExposedWriter sut;
    sut.addStructure({{device, withKeys({key::voltage})}});
    sut.closeShm();
    WriterLog log(Priority::WARN);

    EXPECT_FALSE(sut.updateMV(device | key::voltage, measured(1.0)));
    EXPECT_FALSE(sut.updateMV(device | key::fuseState, measured(1.0)));
    EXPECT_THAT(sut.injectTypes({{device, 1}}), IsEmpty());
    EXPECT_FALSE(sut.addStructure({{device, withKeys({key::voltage})}}));
    EXPECT_THAT(log.take(), IsEmpty());

    EXPECT_EQ(rawNone, sut.addMP(device, {{key::peakVoltage, 0}}, rawNone));
    EXPECT_THAT(log.take(), ElementsAre(notMapped("addMP")));

    EXPECT_FALSE(sut.removeStructure({}));
    EXPECT_THAT(log.take(), IsEmpty());

    sut.setActive();
    sut.propagateStates();
    EXPECT_THAT(log.take(), ElementsAre(notMapped("setActive"), notMapped("propagateStates")));
    EXPECT_FALSE(rawRegionExists());
}

} // namespace qel::test
