// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "writer/WriterLock.h"

#include "format/ValueKeys.h"
#include "tests/writer/WriterFixture.h"
#include "writer/QelSharedMemoryWriter.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <csignal>
#include <memory>

namespace qel::test {

namespace {

using log4cpp::Priority;
using shm::WriterLock;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr char const* objectFile = "/dev/shm/QelSharedMemory";

LogEntry anotherWriter() {
    return writerLine(Priority::WARN, "QelSharedMemoryWriter: another writer is alive and writes into the "
                                      "same shared memory");
}

/// What a program that may only read is told when it asks for a lock of that type: the type that it meets.
int lockMetBy(short type) {
    int const fd = ::shm_open("QelSharedMemory", O_RDONLY | O_CLOEXEC, 0);
    struct flock whole = {};
    whole.l_type = type;
    whole.l_whence = SEEK_SET;
    int const result = ::fcntl(fd, F_OFD_GETLK, &whole);
    ::close(fd);
    return result == 0 ? whole.l_type : -1;
}

/// A process that holds something until the test lets it go, or kills it.
class Holder {
public:
    template <typename Hold>
    explicit Holder(Hold const& hold) {
        std::array<int, 2> ready{};
        std::array<int, 2> end{};
        if (::pipe2(ready.data(), O_CLOEXEC) != 0 || ::pipe2(end.data(), O_CLOEXEC) != 0) {
            return;
        }
        child_ = ::fork();
        char byte = 0;
        if (child_ == 0) {
            ::close(end[1]);
            [[maybe_unused]] auto const held = hold();
            ::write(ready[1], &byte, 1) == 1 && ::read(end[0], &byte, 1) == 1 ? ::_exit(1) : ::_exit(0);
        }
        ::close(ready[1]);
        ::close(end[0]);
        end_ = end[1];
        isReady_ = ::read(ready[0], &byte, 1) == 1;
        ::close(ready[0]);
    }
    ~Holder() { finish(); }
    Holder(Holder const&) = delete;
    Holder& operator=(Holder const&) = delete;

    bool isReady() const { return isReady_; }

    void kill() {
        ::kill(child_, SIGKILL);
        finish();
    }

    /// Ends the process without what exit() does.
    void finish() {
        if (child_ > 0) {
            ::close(end_);
            ::waitpid(child_, nullptr, 0);
            child_ = -1;
        }
    }

private:
    pid_t child_ = -1;
    int end_ = -1;
    bool isReady_ = false;
};

int openDescriptors() {
    int count = 0;
    for (int fd = 0; fd < 1024; ++fd) {
        count += ::fcntl(fd, F_GETFD) != -1 ? 1 : 0;
    }
    return count;
}

class WriterLockTest : public testing::Test {
protected:
    ~WriterLockTest() override { ::unlink(objectFile); }

    LogCapture log{"qel.shm.access", Priority::WARN};
};

} // namespace

TEST_F(WriterLockTest, WithoutAnObject_ThereIsNoLockAndNoneIsMade) {
    auto const before = openDescriptors();
    WriterLock const sut;
    EXPECT_FALSE(sut.isHeld());
    EXPECT_FALSE(sut.isOfAnotherWriter());
    EXPECT_FALSE(rawRegionExists());
    EXPECT_EQ(before, openDescriptors());
}

TEST_F(WriterLockTest, First_HoldsItAndTheSecondIsToldSo) {
    RawRegion const object(true);
    WriterLock const first;
    EXPECT_TRUE(first.isHeld());
    EXPECT_FALSE(first.isOfAnotherWriter());
    auto const before = openDescriptors();
    WriterLock const second;
    EXPECT_FALSE(second.isHeld());
    EXPECT_TRUE(second.isOfAnotherWriter());
    EXPECT_EQ(before, openDescriptors()) << "what it does not hold it does not keep open";
}

TEST_F(WriterLockTest, End_GivesItBackToTheNext_NotToWhoWentWithout) {
    RawRegion const object(true);
    auto first = std::make_unique<WriterLock>();
    WriterLock const second;
    first.reset();
    EXPECT_FALSE(second.isHeld());
    EXPECT_EQ(F_UNLCK, lockMetBy(F_WRLCK));
    EXPECT_TRUE(WriterLock().isHeld());
}

TEST_F(WriterLockTest, WhoMayOnlyRead_SeesThatAWriterLives) {
    RawRegion const object(true);
    EXPECT_EQ(F_UNLCK, lockMetBy(F_WRLCK));
    EXPECT_EQ(F_UNLCK, lockMetBy(F_RDLCK));
    WriterLock const sut;
    EXPECT_EQ(F_WRLCK, lockMetBy(F_WRLCK));
    EXPECT_EQ(F_WRLCK, lockMetBy(F_RDLCK));
}

TEST_F(WriterLockTest, ReadLockOfSomebody_IsNoWriter) {
    RawRegion const object(true);
    int const reading = ::open(objectFile, O_RDONLY | O_CLOEXEC);
    struct flock whole = {};
    whole.l_type = F_RDLCK;
    ASSERT_EQ(0, ::fcntl(reading, F_OFD_SETLK, &whole));
    WriterLock const sut;
    EXPECT_FALSE(sut.isHeld());
    EXPECT_FALSE(sut.isOfAnotherWriter());
    EXPECT_EQ(F_UNLCK, lockMetBy(F_RDLCK)) << "asked like this, a read lock does not look like a writer";
    ::close(reading);
}

TEST_F(WriterLockTest, NamedPipeUnderTheName_HoldsNobodyUp) {
    ASSERT_EQ(0, ::mkfifo(objectFile, 0644));
    WriterLock const sut;
    EXPECT_FALSE(sut.isOfAnotherWriter());
}

TEST_F(WriterLockTest, Descriptor_IsNotInheritedByAProgramThatIsStarted) {
    RawRegion const object(true);
    struct stat wanted = {};
    ASSERT_EQ(0, ::stat(objectFile, &wanted));
    WriterLock const sut;
    int found = 0;
    for (int fd = 0; fd < 1024; ++fd) {
        struct stat status = {};
        if (::fstat(fd, &status) == 0 && status.st_ino == wanted.st_ino && status.st_dev == wanted.st_dev) {
            ++found;
            EXPECT_EQ(FD_CLOEXEC, ::fcntl(fd, F_GETFD));
        }
    }
    EXPECT_EQ(1, found);
}

TEST_F(WriterLockTest, ForkedChild_SharesItUpToItsOwnEnd) {
    RawRegion const object(true);
    auto sut = std::make_unique<WriterLock>();
    Holder child([] { return 0; });
    ASSERT_TRUE(child.isReady());
    sut.reset();
    EXPECT_TRUE(WriterLock().isOfAnotherWriter());
    child.finish();
    EXPECT_TRUE(WriterLock().isHeld());
}

TEST_F(WriterLockTest, ForkedChildThatEnds_LeavesItToItsParent) {
    RawRegion const object(true);
    WriterLock const sut;
    Holder child([] { return 0; });
    ASSERT_TRUE(child.isReady());
    child.finish();
    EXPECT_TRUE(WriterLock().isOfAnotherWriter());
}

// As the writer uses it

TEST_F(WriterLockTest, Writer_HoldsItForItsLife) {
    RawRegion const object(true);
    {
        shm::QelSharedMemoryWriter const writer;
        EXPECT_TRUE(WriterLock().isOfAnotherWriter());
        EXPECT_EQ(F_WRLCK, lockMetBy(F_RDLCK));
    }
    EXPECT_THAT(log.entries(), IsEmpty());
    EXPECT_FALSE(rawRegionExists());
}

TEST_F(WriterLockTest, SecondWriterOfTheSameProcess_SaysThatOneIsAlive_AndWorksAllTheSame) {
    shm::QelSharedMemoryWriter first;
    EXPECT_THAT(log.entries(), IsEmpty());
    shm::QelSharedMemoryWriter second;
    EXPECT_THAT(log.take(), ElementsAre(anotherWriter()));
    EXPECT_TRUE(second.addStructure({{pointId(1, 0), withKeys({shm::key::voltage})}}));
    second.setActive();
    EXPECT_TRUE(second.updateMV(pointId(1, 0) | shm::key::voltage, measured(230.5)));
    EXPECT_EQ(32, first.root()->version) << "both have the same object";
}

TEST_F(WriterLockTest, WriterBesideThatOfAnotherProcess_SaysSo) {
    Holder other([] { return std::make_unique<shm::QelSharedMemoryWriter>(); });
    ASSERT_TRUE(other.isReady());
    { shm::QelSharedMemoryWriter const second; }
    EXPECT_THAT(log.take(), ElementsAre(anotherWriter()));
}

TEST_F(WriterLockTest, WriterAfterAKilledOne_TakesTheObjectOverWithoutAWord) {
    Holder killed([] { return std::make_unique<shm::QelSharedMemoryWriter>(); });
    ASSERT_TRUE(killed.isReady());
    killed.kill();
    ASSERT_TRUE(rawRegionExists());
    shm::QelSharedMemoryWriter const next;
    EXPECT_THAT(log.entries(), IsEmpty());
    EXPECT_EQ(F_WRLCK, lockMetBy(F_WRLCK));
}

} // namespace qel::test
