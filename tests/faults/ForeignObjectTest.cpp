// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

// Somebody without rights is at the region's name before the writer, which runs as root. What holds must hold whatever
// fs.protected_regular says: with 1 or 2 the kernel refuses the writer's opening, with 0 it opens what is not the
// writer's. The setting is the whole machine's, so these tests leave it as it is; OwnObjectTest shows the refusal with
// any setting.

#include "tests/faults/FaultLines.h"
#include "tests/faults/NobodysObject.h"
#include "tests/support/RawRegion.h"
#include "writer/QelSharedMemoryWriter.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <cstdint>
#include <cstring>
#include <filesystem>
#include <vector>

namespace {

namespace fs = std::filesystem;
using qel::test::LogCapture;
using qel::test::NobodysObject;
using qel::test::notMapped;
using qel::test::notOpened;
using qel::test::notOurs;
using qel::test::notUnlinked;
using qel::test::RawRegion;
using qel::test::rawRegionExists;
using qel::test::rawRegionSize;
using qel::test::rawRegionSizeNow;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr char const* objectFile = "/dev/shm/QelSharedMemory";
constexpr long long unit = 0x0100FFFFFFFF0000;

class MeasuredWriter : public shm::QelSharedMemoryWriter {
public:
    using QelSharedMemoryWriter::region;
};

class ForeignObject : public testing::Test {
protected:
    ~ForeignObject() override { fs::remove_all(objectFile); }

    LogCapture log{"qel.shm.access", log4cpp::Priority::WARN};
};

TEST_F(ForeignObject, IsReplaced_AndItsOwnerNeitherForgesNorEndsTheWriter) {
    for (mode_t const mode : {0666U, 0644U, 0600U}) {
        NobodysObject const foreign(mode);
        if (!foreign.succeeded()) {
            GTEST_SKIP() << "there is no other user";
        }
        {
            MeasuredWriter sut;
            EXPECT_THAT(log.take(),
                        ElementsAre(notOurs(mode == 0666 ? "a file of user 0xfffe, which its group may "
                                                           "write, which others may write"
                                                         : "a file of user 0xfffe")));
            ASSERT_TRUE(sut.root());
            EXPECT_TRUE(sut.addStructure({{unit, {}}}));
            sut.setActive();

            ASSERT_TRUE(foreign.forge());
            ASSERT_TRUE(foreign.truncate());
            EXPECT_FALSE(foreign.opensForWriting());

            EXPECT_EQ(eStatus_On, sut.root()->state);
            EXPECT_EQ(static_cast<long>(rawRegionSize), rawRegionSizeNow());
            std::memset(sut.region(), 0xFF, rawRegionSize); // each page once: no SIGBUS
        }
        EXPECT_FALSE(rawRegionExists());
        EXPECT_THAT(log.entries(), IsEmpty()) << "at the end";
    }
}

TEST_F(ForeignObject, IsNotThereAgainAfterACrashOfTheWriterThatReplacedIt) {
    NobodysObject const foreign(0666);
    if (!foreign.succeeded()) {
        GTEST_SKIP() << "there is no other user";
    }
    pid_t const child = ::fork();
    if (child == 0) {
        shm::QelSharedMemoryWriter const crashing;
        ::_exit(0);
    }
    ASSERT_EQ(child, ::waitpid(child, nullptr, 0));
    struct stat left = {};
    ASSERT_EQ(0, ::stat(objectFile, &left));
    EXPECT_EQ(::geteuid(), left.st_uid);

    MeasuredWriter const next;
    EXPECT_TRUE(next.root());
    struct stat reused = {};
    ASSERT_EQ(0, ::stat(objectFile, &reused));
    EXPECT_EQ(left.st_ino, reused.st_ino);
    EXPECT_THAT(log.entries(), IsEmpty());
}

TEST_F(ForeignObject, OfTheRightfulWriter_StaysWhenSomebodyWithoutRightsStartsAnotherOne) {
    MeasuredWriter const rightful;
    ASSERT_TRUE(rightful.root());
    pid_t const child = ::fork();
    if (child == 0) {
        bool const isNobody = ::setresgid(65534, 65534, 65534) == 0 && ::setresuid(65534, 65534, 65534) == 0;
        class Writer : public shm::QelSharedMemoryAccess {
        public:
            Writer() : QelSharedMemoryAccess(shm::ShmAccess::Write) {}
        };
        Writer writer;
        log.take();
        writer.openShm();
        using testing::Matches;
        bool const isTold =
            Matches(ElementsAre(notOurs("a file of user 0"), notOpened(EACCES), notMapped(EBADF),
                                notUnlinked(EACCES), notMapped(EBADF), notUnlinked(EACCES)))(log.take());
        ::_exit(!isNobody ? 77 : isTold && !writer.root() ? 0 : 1);
    }
    int status = -1;
    ASSERT_EQ(child, ::waitpid(child, &status, 0));
    if (WEXITSTATUS(status) == 77) {
        GTEST_SKIP() << "there is no other user";
    }
    EXPECT_EQ(0, status);
    EXPECT_EQ(static_cast<long>(rawRegionSize), rawRegionSizeNow());
    EXPECT_EQ(std::vector<std::uint8_t>(rawRegionSize, 0xFF), RawRegion().copy());
}

} // namespace
