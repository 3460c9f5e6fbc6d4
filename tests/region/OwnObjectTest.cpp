// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

// What stands under the region's name when a writer starts is not its own: the writer takes the name for an object of its
// own, and leaves alone what stood there. Owners are made by chown, for which the tests need root.

#include "region/OwnObject.h"

#include "tests/region/FailingCall.h"
#include "tests/region/RegionObject.h"
#include "tests/support/LogCapture.h"
#include "tests/support/RawRegion.h"
#include "tests/support/SocketFile.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fcntl.h>
#include <sys/fsuid.h>
#include <sys/stat.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iterator>
#include <ostream>
#include <string>
#include <thread>
#include <vector>

namespace qel::test {

namespace {

namespace fs = std::filesystem;
using log4cpp::Priority;
using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::IsEmpty;

constexpr uid_t nobody = 65534;

LogEntry notOpened(int number) {
    return error(std::string("errorShm: failed to open the shared memory file, ") + std::strerror(number));
}

void makeFileOf(uid_t owner, mode_t mode, char const* path = objectFile) {
    makeFile(rawRegionSize, path);
    ASSERT_EQ(0, ::chown(path, owner, static_cast<gid_t>(-1)));
    ASSERT_EQ(0, ::chmod(path, mode));
}

void makeOwnFile(mode_t mode, char const* path = objectFile) {
    makeFileOf(::geteuid(), mode, path);
}

class OwnObjectTest : public RegionObjectTest {
protected:
    /// That the writer has a region, in an object of its own with mode 0644.
    static void expectOwn(Writer const& writer) {
        ASSERT_TRUE(writer.root());
        auto const status = statusOf();
        EXPECT_TRUE(S_ISREG(status.st_mode));
        EXPECT_EQ(::geteuid(), status.st_uid);
        EXPECT_EQ(0644U, status.st_mode & 07777U);
        EXPECT_EQ(1U, status.st_nlink);
        EXPECT_EQ(static_cast<long>(rawRegionSize), rawRegionSizeNow());
    }

    LogCapture log{"qel.shm.access", Priority::WARN};
};

struct Foreign {
    std::string name;
    std::function<void()> make;
    std::string text; ///< of the line

    friend std::ostream& operator<<(std::ostream& out, Foreign const& foreign) { return out << foreign.name; }
};

std::vector<Foreign> const& foreigners() {
    static auto const* const all = new std::vector<Foreign>{
        {"AnotherUser", [] { makeFileOf(nobody, 0644); }, "a file of user 0xfffe"},
        {"AnotherUserForAll", [] { makeFileOf(nobody, 0666); },
         "a file of user 0xfffe, which its group may write, which others may write"},
        {"GroupMayWrite", [] { makeOwnFile(0664); }, "a file of user 0, which its group may write"},
        {"OthersMayWrite", [] { makeOwnFile(0646); }, "a file of user 0, which others may write"},
        {"HardLink",
         [] {
             makeOwnFile(0644, linkedFile);
             fs::create_hard_link(linkedFile, objectFile);
         },
         "a file of user 0, which has 0x2 names"},
        {"HardLinkOfAnotherUser",
         [] {
             makeFileOf(nobody, 0644, linkedFile);
             fs::create_hard_link(linkedFile, objectFile);
         },
         "a file of user 0xfffe, which has 0x2 names"},
        {"SymbolicLink",
         [] {
             makeOwnFile(0644, linkedFile);
             fs::create_symlink(linkedFile, objectFile);
             ASSERT_EQ(0, ::lchown(objectFile, nobody, nobody));
         },
         "a symbolic link of user 0xfffe"},
        {"DanglingLink", [] { fs::create_symlink(linkedFile, objectFile); }, "a symbolic link of user 0"},
        {"Pipe", [] { ASSERT_EQ(0, ::mkfifo(objectFile, 0644)); }, "a named pipe of user 0"},
        {"Socket", [] { makeSocket(objectFile); }, "a socket of user 0"},
        {"Device", [] { ASSERT_EQ(0, ::mknod(objectFile, S_IFCHR | 0644U, 0)); }, "a device of user 0"},
    };
    return *all;
}

class OwnObjectForeignTest : public OwnObjectTest, public testing::WithParamInterface<Foreign> {};

TEST_P(OwnObjectForeignTest, Writer_ReplacesIt_AndLeavesAloneWhatItWas) {
    if (::geteuid() != 0) {
        GTEST_SKIP() << "only root can make objects of others";
    }
    GetParam().make();
    auto const former = statusOf();
    bool const isLinked = fs::exists(linkedFile);
    {
        Writer sut;
        sut.openShm();
        EXPECT_THAT(log.take(), ElementsAre(removing(GetParam().text)));
        expectOwn(sut);
        EXPECT_NE(former.st_ino, statusOf().st_ino);
        if (isLinked) {
            EXPECT_TRUE(isUntouched(linkedFile));
        }
        EXPECT_EQ(isLinked, fs::exists(linkedFile));
    }
    EXPECT_FALSE(rawRegionExists());
    EXPECT_THAT(log.entries(), IsEmpty()) << "at the end";
}

INSTANTIATE_TEST_SUITE_P(Of, OwnObjectForeignTest, testing::ValuesIn(foreigners()),
                         [](auto const& instance) { return instance.param.name; });

TEST_F(OwnObjectTest, OwnObjectOfANarrowerMode_IsReused) {
    for (mode_t const mode : {0644U, 0640U, 0600U, 0755U}) {
        makeOwnFile(mode);
        auto const former = statusOf();
        Writer sut;
        sut.openShm();
        ASSERT_TRUE(sut.root());
        EXPECT_EQ(former.st_ino, statusOf().st_ino);
        EXPECT_EQ(mode, statusOf().st_mode & 07777U);
        EXPECT_THAT(log.entries(), IsEmpty());
    }
}

TEST_F(OwnObjectTest, ObjectOfAnotherUserThatIsHeldOpen_IsNeitherWipedNorResized) {
    makeFileOf(nobody, 0666);
    int const fd = ::open(objectFile, O_RDWR | O_CLOEXEC);
    fs::resize_file(objectFile, 5);
    Writer sut;
    sut.openShm();
    struct stat status = {};
    ASSERT_EQ(0, ::fstat(fd, &status));
    EXPECT_EQ(5, status.st_size);
    char first = 0;
    EXPECT_EQ(1, ::pread(fd, &first, 1, 0));
    EXPECT_EQ('\x5A', first);
    ASSERT_EQ(0, ::ftruncate(fd, 0));
    ::close(fd);
    expectOwn(sut);
}

TEST_F(OwnObjectTest, OpeningThatIsRefusedForAnotherUsersObject_IsThatObjectRemoved) {
    // What the kernel says with fs.protected_regular, and of leases.
    for (int const refusal : {EACCES, EWOULDBLOCK}) {
        makeFileOf(nobody, 0666);
        FailingCall const failing(Call::ShmOpen, refusal);
        Writer sut;
        sut.openShm();
        EXPECT_EQ(0, FailingCall::left());
        EXPECT_THAT(log.take(), ElementsAre(removing("a file of user 0xfffe, which its group may write, "
                                                     "which others may write")));
        expectOwn(sut);
    }
}

TEST_F(OwnObjectTest, OpeningThatIsRefusedForAnOwnObject_Fails) {
    makeOwnFile(0644);
    FailingCall const failing(Call::ShmOpen, EACCES);
    EXPECT_EQ(-1, shm::openOwnObject());
    EXPECT_EQ(EACCES, errno);
    EXPECT_THAT(log.entries(), IsEmpty());
    EXPECT_TRUE(isUntouched(objectFile));
}

TEST_F(OwnObjectTest, ObjectThatCannotBeLookedAt_IsReplaced) {
    makeOwnFile(0644);
    auto const former = statusOf();
    FailingCall const failing(Call::Fstat, EIO);
    Writer sut;
    sut.openShm();
    EXPECT_THAT(log.entries(),
                ElementsAre(removing("the system does not tell what it is, Input/output error")));
    expectOwn(sut);
    EXPECT_NE(former.st_ino, statusOf().st_ino);
}

TEST_F(OwnObjectTest, NameThatCannotBeRemoved_IsAFailedOpening) {
    makeFileOf(nobody, 0644);
    FailingCall const failing(Call::ShmUnlink, EPERM);
    EXPECT_EQ(-1, shm::openOwnObject());
    EXPECT_EQ(EPERM, errno);
    EXPECT_THAT(log.entries(), ElementsAre(removing("a file of user 0xfffe")));
    EXPECT_TRUE(isUntouched(objectFile));
}

TEST_F(OwnObjectTest, DirectoryUnderTheName_IsAFailedOpening) {
    fs::create_directory(objectFile);
    Writer sut;
    sut.openShm();
    EXPECT_FALSE(sut.root());
    EXPECT_THAT(log.entries(),
                ElementsAreArray(std::vector<LogEntry>{
                    removing("a directory of user 0"), notOpened(EISDIR),
                    error("errorShm: failed to resize/map the shared memory, Bad file descriptor"),
                    error("unlinkShm: failed to unlink the shared memory, Is a directory"),
                    error("errorShm: failed to resize/map the shared memory, Bad file descriptor"),
                    error("unlinkShm: failed to unlink the shared memory, Is a directory")}));
    EXPECT_TRUE(fs::is_directory(objectFile));
}

TEST_F(OwnObjectTest, CreationThatFails_IsAFailedOpening) {
    makeOwnFile(0664);
    FailingCall const failing(Call::ShmOpen, ENOSPC, 1, 1);
    EXPECT_EQ(-1, shm::openOwnObject());
    EXPECT_EQ(ENOSPC, errno);
    EXPECT_EQ(0, FailingCall::left());
}

TEST_F(OwnObjectTest, NameThatIsTakenAnewEachTime_EndsTheOpeningWithOneLine) {
    makeFileOf(nobody, 0644);
    constexpr int many = 1000000;
    FailingCall const failing(Call::ShmUnlink, 0, many); // as if somebody put it back at once
    EXPECT_EQ(-1, shm::openOwnObject());
    EXPECT_EQ(EEXIST, errno);
    EXPECT_LT(many - FailingCall::left(), 10000) << "attempts";
    EXPECT_THAT(log.entries(), ElementsAre(removing("a file of user 0xfffe")));
    EXPECT_TRUE(isUntouched(objectFile));
}

TEST_F(OwnObjectTest, SomebodyWhoPutsHisObjectBackInALoop_NeverHasItAdopted) {
    std::atomic<bool> stop{false};
    std::thread somebody([&] {
        ::setfsuid(nobody); // of this thread alone
        while (!stop) {
            ::close(::open(objectFile, O_CREAT | O_EXCL | O_RDWR | O_CLOEXEC, 0666));
        }
        ::setfsuid(0);
    });
    int opened = 0;
    for (int round = 0; round < 100; ++round) {
        int const fd = shm::openOwnObject();
        if (fd < 0) {
            EXPECT_EQ(EEXIST, errno);
            continue;
        }
        ++opened;
        struct stat status = {};
        EXPECT_EQ(0, ::fstat(fd, &status));
        EXPECT_EQ(0U, status.st_uid);
        EXPECT_EQ(0644U, status.st_mode & 07777U);
        ::close(fd);
        fs::remove(objectFile);
    }
    stop = true;
    somebody.join();
    RecordProperty("opened", opened);
}

} // namespace

} // namespace qel::test
