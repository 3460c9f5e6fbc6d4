// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "region/QelSharedMemoryAccess.h"

#include "tests/region/FailingCall.h"
#include "tests/region/RegionObject.h"
#include "tests/support/ForkedChild.h"
#include "tests/support/LogCapture.h"
#include "tests/support/RawRegion.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/mount.h>
#include <sys/stat.h>
#include <sys/sysmacros.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <cstring>
#include <filesystem>
#include <functional>
#include <locale>
#include <memory>
#include <sstream>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

namespace qel::test {

namespace {

namespace fs = std::filesystem;
using shm::ShmAccess;
using shm::ShmError;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

bool isMapped(void const* address) {
    unsigned char resident = 0;
    return ::mincore(const_cast<void*>(address), 1, &resident) == 0;
}

/// Whether the kernel could write there on this process's behalf.
bool isWritable(void const* address) {
    int const zeros = ::open("/dev/zero", O_RDONLY);
    bool const written = ::read(zeros, const_cast<void*>(address), 1) == 1;
    ::close(zeros);
    return written;
}

int openDescriptors() {
    int count = 0;
    for (int fd = 0; fd < 1024; ++fd) {
        count += ::fcntl(fd, F_GETFD) != -1 ? 1 : 0;
    }
    return count;
}

bool isWiped(std::vector<std::uint8_t> const& bytes) {
    return std::all_of(bytes.begin(), bytes.end(), [](auto byte) { return byte == 0xFF; });
}

class QelSharedMemoryAccessTest : public RegionObjectTest {
protected:
    LogCapture log;
};

// Construction and destruction

TEST_F(QelSharedMemoryAccessTest, Type_HasAVirtualDestructorAndIsNotCopied) {
    static_assert(std::has_virtual_destructor_v<shm::QelSharedMemoryAccess>);
    static_assert(!std::is_copy_constructible_v<shm::QelSharedMemoryAccess>);
    static_assert(sizeof(ShmAccess) == 1 && sizeof(ShmError) == 1);
    static_assert(static_cast<int>(ShmAccess::Read) == 0 && static_cast<int>(ShmAccess::Write) == 1);
    static_assert(static_cast<int>(ShmError::Open) == 0 && static_cast<int>(ShmError::Resize) == 1 &&
                  static_cast<int>(ShmError::Map) == 2);
    // Virtual table, access mode, region pointer.
    static_assert(sizeof(shm::QelSharedMemoryAccess) == 3 * sizeof(void*));
}

TEST_F(QelSharedMemoryAccessTest, Construction_OpensNothingAndLogsTheStart) {
    for (auto const access : {ShmAccess::Read, ShmAccess::Write}) {
        log.take();
        Access const sut(access);
        EXPECT_THAT(log.take(), ElementsAre(info("QelSharedMemoryAccess: start")));
        EXPECT_EQ(sut.region(), nullptr);
        EXPECT_FALSE(rawRegionExists());
    }
}

TEST_F(QelSharedMemoryAccessTest, Destruction_LogsTheEnd) {
    { Reader const sut; }
    EXPECT_THAT(log.entries(),
                ElementsAre(info("QelSharedMemoryAccess: start"), info("~QelSharedMemoryAccess: done")));
}

TEST_F(QelSharedMemoryAccessTest, Destruction_OfAWriterUnmapsAndRemovesTheObject) {
    void const* address = nullptr;
    {
        Writer sut;
        sut.openShm();
        address = sut.region();
        EXPECT_TRUE(isMapped(address));
    }
    EXPECT_FALSE(isMapped(address));
    EXPECT_FALSE(rawRegionExists());
    EXPECT_THAT(log.entries(),
                ElementsAre(info("QelSharedMemoryAccess: start"), info("~QelSharedMemoryAccess: done")));
}

TEST_F(QelSharedMemoryAccessTest, Destruction_OfAReaderUnmapsAndLeavesTheObject) {
    RawRegion const raw(true);
    void const* address = nullptr;
    {
        Reader sut;
        sut.openShm();
        address = sut.region();
        EXPECT_TRUE(isMapped(address));
    }
    EXPECT_FALSE(isMapped(address));
    EXPECT_TRUE(rawRegionExists());
}

TEST_F(QelSharedMemoryAccessTest, Destruction_ThroughTheBaseIsThatOfTheDerivedClass) {
    std::unique_ptr<shm::QelSharedMemoryAccess> sut = std::make_unique<Writer>();
    sut->openShm();
    sut.reset();
    EXPECT_FALSE(rawRegionExists());
}

TEST_F(QelSharedMemoryAccessTest, OpenShm_IsVirtual) {
    class Counting : public Reader {
    public:
        void openShm() override { ++opened; }
        int opened = 0;
    };
    Counting sut;
    static_cast<shm::QelSharedMemoryAccess&>(sut).openShm();
    EXPECT_EQ(sut.opened, 1);
}

// Opening as a writer

TEST_F(QelSharedMemoryAccessTest, OpenShm_WriterCreatesAWipedObject) {
    Writer sut;
    log.take();
    sut.openShm();
    ASSERT_NE(sut.region(), nullptr);
    EXPECT_EQ(rawRegionSizeNow(), 320032);
    EXPECT_TRUE(isWiped(RawRegion().copy()));
    EXPECT_TRUE(fs::exists(objectFile));
    EXPECT_THAT(log.entries(), IsEmpty());
    EXPECT_EQ(sut.root()->version, 0xFF);
    EXPECT_EQ(sut.root().dvcCnt(), 0U);
    EXPECT_EQ(sut.root().grpCnt(), 0U);
}

TEST_F(QelSharedMemoryAccessTest, OpenShm_WriterCreatesTheObjectReadableByAllAndWritableByItsOwner) {
    auto const former = ::umask(0);
    Writer sut;
    sut.openShm();
    ::umask(former);
    auto const status = statusOf();
    EXPECT_EQ(status.st_mode & 07777U, 0644U);
}

TEST_F(QelSharedMemoryAccessTest, OpenShm_WriterReusesAndWipesADirtyObject) {
    makeFile();
    RawRegion const raw;
    auto const before = statusOf();
    Writer sut;
    sut.openShm();
    auto const after = statusOf();
    EXPECT_EQ(before.st_ino, after.st_ino);
    EXPECT_TRUE(isWiped(raw.copy())) << "as seen by who had mapped the older object";
}

TEST_F(QelSharedMemoryAccessTest, OpenShm_WriterResizesAndWipesASmallerOrLargerObject) {
    for (std::size_t const size :
         {std::size_t{0}, std::size_t{1}, rawRegionSize - 1, rawRegionSize + 1, std::size_t{1000000}}) {
        makeFile(size);
        Writer sut;
        sut.openShm();
        EXPECT_EQ(rawRegionSizeNow(), 320032) << size;
        EXPECT_TRUE(isWiped(RawRegion().copy())) << size;
    }
}

TEST_F(QelSharedMemoryAccessTest, OpenShm_WriterMapsReadableAndWritable) {
    Writer sut;
    sut.openShm();
    RawRegion const raw;
    sut.region()->points[3].pos = 3;
    EXPECT_EQ(raw.u32(rawPoint(3)), 3U);
    raw.set<std::uint32_t>(rawPoint(4), 4);
    EXPECT_EQ(sut.region()->points[4].pos, 4U);
}

TEST_F(QelSharedMemoryAccessTest, OpenShm_ReservesTheMemoryOfTheWholeRegion) {
    Writer sut;
    sut.openShm();
    auto const status = statusOf();
    EXPECT_GE(status.st_blocks * 512, 320032);
}

TEST_F(QelSharedMemoryAccessTest, OpenShm_KeepsNoDescriptorOpen) {
    auto const before = openDescriptors();
    Writer writer;
    Reader reader;
    writer.openShm();
    reader.openShm();
    ASSERT_NE(reader.region(), nullptr);
    EXPECT_EQ(openDescriptors(), before);
}

// Opening as a reader

TEST_F(QelSharedMemoryAccessTest, OpenShm_ReaderSeesTheObjectAndCannotWriteIt) {
    makeFile();
    Reader sut;
    log.take();
    sut.openShm();
    ASSERT_NE(sut.region(), nullptr);
    EXPECT_EQ(sut.bytes()[0], 0x5A);
    EXPECT_EQ(sut.bytes()[320031], 0x5A);
    EXPECT_FALSE(isWritable(sut.region()));
    EXPECT_EQ(RawRegion().bytes()[0], 0x5A) << "a reader wipes nothing";
    EXPECT_THAT(log.entries(), IsEmpty());
}

TEST_F(QelSharedMemoryAccessTest, OpenShm_ReaderSharesTheWritersBytes) {
    Writer writer;
    writer.openShm();
    Reader sut;
    sut.openShm();
    ASSERT_NE(sut.region(), nullptr);
    EXPECT_NE(static_cast<void*>(sut.region()), static_cast<void*>(writer.region()));
    writer.region()->root.version = 32;
    EXPECT_EQ(sut.region()->root.version, 32);
    writer.openShm();
    EXPECT_EQ(sut.region()->root.version, 0xFF) << "a writer that opens again makes the region inactive";
}

TEST_F(QelSharedMemoryAccessTest, OpenShm_ReaderWithoutObjectLogsTwiceAndHasNoRegion) {
    Reader sut;
    log.take();
    EXPECT_NO_THROW(sut.openShm());
    EXPECT_THAT(
        log.entries(),
        ElementsAre(error("errorShm: failed to open the shared memory file, No such file or directory"),
                    error("errorShm: failed to resize/map the shared memory, Bad file descriptor")));
    EXPECT_EQ(sut.region(), nullptr);
    EXPECT_FALSE(sut.root());
    EXPECT_FALSE(rawRegionExists());
}

TEST_F(QelSharedMemoryAccessTest, OpenShm_ReaderMayTryAgain) {
    Reader sut;
    sut.openShm();
    EXPECT_EQ(sut.region(), nullptr);
    RawRegion const raw(true);
    sut.openShm();
    EXPECT_NE(sut.region(), nullptr);
}

TEST_F(QelSharedMemoryAccessTest, OpenShm_ReaderRefusesATooShortObject) {
    for (std::size_t const size : {std::size_t{0}, std::size_t{4096}, rawRegionSize - 1}) {
        makeFile(size);
        Reader sut;
        log.take();
        sut.openShm();
        EXPECT_THAT(log.take(), ElementsAre(error("errorShm: failed to resize/map the shared memory, "
                                                  "No such device or address")));
        EXPECT_EQ(sut.region(), nullptr);
        EXPECT_EQ(rawRegionSizeNow(), static_cast<long>(size)) << "the object stays as it is";
    }
}

TEST_F(QelSharedMemoryAccessTest, OpenShm_ReaderMapsALargerObject) {
    makeFile(1000000);
    Reader sut;
    sut.openShm();
    ASSERT_NE(sut.region(), nullptr);
    EXPECT_EQ(sut.bytes()[320031], 0x5A);
}

// Opening that fails

TEST_F(QelSharedMemoryAccessTest, OpenShm_FullFileSystemIsLoggedAndLeavesNothing) {
    ASSERT_EQ(::mount("tmpfs", "/dev/shm", "tmpfs", 0, "size=64k"), 0);
    {
        Writer sut;
        log.take();
        sut.openShm();
        EXPECT_THAT(
            log.take(),
            ElementsAre(error("errorShm: failed to resize/map the shared memory, No space left on device")));
        EXPECT_EQ(sut.region(), nullptr);
        EXPECT_FALSE(rawRegionExists());
        sut.closeShm();
        EXPECT_THAT(log.take(), IsEmpty());
    }
    EXPECT_EQ(::umount("/dev/shm"), 0) << "a mapping was left";
}

TEST_F(QelSharedMemoryAccessTest, OpenShm_FailedResizeIsLoggedAndRemovesTheName) {
    Writer sut;
    log.take();
    {
        FailingCall const failing(Call::Ftruncate, EFBIG);
        sut.openShm();
    }
    EXPECT_THAT(log.entries(),
                ElementsAre(error("errorShm: failed to resize/map the shared memory, File too large")));
    EXPECT_EQ(sut.region(), nullptr);
    EXPECT_FALSE(rawRegionExists());
}

TEST_F(QelSharedMemoryAccessTest, OpenShm_SignalWhileReservingIsNoFailure) {
    Writer sut;
    log.take();
    FailingCall const failing(Call::PosixFallocate, EINTR, 3);
    sut.openShm();
    EXPECT_EQ(FailingCall::left(), 0);
    EXPECT_NE(sut.region(), nullptr);
    EXPECT_THAT(log.entries(), IsEmpty());
}

TEST_F(QelSharedMemoryAccessTest, OpenShm_WriterThatCannotMapRemovesTheName) {
    Writer sut;
    log.take();
    {
        FailingCall const failing(Call::Mmap, ENOMEM);
        sut.openShm();
    }
    EXPECT_THAT(
        log.entries(),
        ElementsAre(error("errorShm: failed to resize/map the shared memory, Cannot allocate memory")));
    EXPECT_EQ(sut.region(), nullptr);
    EXPECT_FALSE(rawRegionExists());
}

TEST_F(QelSharedMemoryAccessTest, OpenShm_ReaderThatCannotMapLeavesTheName) {
    makeFile();
    Reader sut;
    log.take();
    {
        FailingCall const failing(Call::Mmap, ENOMEM);
        sut.openShm();
    }
    EXPECT_THAT(
        log.entries(),
        ElementsAre(error("errorShm: failed to resize/map the shared memory, Cannot allocate memory")));
    EXPECT_EQ(sut.region(), nullptr);
    EXPECT_TRUE(rawRegionExists());
}

TEST_F(QelSharedMemoryAccessTest, OpenShm_DirectoryInPlaceOfTheObjectIsLogged) {
    fs::create_directory(objectFile);
    Writer writer;
    log.take();
    writer.openShm();
    EXPECT_THAT(log.take(),
                ElementsAre(removing("a directory of user 0"),
                            error("errorShm: failed to open the shared memory file, Is a directory"),
                            error("errorShm: failed to resize/map the shared memory, Bad file descriptor"),
                            error("unlinkShm: failed to unlink the shared memory, Is a directory"),
                            error("errorShm: failed to resize/map the shared memory, Bad file descriptor"),
                            error("unlinkShm: failed to unlink the shared memory, Is a directory")));
    EXPECT_EQ(writer.region(), nullptr);
    Reader reader;
    log.take();
    reader.openShm();
    EXPECT_THAT(
        log.take(),
        ElementsAre(error("errorShm: failed to resize/map the shared memory, No such device or address")));
    EXPECT_EQ(reader.region(), nullptr);
    EXPECT_TRUE(fs::is_directory(objectFile));
}

TEST_F(QelSharedMemoryAccessTest, OpenShm_DanglingSymlinkInPlaceOfTheObjectIsReplacedByAWriter) {
    fs::create_symlink("/dev/shm/nowhere", objectFile);
    Reader reader;
    log.take();
    reader.openShm();
    EXPECT_THAT(
        log.take(),
        ElementsAre(
            error("errorShm: failed to open the shared memory file, Too many levels of symbolic links"),
            error("errorShm: failed to resize/map the shared memory, Bad file descriptor")));
    EXPECT_EQ(reader.region(), nullptr);

    Writer writer;
    log.take();
    writer.openShm();
    EXPECT_THAT(log.take(), ElementsAre(removing("a symbolic link of user 0")));
    EXPECT_NE(writer.region(), nullptr);
    EXPECT_FALSE(fs::is_symlink(objectFile));
    EXPECT_FALSE(fs::exists("/dev/shm/nowhere"));
}

TEST_F(QelSharedMemoryAccessTest, OpenShm_NamedPipeInPlaceOfTheObjectHoldsNoReaderUp) {
    ASSERT_EQ(::mkfifo(objectFile, 0644), 0);
    Reader sut;
    log.take();
    sut.openShm();
    EXPECT_THAT(
        log.take(),
        ElementsAre(error("errorShm: failed to resize/map the shared memory, No such device or address")));
    EXPECT_EQ(sut.region(), nullptr);
    EXPECT_TRUE(fs::is_fifo(objectFile));
}

TEST_F(QelSharedMemoryAccessTest, OpenShm_DeviceInPlaceOfTheObjectIsRefusedByAReader) {
    ASSERT_EQ(::mknod(objectFile, S_IFCHR | 0644U, makedev(1, 5)), 0); // endless zeros, which could be mapped
    Reader sut;
    log.take();
    sut.openShm();
    EXPECT_THAT(
        log.take(),
        ElementsAre(error("errorShm: failed to resize/map the shared memory, No such device or address")));
    EXPECT_EQ(sut.region(), nullptr);
}

// Closing

TEST_F(QelSharedMemoryAccessTest, CloseShm_WriterUnmapsAndRemovesTheName) {
    Writer sut;
    sut.openShm();
    void const* const address = sut.region();
    log.take();
    sut.closeShm();
    EXPECT_EQ(sut.region(), nullptr);
    EXPECT_FALSE(isMapped(address));
    EXPECT_FALSE(rawRegionExists());
    EXPECT_THAT(log.entries(), IsEmpty());
}

TEST_F(QelSharedMemoryAccessTest, CloseShm_ReaderUnmapsAndLeavesTheName) {
    RawRegion const raw(true);
    Reader sut;
    sut.openShm();
    void const* const address = sut.region();
    sut.closeShm();
    EXPECT_EQ(sut.region(), nullptr);
    EXPECT_FALSE(isMapped(address));
    EXPECT_TRUE(rawRegionExists());
}

TEST_F(QelSharedMemoryAccessTest, CloseShm_WithoutRegionDoesNothingAndRemovesNothing) {
    makeFile();
    Writer sut;
    log.take();
    sut.closeShm();
    EXPECT_TRUE(rawRegionExists());
    EXPECT_THAT(log.entries(), IsEmpty());
}

TEST_F(QelSharedMemoryAccessTest, CloseShm_SecondTimeDoesNotRemoveTheObjectOfAnotherWriter) {
    Writer sut;
    sut.openShm();
    sut.closeShm();
    makeFile();
    sut.closeShm();
    EXPECT_TRUE(rawRegionExists());
}

TEST_F(QelSharedMemoryAccessTest, CloseShm_MayBeOpenedAgain) {
    Writer sut;
    sut.openShm();
    sut.closeShm();
    sut.openShm();
    EXPECT_NE(sut.region(), nullptr);
    EXPECT_TRUE(isWiped(RawRegion().copy()));
}

TEST_F(QelSharedMemoryAccessTest, CloseShm_FailedUnmappingIsLoggedAndTheNameIsRemoved) {
    Writer sut;
    sut.openShm();
    void* const address = sut.region();
    log.take();
    {
        FailingCall const failing(Call::Munmap, EINVAL);
        sut.closeShm();
    }
    EXPECT_THAT(log.entries(),
                ElementsAre(error("closeShm: failed to unmap the shared memoryInvalid argument")));
    EXPECT_EQ(sut.region(), nullptr);
    EXPECT_FALSE(rawRegionExists());
    EXPECT_EQ(::munmap(address, rawRegionSize), 0);
}

TEST_F(QelSharedMemoryAccessTest, CloseShm_NameThatIsGoneIsLogged) {
    Writer sut;
    sut.openShm();
    fs::remove(objectFile);
    log.take();
    sut.closeShm();
    EXPECT_THAT(
        log.entries(),
        ElementsAre(error("unlinkShm: failed to unlink the shared memory, No such file or directory")));
    EXPECT_EQ(sut.region(), nullptr);
}

TEST_F(QelSharedMemoryAccessTest, UnlinkShm_ForgetsTheMappingWithoutUnmapping) {
    for (auto const access : {ShmAccess::Write, ShmAccess::Read}) {
        RawRegion const raw(true);
        Access sut(access);
        sut.openShm();
        void* const address = sut.region();
        sut.unlinkShm();
        EXPECT_EQ(sut.region(), nullptr);
        EXPECT_TRUE(isMapped(address));
        EXPECT_EQ(rawRegionExists(), access == ShmAccess::Read);
        EXPECT_EQ(::munmap(address, rawRegionSize), 0);
    }
}

TEST_F(QelSharedMemoryAccessTest, UnlinkShm_WithoutObjectIsLoggedByAWriterAlone) {
    Writer writer;
    Reader reader;
    log.take();
    reader.unlinkShm();
    EXPECT_THAT(log.entries(), IsEmpty());
    writer.unlinkShm();
    EXPECT_THAT(
        log.entries(),
        ElementsAre(error("unlinkShm: failed to unlink the shared memory, No such file or directory")));
}

TEST_F(QelSharedMemoryAccessTest, CloseShm_OfAFormerWriterTakesTheNameOfOneThatStartedMeanwhile) {
    Writer former;
    former.openShm();
    Writer next;
    next.openShm();
    former.closeShm();
    EXPECT_FALSE(rawRegionExists()) << "readers do not find the next one";
    EXPECT_NE(next.region(), nullptr);
    next.region()->root.version = 32;
    log.take();
    next.closeShm();
    EXPECT_THAT(
        log.entries(),
        ElementsAre(error("unlinkShm: failed to unlink the shared memory, No such file or directory")));
}

// A forked child

TEST_F(QelSharedMemoryAccessTest, ForkedChild_UnmapsAndLeavesTheNameToItsParent) {
    auto sut = std::make_unique<Writer>();
    sut->openShm();
    ASSERT_EQ(0, inForkedChild([&] {
                  void const* const address = sut->region();
                  sut.reset();
                  return isMapped(address) ? 1 : 0;
              }));
    EXPECT_TRUE(rawRegionExists());
    sut->region()->root.version = 32;
    EXPECT_EQ(RawRegion().bytes()[field::version], 32);
    log.take();
    sut.reset();
    EXPECT_FALSE(rawRegionExists()) << "the parent removes it";
    EXPECT_THAT(log.entries(), ElementsAre(info("~QelSharedMemoryAccess: done")));
}

TEST_F(QelSharedMemoryAccessTest, ForkedChild_ThatClosesOrUnlinksLeavesTheName) {
    Writer sut;
    sut.openShm();
    for (std::function<void()> const& leave :
         {std::function<void()>([&] { sut.closeShm(); }), std::function<void()>([&] { sut.unlinkShm(); }),
          std::function<void()>([&] { sut.errorShm(ShmError::Map, ENOMEM); })}) {
        EXPECT_EQ(0, inForkedChild([&] {
                      leave();
                      return 0;
                  }));
    }
    EXPECT_TRUE(rawRegionExists());
}

TEST_F(QelSharedMemoryAccessTest, ForkedChild_ThatOpensForItselfRemovesTheName) {
    EXPECT_EQ(0, inForkedChild([] {
                  Writer sut;
                  sut.openShm();
                  sut.closeShm();
                  return rawRegionExists() ? 1 : 0;
              }));
}

// Reporting failures

TEST_F(QelSharedMemoryAccessTest, ErrorShm_FailedOpenIsLoggedAndChangesNothing) {
    Writer sut;
    sut.openShm();
    log.take();
    sut.errorShm(ShmError::Open, EACCES);
    EXPECT_THAT(log.entries(),
                ElementsAre(error("errorShm: failed to open the shared memory file, Permission denied")));
    EXPECT_NE(sut.region(), nullptr);
    EXPECT_TRUE(rawRegionExists());
}

TEST_F(QelSharedMemoryAccessTest, ErrorShm_FailedResizeOrMapIsLoggedAndCleansUp) {
    for (auto const step : {ShmError::Resize, ShmError::Map}) {
        Writer sut;
        sut.openShm();
        void* const address = sut.region();
        log.take();
        sut.errorShm(step, ENOSPC);
        EXPECT_THAT(
            log.take(),
            ElementsAre(error("errorShm: failed to resize/map the shared memory, No space left on device")));
        EXPECT_EQ(sut.region(), nullptr);
        EXPECT_FALSE(rawRegionExists());
        EXPECT_EQ(::munmap(address, rawRegionSize), 0);
    }
}

TEST_F(QelSharedMemoryAccessTest, ErrorShm_UnknownStepHasNoTextAndChangesNothing) {
    Writer sut;
    sut.openShm();
    log.take();
    sut.errorShm(static_cast<ShmError>(3), ENOENT);
    EXPECT_THAT(log.entries(), ElementsAre(error("errorShm: , No such file or directory")));
    EXPECT_NE(sut.region(), nullptr);
    EXPECT_TRUE(rawRegionExists());
}

// Handing out the root

TEST_F(QelSharedMemoryAccessTest, Root_IsNullWhileNothingIsMapped) {
    Writer sut;
    EXPECT_FALSE(sut.root());
    sut.openShm();
    EXPECT_TRUE(sut.root());
    EXPECT_EQ(&*sut.root(), &sut.region()->root);
    sut.closeShm();
    EXPECT_FALSE(sut.root());
}

// The tree as text

class QelSharedMemoryAccessTreeTest : public QelSharedMemoryAccessTest {
protected:
    QelSharedMemoryAccessTreeTest() {
        sut.openShm();
        raw = std::make_unique<RawRegion>();
        raw->set<std::uint64_t>(rawRootOffset, 0xFF00FFFFFFFF0000ULL);
    }

    void devices(std::uint32_t pos) const { raw->set(field::devices, pos); }
    void groups(std::uint32_t pos) const { raw->set(field::groups, pos); }

    void point(std::uint32_t pos, std::uint64_t svid) const {
        raw->set(rawPoint(pos), pos);
        raw->set(rawPoint(pos) + field::guid, svid);
    }
    void next(std::uint32_t pos, std::uint32_t sibling) const {
        raw->set(rawPoint(pos) + field::next, sibling);
    }
    void prev(std::uint32_t pos, std::uint32_t sibling) const {
        raw->set(rawPoint(pos) + field::prev, sibling);
    }
    void values(std::uint32_t pos, std::uint32_t first) const { raw->set(rawPoint(pos) + field::mvs, first); }
    void children(std::uint32_t pos, std::uint32_t child) const {
        raw->set(rawPoint(pos) + field::children, child);
    }
    void parent(std::uint32_t pos, std::uint32_t above) const {
        raw->set(rawPoint(pos) + field::parent, above);
    }
    void value(std::uint32_t pos, std::uint16_t key, std::uint32_t following = rawNone) const {
        raw->set(rawValue(pos) + field::valueKey, key);
        raw->set(rawValue(pos) + field::valueNext, following);
    }

    Writer sut;
    std::unique_ptr<RawRegion> raw;
};

TEST_F(QelSharedMemoryAccessTreeTest, Tree_WithoutRegionIsEmpty) {
    sut.closeShm();
    EXPECT_EQ(sut.tree(), "");
}

TEST_F(QelSharedMemoryAccessTreeTest, Tree_WithoutPointsIsTheRootAlone) {
    EXPECT_EQ(sut.tree(), "0xff00ffffffff0000\n");
}

TEST_F(QelSharedMemoryAccessTreeTest, Tree_RootIdHasNoLeadingZeros) {
    raw->set<std::uint64_t>(rawRootOffset, 0xAB);
    EXPECT_EQ(sut.tree(), "0xab\n");
    raw->set<std::uint64_t>(rawRootOffset, 0);
    EXPECT_EQ(sut.tree(), "0x0\n");
}

TEST_F(QelSharedMemoryAccessTreeTest, Tree_PointWithValuesAndSibling) {
    devices(3);
    point(3, 0x0100FFFFFFFF0000ULL);
    next(3, 7);
    values(3, 20);
    value(20, 1, 21);
    value(21, 2);
    point(7, 0x0200FFFFFFFF0000ULL);
    prev(7, 3);
    EXPECT_EQ(
        sut.tree(),
        "0xff00ffffffff0000\n"
        "  - 0x0100ffffffff0000, this = 3, parent = ffffffff, prev = ffffffff, next = 7 [0x0001, 0x0002]\n"
        "  - 0x0200ffffffff0000, this = 7, parent = ffffffff, prev = 3, next = ffffffff []\n");
}

TEST_F(QelSharedMemoryAccessTreeTest, Tree_NumbersAreLowerCaseHexadecimal) {
    devices(799);
    point(799, 0xABCDEF);
    next(799, 0xFFFFFFFF);
    prev(799, 0x10);
    parent(799, 0xA0);
    values(799, 8799);
    value(8799, 0xFFFE);
    EXPECT_EQ(sut.tree(),
              "0xff00ffffffff0000\n"
              "  - 0x0000000000abcdef, this = 31f, parent = a0, prev = 10, next = ffffffff [0xfffe]\n");
}

TEST_F(QelSharedMemoryAccessTreeTest, Tree_ChildrenStandBelowTheirParentAndGroupsBehindDevices) {
    devices(0);
    groups(5);
    point(0, 1ULL << 16U);
    children(0, 1);
    next(0, 4);
    point(1, 2ULL << 16U);
    parent(1, 0);
    next(1, 3);
    children(1, 2);
    point(2, 3ULL << 16U);
    parent(2, 1);
    values(2, 0);
    value(0, 0x10A);
    point(3, 4ULL << 16U);
    parent(3, 0);
    prev(3, 1);
    point(4, 5ULL << 16U);
    prev(4, 0);
    point(5, 6ULL << 16U);
    EXPECT_EQ(sut.tree(),
              "0xff00ffffffff0000\n"
              "  - 0x0000000000010000, this = 0, parent = ffffffff, prev = ffffffff, next = 4 []\n"
              "    - 0x0000000000020000, this = 1, parent = 0, prev = ffffffff, next = 3 []\n"
              "      - 0x0000000000030000, this = 2, parent = 1, prev = ffffffff, next = ffffffff [0x010a]\n"
              "    - 0x0000000000040000, this = 3, parent = 0, prev = 1, next = ffffffff []\n"
              "  - 0x0000000000050000, this = 4, parent = ffffffff, prev = 0, next = ffffffff []\n"
              "  - 0x0000000000060000, this = 5, parent = ffffffff, prev = ffffffff, next = ffffffff []\n");
}

TEST_F(QelSharedMemoryAccessTreeTest, Tree_GroupsAloneAreShown) {
    groups(9);
    point(9, 0xFF0201FFFFFF0000ULL);
    EXPECT_EQ(sut.tree(),
              "0xff00ffffffff0000\n"
              "  - 0xff0201ffffff0000, this = 9, parent = ffffffff, prev = ffffffff, next = ffffffff []\n");
}

TEST_F(QelSharedMemoryAccessTreeTest, Tree_LinksOutOfRangeAreNotFollowed) {
    groups(800);
    devices(0);
    point(0, 0);
    for (std::uint32_t const link : {800U, 8799U, 0x7FFFFFFFU, 0xFFFFFFFEU}) {
        children(0, link);
        next(0, link);
        std::ostringstream expected;
        expected << std::hex << "0xff00ffffffff0000\n  - 0x0000000000000000, this = 0, parent = ffffffff, "
                 << "prev = ffffffff, next = " << link << " []\n";
        EXPECT_EQ(sut.tree(), expected.str());
    }
}

TEST_F(QelSharedMemoryAccessTreeTest, Tree_ValuesOutOfRangeAreNotFollowed) {
    devices(0);
    point(0, 0);
    values(0, 8800);
    EXPECT_THAT(sut.tree(), ::testing::EndsWith(" []\n"));
    values(0, 8799);
    value(8799, 4, 0x80000000U);
    EXPECT_THAT(sut.tree(), ::testing::EndsWith(" [0x0004]\n"));
}

TEST_F(QelSharedMemoryAccessTreeTest, Tree_EightHundredSiblings) {
    devices(0);
    for (std::uint32_t pos = 0; pos < 800; ++pos) {
        point(pos, pos);
        if (pos + 1 < 800) {
            next(pos, pos + 1);
        }
    }
    auto const text = sut.tree();
    EXPECT_EQ(std::count(text.begin(), text.end(), '\n'), 801);
    EXPECT_THAT(text, ::testing::EndsWith("\n  - 0x000000000000031f, this = 31f, parent = ffffffff, "
                                          "prev = ffffffff, next = ffffffff []\n"));
}

TEST_F(QelSharedMemoryAccessTreeTest, Tree_EightHundredGenerations) {
    devices(0);
    for (std::uint32_t pos = 0; pos < 800; ++pos) {
        point(pos, pos);
        if (pos + 1 < 800) {
            children(pos, pos + 1);
        }
    }
    auto const text = sut.tree();
    EXPECT_EQ(std::count(text.begin(), text.end(), '\n'), 801);
    EXPECT_THAT(text, ::testing::EndsWith("\n" + std::string(1600, ' ') +
                                          "- 0x000000000000031f, this = 31f, parent = ffffffff, "
                                          "prev = ffffffff, next = ffffffff []\n"));
}

TEST_F(QelSharedMemoryAccessTreeTest, Tree_AllValuesInOneChain) {
    devices(0);
    point(0, 0);
    values(0, 0);
    for (std::uint32_t pos = 0; pos < 8800; ++pos) {
        value(pos, 1, pos + 1 < 8800 ? pos + 1 : rawNone);
    }
    auto const text = sut.tree();
    std::string keys = "0x0001";
    for (int following = 1; following < 8800; ++following) {
        keys += ", 0x0001";
    }
    EXPECT_EQ(text,
              "0xff00ffffffff0000\n"
              "  - 0x0000000000000000, this = 0, parent = ffffffff, prev = ffffffff, next = ffffffff [" +
                  keys + "]\n");
}

TEST_F(QelSharedMemoryAccessTreeTest, Tree_ReaderRendersTheSame) {
    devices(3);
    point(3, 0x0100FFFFFFFF0000ULL);
    Reader reader;
    reader.openShm();
    EXPECT_EQ(reader.tree(), sut.tree());
}

class GroupedDigits : public std::numpunct<char> {
protected:
    char do_thousands_sep() const override { return ','; }
    std::string do_grouping() const override { return "\1"; }
};

TEST_F(QelSharedMemoryAccessTreeTest, Tree_TheLocaleOfTheProcessDoesNotShow) {
    devices(799);
    point(799, 0x0100FFFFFFFF0000ULL);
    auto const plain = sut.tree();
    auto const former = std::locale::global(std::locale(std::locale::classic(), new GroupedDigits));
    auto const text = sut.tree();
    std::locale::global(former);
    EXPECT_EQ(text, plain);
}

TEST_F(QelSharedMemoryAccessTreeTest, Treenode_StartsAtTheGivenIndentAndLeavesTheFillAlone) {
    point(1, 0x10000);
    values(1, 0);
    value(0, 5);
    std::ostringstream out;
    out.fill('*');
    sut.treenode(sut.region()->points[1], 3, out);
    EXPECT_EQ(
        out.str(),
        "   - 0x0000000000010000, this = 1, parent = ffffffff, prev = ffffffff, next = ffffffff [0x0005]\n");
    EXPECT_EQ(out.fill(), '*');
}

} // namespace

} // namespace qel::test
