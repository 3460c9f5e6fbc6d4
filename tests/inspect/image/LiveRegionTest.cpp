// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "inspect/image/LiveRegion.h"

#include "inspect/image/PointTree.h"

#include "tests/support/RawRegion.h"
#include "tests/writer/WriterFixture.h"

#include <gtest/gtest.h>

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <string>
#include <string_view>
#include <thread>

namespace {

/// Replaces the object by a named pipe just before it is opened for reading the next time.
bool isSwapDue = false;

} // namespace

// NOLINTBEGIN(bugprone-reserved-identifier,cert-dcl37-c,cert-dcl51-cpp): the linker's names for --wrap.
extern "C" {

int __real_shm_open(char const* name, int flags, mode_t mode);
int __wrap_shm_open(char const* name, int flags, mode_t mode);

int __wrap_shm_open(char const* name, int flags, mode_t mode) {
    if (isSwapDue && (flags & O_PATH) == 0) {
        isSwapDue = false;
        ::unlink("/dev/shm/QelSharedMemory");
        ::mkfifo("/dev/shm/QelSharedMemory", 0644);
    }
    return __real_shm_open(name, flags, mode);
}

} // extern "C"
// NOLINTEND(bugprone-reserved-identifier,cert-dcl37-c,cert-dcl51-cpp)

namespace qel::inspect {

namespace {

constexpr char objectName[] = "QelSharedMemory";
constexpr char objectPath[] = "/dev/shm/QelSharedMemory";

/// Makes an object of some size, of zero bytes.
void createObject(off_t size, mode_t mode = 0644) {
    int const fd = ::shm_open(objectName, O_RDWR | O_CREAT | O_EXCL, mode);
    ASSERT_GE(fd, 0);
    ASSERT_EQ(0, ::ftruncate(fd, size));
    ::close(fd);
}

void resizeObject(off_t size) {
    ASSERT_EQ(0, ::truncate(objectPath, size));
}

/// Runs the process as a user without rights; what root may read no other may.
class AsNobody {
public:
    AsNobody() : succeeded_(::seteuid(nobody) == 0) {}
    ~AsNobody() {
        if (succeeded_ && ::seteuid(0) != 0) {
            std::abort(); // no other test may run like this
        }
    }
    AsNobody(AsNobody const&) = delete;
    AsNobody& operator=(AsNobody const&) = delete;

    explicit operator bool() const { return succeeded_; }

private:
    static constexpr uid_t nobody = 65534;
    bool succeeded_;
};

/// Starts without an object, also when an earlier test left one.
class LiveRegionTest : public testing::Test {
protected:
    LiveRegionTest() { std::filesystem::remove_all(objectPath); }
};

std::string_view bytesOf(test::RawRegion const& raw) {
    return {reinterpret_cast<char const*>(raw.bytes()), test::rawRegionSize};
}

} // namespace

TEST_F(LiveRegionTest, WithoutAnObjectItIsAbsentAndNoneIsMade) {
    LiveRegion const live;
    EXPECT_FALSE(live.isOpen());
    EXPECT_EQ(Opening::Absent, live.source().opening);
    EXPECT_EQ(0, live.source().error);
    EXPECT_FALSE(live.object());
    EXPECT_FALSE(live.isReplaced());
    EXPECT_EQ(0U, live.copy().size());
    EXPECT_FALSE(test::rawRegionExists());
    EXPECT_EQ("no such object", openingProblem(live.source()));
}

TEST_F(LiveRegionTest, CopiesWhatAWriterWrote) {
    shm::QelSharedMemoryWriter writer;
    writer.addStructure({{test::pointId(1, 0), test::withKeys({1, 2})}});
    writer.setActive();
    writer.updateMV(test::pointId(1, 0) | 1, test::measured(230.5));
    LiveRegion const live;
    ASSERT_EQ(Opening::Opened, live.source().opening);
    EXPECT_EQ("", openingProblem(live.source()));

    auto const image = live.copy();
    EXPECT_TRUE(image.isWhole());
    EXPECT_TRUE(image.isActive());
    EXPECT_EQ(bytesOf(test::RawRegion()), image.bytes());

    writer.updateMV(test::pointId(1, 0) | 1, test::measured(231.5));
    EXPECT_EQ(230.5, image.value(0)->value);
    EXPECT_EQ(231.5, live.copy().value(0)->value);
}

TEST_F(LiveRegionTest, IsLockedWhileItsWriterLives) {
    EXPECT_FALSE(LiveRegion().isLocked()) << "no object";
    auto writer = std::make_unique<shm::QelSharedMemoryWriter>();
    LiveRegion const live;
    EXPECT_TRUE(live.isLocked());
    writer.reset();
    EXPECT_FALSE(live.isLocked());
    createObject(static_cast<off_t>(shm::REGION_SIZE));
    EXPECT_FALSE(LiveRegion().isLocked()) << "no writer";
}

TEST_F(LiveRegionTest, ItsDescriptorIsReadOnlyAndNotInherited) {
    createObject(100);
    struct stat object = {};
    ASSERT_EQ(0, ::stat(objectPath, &object));
    LiveRegion const live;
    int found = 0;
    for (int fd = 0; fd < 1024; ++fd) {
        struct stat status = {};
        if (::fstat(fd, &status) == 0 && status.st_ino == object.st_ino && status.st_dev == object.st_dev) {
            ++found;
            EXPECT_EQ(O_RDONLY, ::fcntl(fd, F_GETFL) & O_ACCMODE);
            EXPECT_EQ(FD_CLOEXEC, ::fcntl(fd, F_GETFD));
        }
    }
    EXPECT_EQ(1, found);
}

TEST_F(LiveRegionTest, TellsOwnerModeAndSizeAsTheyAreNow) {
    createObject(1000, 0644);
    LiveRegion const live;
    auto const object = live.object();
    ASSERT_TRUE(object);
    EXPECT_EQ(::geteuid(), object->uid);
    EXPECT_EQ(::getegid(), object->gid);
    EXPECT_EQ(0644U, object->mode);
    EXPECT_EQ(1000U, object->size);
    ASSERT_EQ(0, ::chmod(objectPath, 0600));
    resizeObject(2000);
    EXPECT_EQ(0600U, live.object()->mode);
    EXPECT_EQ(2000U, live.object()->size);
}

TEST_F(LiveRegionTest, SurvivesAnObjectThatIsCutOffAndGrowsAgain) {
    test::RawRegion const raw(true);
    raw.fill(0x11);
    LiveRegion const live;
    EXPECT_EQ(test::rawRegionSize, live.copy().size());

    for (off_t const size : {320031, 4096, 48, 1, 0}) {
        resizeObject(size);
        auto const image = live.copy();
        EXPECT_EQ(static_cast<std::uint64_t>(size), image.size());
        EXPECT_EQ(std::string(static_cast<std::size_t>(size), '\x11'), image.bytes());
        EXPECT_FALSE(image.isWhole());
        EXPECT_FALSE(live.isReplaced());
    }

    resizeObject(400000);
    EXPECT_EQ(400000U, live.copy().size());
    EXPECT_EQ(test::rawRegionSize, live.copy().bytes().size());
}

TEST_F(LiveRegionTest, SeesThatTheNameIsGoneOrLeadsElsewhere) {
    createObject(100);
    LiveRegion const live;
    EXPECT_FALSE(live.isReplaced());
    ASSERT_EQ(0, ::shm_unlink(objectName));
    EXPECT_TRUE(live.isReplaced());
    EXPECT_EQ(100U, live.copy().size()); // the old content stays readable
    createObject(200);
    EXPECT_TRUE(live.isReplaced());
    EXPECT_TRUE(live.source().isReplaced);
    EXPECT_EQ(100U, live.copy().size());

    LiveRegion const again;
    EXPECT_FALSE(again.isReplaced());
    EXPECT_EQ(200U, again.copy().size());
    EXPECT_FALSE(isSameObject(*live.object(), *again.object()));
}

TEST_F(LiveRegionTest, ARestartedWriterReplacesTheObject) {
    auto writer = std::make_unique<shm::QelSharedMemoryWriter>();
    LiveRegion const live;
    writer.reset();
    EXPECT_TRUE(live.isReplaced());
    writer = std::make_unique<shm::QelSharedMemoryWriter>();
    EXPECT_TRUE(live.isReplaced());
    EXPECT_FALSE(LiveRegion().isReplaced());
}

TEST_F(LiveRegionTest, AnObjectWhoseRightsAreTakenIsNotReplaced) {
    createObject(100);
    LiveRegion const live;
    ASSERT_EQ(0, ::chmod(objectPath, 0));
    AsNobody const nobody;
    if (!nobody) {
        GTEST_SKIP() << "this user cannot become another one";
    }
    EXPECT_FALSE(live.isReplaced());
    EXPECT_EQ(100U, live.copy().size());
}

TEST_F(LiveRegionTest, AnObjectWithoutTheRightToReadShowsWhoseItIs) {
    createObject(100, 0600);
    AsNobody const nobody;
    if (!nobody) {
        GTEST_SKIP() << "this user cannot become another one";
    }
    LiveRegion const live;
    EXPECT_EQ(Opening::Unreadable, live.source().opening);
    EXPECT_EQ(EACCES, live.source().error);
    EXPECT_EQ("Permission denied", openingProblem(live.source()));
    EXPECT_EQ(0U, live.copy().size());
    ASSERT_TRUE(live.object());
    EXPECT_EQ(0U, live.object()->uid);
    EXPECT_EQ(0600U, live.object()->mode);
    EXPECT_EQ(100U, live.object()->size);
}

class NotRegularTest : public LiveRegionTest, public testing::WithParamInterface<char const*> {
protected:
    static int make(std::string_view what) {
        if (what == "directory") {
            return ::mkdir(objectPath, 0755);
        }
        return what == "link" ? ::symlink("/etc/passwd", objectPath) : ::mkfifo(objectPath, 0644);
    }
};

TEST_P(NotRegularTest, IsNotOpened) {
    ASSERT_EQ(0, make(GetParam()));
    LiveRegion const live;
    EXPECT_FALSE(live.isOpen());
    EXPECT_EQ(Opening::NotRegular, live.source().opening);
    EXPECT_EQ(0U, live.copy().size());
    EXPECT_FALSE(live.isReplaced());
    EXPECT_FALSE(openingProblem(live.source()).empty());
    ASSERT_TRUE(live.object());
    EXPECT_FALSE(live.object()->isRegular);
}

INSTANTIATE_TEST_SUITE_P(UnderTheName, NotRegularTest, testing::Values("directory", "link", "pipe"));

TEST_F(LiveRegionTest, NamedPipeThatComesBetweenLookAndOpening_HoldsNobodyUp) {
    createObject(100);
    isSwapDue = true;
    LiveRegion const live;
    EXPECT_FALSE(isSwapDue) << "the object was not opened";
    EXPECT_FALSE(live.isOpen());
    EXPECT_EQ(Opening::NotRegular, live.source().opening);
    EXPECT_EQ("a directory, link or device stands under the name", openingProblem(live.source()));
    ASSERT_TRUE(live.object());
    EXPECT_FALSE(live.object()->isRegular);
}

TEST_F(LiveRegionTest, CopiesWhileAWriterIsAtWork) {
    shm::QelSharedMemoryWriter writer;
    auto const base = test::pointId(1, 0);
    test::Definitions large{{base, test::withKeys({1})}};
    for (int inlet = 1; inlet <= 100; ++inlet) {
        large.emplace(test::pointId(1, 0, inlet), test::withKeys({1, 2, 4}));
    }
    writer.addStructure(large);
    writer.setActive();

    std::atomic<bool> stop{false};
    std::thread work([&] {
        test::Definitions const small{{base, test::withKeys({1})}};
        while (!stop) {
            writer.removeStructure(small);
            writer.addStructure(large);
        }
    });
    LiveRegion const live;
    for (int copy = 0; copy < 200; ++copy) {
        PointTree const tree(live.copy());
        EXPECT_LE(tree.nodes().size(), 800U);
    }
    stop = true;
    work.join();
    EXPECT_EQ(101U, PointTree(live.copy()).nodes().size());
}

TEST(RegionObjectTest, TakesWhatTheSystemSays) {
    struct stat status = {};
    status.st_dev = 7;
    status.st_ino = 8;
    status.st_uid = 9;
    status.st_gid = 10;
    status.st_mode = S_IFREG | 0640;
    status.st_size = 320032;
    status.st_nlink = 2;
    auto const object = regionObject(status);
    EXPECT_EQ(7U, object.device);
    EXPECT_EQ(8U, object.inode);
    EXPECT_EQ(9U, object.uid);
    EXPECT_EQ(10U, object.gid);
    EXPECT_EQ(0640U, object.mode);
    EXPECT_EQ(320032U, object.size);
    EXPECT_EQ(2U, object.names);
    EXPECT_TRUE(object.isRegular);
    status.st_mode = S_IFDIR | 0755;
    EXPECT_FALSE(regionObject(status).isRegular);
}

TEST(RegionObjectTest, IsTheSameByDeviceAndInodeAlone) {
    RegionObject object;
    object.device = 1;
    object.inode = 2;
    auto changed = object;
    changed.mode = 0600;
    changed.size = 5;
    EXPECT_TRUE(isSameObject(object, changed));
    changed.inode = 3;
    EXPECT_FALSE(isSameObject(object, changed));
    changed = object;
    changed.device = 3;
    EXPECT_FALSE(isSameObject(object, changed));
}

TEST(RegionObjectTest, NamesOwners) {
    EXPECT_EQ("root", userName(0));
    EXPECT_EQ("root", groupName(0));
    EXPECT_EQ("3999999999", userName(3999999999U));
    EXPECT_EQ("3999999999", groupName(3999999999U));
}

TEST(RegionObjectTest, WritesPermissionsAsLetters) {
    EXPECT_EQ("rw-r--r--", modeText(0644));
    EXPECT_EQ("---------", modeText(0));
    EXPECT_EQ("rwxrwxrwx", modeText(0777));
    EXPECT_EQ("r---wx--x", modeText(0431));
}

} // namespace qel::inspect
