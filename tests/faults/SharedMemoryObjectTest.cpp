// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

// What stands under the region's name, or does not fit below it, is not as it should be: what the writer and the reader
// log, and that both go on without a region.

#include "format/ValueKeys.h"
#include "reader/QelSharedMemoryReader.h"
#include "tests/faults/FaultLines.h"
#include "tests/faults/Privileges.h"
#include "tests/faults/RefusedCalls.h"
#include "tests/support/RawRegion.h"
#include "tests/support/SocketFile.h"
#include "writer/QelSharedMemoryWriter.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fcntl.h>
#include <sys/mount.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iterator>
#include <memory>
#include <ostream>
#include <string>
#include <vector>

namespace {

namespace fs = std::filesystem;
using qel::test::AsNobody;
using qel::test::LogCapture;
using qel::test::LogEntry;
using qel::test::makeSocket;
using qel::test::NoOverride;
using qel::test::notMapped;
using qel::test::notOpened;
using qel::test::notOurs;
using qel::test::notUnlinked;
using qel::test::rawRegionExists;
using qel::test::rawRegionSize;
using qel::test::rawRegionSizeNow;
using qel::test::Refused;
using qel::test::withRefused;
using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::IsEmpty;

constexpr char const* objectFile = "/dev/shm/QelSharedMemory";
constexpr char const* elsewhere = "/dev/shm/elsewhere";
constexpr long long unit = 0x0100FFFFFFFF0000;

using Lines = std::vector<LogEntry>;

void makeFile(char const* path, std::size_t size, mode_t mode = 0644) {
    std::ofstream(path, std::ios::binary) << std::string(size, '\x5A');
    ::chmod(path, mode);
}

std::string contentOf(char const* path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

bool hasError(Lines const& lines) {
    return std::any_of(lines.begin(), lines.end(),
                       [](auto const& line) { return line.level <= log4cpp::Priority::ERROR; });
}

class MeasuredWriter : public shm::QelSharedMemoryWriter {
public:
    using QelSharedMemoryWriter::region;
};

/// Nothing that the writer offers does harm without a region.
void useWithoutRegion(MeasuredWriter& writer) {
    EXPECT_EQ(nullptr, writer.region());
    EXPECT_FALSE(writer.root());
    writer.setActive();
    writer.propagateStates();
    EXPECT_FALSE(writer.updateMV(unit | shm::key::voltage,
                                 std::make_unique<measval::MeasureValue>(1.0, 1, eStatus_NoError)));
    EXPECT_FALSE(writer.modifyStructure({}));
    EXPECT_EQ("", writer.tree());
}

/// Nothing that the reader offers does harm without a region, or finds something.
void useWithoutRegion(shm::QelSharedMemoryReader& reader) {
    EXPECT_FALSE(reader.root());
    EXPECT_EQ(nullptr, reader.mpnt(unit, false));
    EXPECT_EQ(nullptr, reader.mpnt(unit, true));
    EXPECT_FALSE(reader.mval(unit | shm::key::voltage, false));
    EXPECT_TRUE(reader.mps(0, SensorType::Electrical).empty());
    EXPECT_TRUE(reader.mvs(0).empty());
    EXPECT_EQ("", reader.tree());
}

struct Fault {
    std::string name;
    std::function<void()> make;
    Lines writerLines; ///< without an error: the writer has a region
    Lines readerLines; ///< none: the reader maps it

    friend std::ostream& operator<<(std::ostream& out, Fault const& fault) { return out << fault.name; }
};

Lines readerCannotOpen(int error) {
    return {notOpened(error), notMapped(EBADF)};
}

/// The object is the writer's own, or there is none: the name is removed at the first step that fails after opening, and
/// is gone at the second.
Lines writerCannotOpen(int error) {
    return {notOpened(error), notMapped(EBADF), notMapped(EBADF), notUnlinked(ENOENT)};
}

std::vector<Fault> const& faults() {
    static auto const* const all = new std::vector<Fault>{
        {"Empty", [] { makeFile(objectFile, 0); }, {}, {notMapped(ENXIO)}},
        {"OneByteTooShort", [] { makeFile(objectFile, rawRegionSize - 1); }, {}, {notMapped(ENXIO)}},
        {"OneByteTooLong", [] { makeFile(objectFile, rawRegionSize + 1); }, {}, {}},
        {"MuchTooLong", [] { makeFile(objectFile, 10 * rawRegionSize); }, {}, {}},
        {"Directory",
         [] { fs::create_directory(objectFile); },
         {notOurs("a directory of user 0"), notOpened(EISDIR), notMapped(EBADF), notUnlinked(EISDIR),
          notMapped(EBADF), notUnlinked(EISDIR)},
         {notMapped(ENXIO)}},
        {"DanglingLink",
         [] { fs::create_symlink(elsewhere, objectFile); },
         {notOurs("a symbolic link of user 0")},
         readerCannotOpen(ELOOP)},
        {"LinkToAnotherFile",
         [] {
             makeFile(elsewhere, rawRegionSize);
             fs::create_symlink(elsewhere, objectFile);
         },
         {notOurs("a symbolic link of user 0")},
         readerCannotOpen(ELOOP)},
        {"SecondNameOfAnotherFile",
         [] {
             makeFile(elsewhere, rawRegionSize);
             fs::create_hard_link(elsewhere, objectFile);
         },
         {notOurs("a file of user 0, which has 0x2 names")},
         {}},
        {"NamedPipe",
         [] { ASSERT_EQ(0, ::mkfifo(objectFile, 0644)); },
         {notOurs("a named pipe of user 0")},
         {notMapped(ENXIO)}},
        {"Socket", [] { makeSocket(objectFile); }, {notOurs("a socket of user 0")}, readerCannotOpen(ENXIO)},
    };
    return *all;
}

class SharedMemoryObject : public testing::TestWithParam<Fault> {
protected:
    SharedMemoryObject() { GetParam().make(); }
    ~SharedMemoryObject() override {
        fs::remove_all(objectFile);
        fs::remove_all(elsewhere);
    }
};

TEST_P(SharedMemoryObject, Writer_LogsWhatFails_AndHasARegionOnlyIfNothingDid) {
    LogCapture log("qel.shm.access", log4cpp::Priority::WARN);
    {
        MeasuredWriter sut;
        EXPECT_THAT(log.take(), ElementsAreArray(GetParam().writerLines));
        if (!hasError(GetParam().writerLines)) {
            ASSERT_TRUE(sut.root());
            EXPECT_EQ(static_cast<long>(rawRegionSize), rawRegionSizeNow());
            EXPECT_EQ(0xFF, sut.root()->version);
        } else {
            useWithoutRegion(sut);
            log.take();
        }
    }
    EXPECT_THAT(log.entries(), IsEmpty()) << "at the end";
    if (fs::exists(elsewhere)) {
        EXPECT_EQ(std::string(rawRegionSize, '\x5A'), contentOf(elsewhere))
            << "a linked file is nobody's region";
    }
}

TEST_P(SharedMemoryObject, Reader_LogsWhatFails_AndHasARegionOnlyIfNothingDid) {
    LogCapture log("qel.shm.access", log4cpp::Priority::ERROR);
    {
        shm::QelSharedMemoryReader sut(0, false);
        sut.onInitialized();
        EXPECT_THAT(log.take(), ElementsAreArray(GetParam().readerLines));
        if (GetParam().readerLines.empty()) {
            ASSERT_TRUE(sut.root());
            EXPECT_EQ(0x5A, sut.root()->version);
        } else {
            useWithoutRegion(sut);
        }
    }
    EXPECT_THAT(log.entries(), IsEmpty()) << "a reader removes nothing";
    EXPECT_TRUE(fs::is_symlink(objectFile) || fs::exists(objectFile));
}

INSTANTIATE_TEST_SUITE_P(Of, SharedMemoryObject, testing::ValuesIn(faults()),
                         [](auto const& instance) { return instance.param.name; });

TEST(SharedMemoryObjectMissing, Reader_LogsTwice_AndFindsNothing) {
    LogCapture const log("qel.shm.access", log4cpp::Priority::ERROR);
    shm::QelSharedMemoryReader sut(0, false);

    sut.onInitialized();

    EXPECT_THAT(log.entries(), ElementsAreArray(readerCannotOpen(ENOENT)));
    useWithoutRegion(sut);
}

// Permissions

class SharedMemoryPermissions : public testing::Test {
protected:
    ~SharedMemoryPermissions() override { fs::remove_all(objectFile); }

    /// What a reader logs that opens the region as somebody without root's power over files.
    template <typename Somebody>
    Lines openingOfReader() {
        LogCapture log("qel.shm.access", log4cpp::Priority::ERROR);
        shm::QelSharedMemoryReader sut(0, false);
        {
            Somebody const somebody;
            sut.onInitialized();
        }
        auto lines = log.take();
        if (lines.empty()) {
            EXPECT_TRUE(sut.root());
        } else {
            useWithoutRegion(sut);
        }
        return lines;
    }
};

TEST_F(SharedMemoryPermissions, ModeWithoutRights_IsToldByWriterAndReader) {
    makeFile(objectFile, rawRegionSize, 0);
    EXPECT_THAT(openingOfReader<NoOverride>(), ElementsAreArray(readerCannotOpen(EACCES)));

    LogCapture const log("qel.shm.access", log4cpp::Priority::ERROR);
    NoOverride const withoutOverride;
    MeasuredWriter const sut;
    EXPECT_EQ(nullptr, sut.region());
    EXPECT_THAT(log.entries(), ElementsAreArray(writerCannotOpen(EACCES)));
}

TEST_F(SharedMemoryPermissions, ModeThatLetsOnlyRead_ServesTheReaderAlone) {
    makeFile(objectFile, rawRegionSize, 0444);
    EXPECT_THAT(openingOfReader<NoOverride>(), IsEmpty());

    LogCapture const log("qel.shm.access", log4cpp::Priority::ERROR);
    NoOverride const withoutOverride;
    MeasuredWriter const sut;
    EXPECT_THAT(log.entries(), ElementsAreArray(writerCannotOpen(EACCES)));
}

TEST_F(SharedMemoryPermissions, ObjectOfAnotherUser_IsLeftToItsOwnerByTheWriter) {
    makeFile(objectFile, rawRegionSize);
    LogCapture log("qel.shm.access", log4cpp::Priority::ERROR);
    AsNobody const nobody;
    if (!nobody.succeeded()) {
        GTEST_SKIP() << "there is no other user";
    }
    {
        MeasuredWriter sut;
        EXPECT_THAT(log.take(), ElementsAre(notOpened(EACCES), notMapped(EBADF), notUnlinked(EACCES),
                                            notMapped(EBADF), notUnlinked(EACCES)));
        useWithoutRegion(sut);
        log.take();
    }
    EXPECT_THAT(log.entries(), IsEmpty());
    EXPECT_EQ(rawRegionSize, fs::file_size(objectFile));
}

TEST_F(SharedMemoryPermissions, ObjectOfAnotherUser_IsReadIfItsModeSaysSo) {
    if (!AsNobody().succeeded()) {
        GTEST_SKIP() << "there is no other user";
    }
    makeFile(objectFile, rawRegionSize, 0600);
    EXPECT_THAT(openingOfReader<AsNobody>(), ElementsAreArray(readerCannotOpen(EACCES)));

    ::chmod(objectFile, 0644);
    EXPECT_THAT(openingOfReader<AsNobody>(), IsEmpty());
}

TEST_F(SharedMemoryPermissions, WriterWithANarrowUmask_ShutsOutReadersOfOtherUsers) {
    if (!AsNobody().succeeded()) {
        GTEST_SKIP() << "there is no other user";
    }
    auto const former = ::umask(077);
    MeasuredWriter const writer;
    ::umask(former);
    ASSERT_TRUE(writer.root());
    EXPECT_THAT(openingOfReader<AsNobody>(), ElementsAreArray(readerCannotOpen(EACCES)));
}

// Space

class FullSharedMemory : public testing::Test {
protected:
    FullSharedMemory() { EXPECT_EQ(0, ::mount("tmpfs", "/dev/shm", "tmpfs", 0, "size=512k")); }
    ~FullSharedMemory() override {
        fs::remove_all(objectFile);
        fs::remove_all(elsewhere);
        EXPECT_EQ(0, ::umount("/dev/shm")) << "a mapping was left";
    }

    /// Takes all the space that is left.
    static void fill() {
        std::ofstream file(elsewhere, std::ios::binary);
        std::string const page(4096, 'x');
        while (file.write(page.data(), static_cast<std::streamsize>(page.size())).flush()) {
        }
        ASSERT_EQ(0U, fs::space("/dev/shm").available);
    }

    LogCapture log{"qel.shm.access", log4cpp::Priority::ERROR};
};

TEST_F(FullSharedMemory, Writer_ThatFindsNoSpace_IsToldAndRecoversWithTheNextOne) {
    fill();
    {
        MeasuredWriter sut;
        EXPECT_THAT(log.take(), ElementsAre(notMapped(ENOSPC)));
        useWithoutRegion(sut);
        EXPECT_FALSE(rawRegionExists());
        log.take();
    }
    fs::remove(elsewhere);
    MeasuredWriter const next;
    EXPECT_TRUE(next.root());
    EXPECT_THAT(log.entries(), IsEmpty());
}

TEST_F(FullSharedMemory, Writer_ThatFindsAnObjectWithoutMemoryBehindIt_MeetsNoSigbus) {
    makeFile(objectFile, 0);
    fs::resize_file(objectFile, rawRegionSize); // all of it a hole
    fill();
    MeasuredWriter sut;
    EXPECT_THAT(log.take(), ElementsAre(notMapped(ENOSPC)));
    useWithoutRegion(sut);
    EXPECT_FALSE(rawRegionExists());
}

TEST_F(FullSharedMemory, Reader_ThatFindsAnObjectWithoutMemoryBehindIt_OpensItWithoutSigbus) {
    makeFile(objectFile, 0);
    fs::resize_file(objectFile, rawRegionSize);
    fill();
    shm::QelSharedMemoryReader sut(0, false);
    sut.onInitialized();
    EXPECT_TRUE(sut.root());
    EXPECT_THAT(log.entries(), IsEmpty());
}

TEST_F(FullSharedMemory, Writer_WhenSpaceEndsAfterItsStart_StoresEverywhere) {
    MeasuredWriter sut;
    ASSERT_NE(nullptr, sut.region());
    fill();
    std::memset(sut.region(), 0, rawRegionSize); // each page once
    sut.setActive();
    EXPECT_EQ(32, sut.root()->version);
    EXPECT_THAT(log.entries(), IsEmpty());
}

// Limits of the process

/// Lets a child start a writer that may not make files as large as the region; how the child ends.
template <typename Prepare>
int startOfWriterWithSmallFiles(Prepare const& prepare) {
    pid_t const child = ::fork();
    if (child == 0) {
        rlimit const limit{rawRegionSize - 1, rawRegionSize - 1};
        ::setrlimit(RLIMIT_FSIZE, &limit);
        rlimit const noDump{0, 0};
        ::setrlimit(RLIMIT_CORE, &noDump);
        prepare();
        LogCapture log("qel.shm.access", log4cpp::Priority::WARN);
        MeasuredWriter const sut;
        bool const isTold = testing::Matches(ElementsAre(notMapped(EFBIG)))(log.take());
        ::_exit(sut.region() != nullptr ? 2 : isTold ? 0 : 1);
    }
    int status = -1;
    EXPECT_EQ(child, ::waitpid(child, &status, 0));
    return status;
}

TEST(FileSizeLimit, BelowTheRegionsSize_EndsTheProcessUnlessItIgnoresTheSignal) {
    int const status = startOfWriterWithSmallFiles([] { static_cast<void>(::signal(SIGXFSZ, SIG_DFL)); });
    EXPECT_TRUE(WIFSIGNALED(status));
    EXPECT_EQ(SIGXFSZ, WTERMSIG(status));
    EXPECT_EQ(0, rawRegionSizeNow()) << "the object was created, not sized";

    EXPECT_EQ(0, startOfWriterWithSmallFiles([] { static_cast<void>(::signal(SIGXFSZ, SIG_IGN)); }))
        << "an ERROR line alone";
    EXPECT_FALSE(rawRegionExists());
}

TEST(FileSizeLimit, BelowTheRegionsSize_IsNotMetInAnObjectThatHasItsSize) {
    makeFile(objectFile, rawRegionSize);
    int const status = startOfWriterWithSmallFiles([] { static_cast<void>(::signal(SIGXFSZ, SIG_DFL)); });
    EXPECT_TRUE(WIFEXITED(status));
    EXPECT_EQ(2, WEXITSTATUS(status)) << "it has a region";
    fs::remove(objectFile);
}

TEST(OpeningFiles, ThatNoLongerSucceeds_IsToldByTheWriterOfTheRegionAndOfEachLed) {
    auto const led = [](std::string const& level, std::string const& color) {
        return LogEntry{"qel.shm.access.states", log4cpp::Priority::WARN,
                        "update: failed to write " + level + " into /sys/class/leds/" + color +
                            "/brightness"};
    };
    for (int const error : {EMFILE, ENFILE, ENOMEM}) {
        LogCapture log("qel.shm.access", log4cpp::Priority::WARN);
        withRefused(Refused::OpeningFiles, error, [&] {
            MeasuredWriter const sut;
            EXPECT_EQ(nullptr, sut.region());
            EXPECT_THAT(log.take(), ElementsAre(notOpened(error), notMapped(EBADF), notUnlinked(ENOENT),
                                                notMapped(EBADF), notUnlinked(ENOENT), led("0", "red"),
                                                led("0x1", "green"), led("0", "blue")));
        });
        MeasuredWriter const next;
        EXPECT_TRUE(next.root());
        EXPECT_THAT(log.entries(), IsEmpty());
    }
}

TEST(OpeningFiles, ThatNoLongerSucceeds_IsToldByTheReader) {
    MeasuredWriter const writer;
    for (int const error : {EMFILE, ENFILE, ENOMEM}) {
        shm::QelSharedMemoryReader sut(0, false);
        LogCapture const log("qel.shm.access", log4cpp::Priority::ERROR);
        withRefused(Refused::OpeningFiles, error, [&] { sut.onInitialized(); });
        EXPECT_THAT(log.entries(), ElementsAreArray(readerCannotOpen(error)));
        useWithoutRegion(sut);
    }
}

} // namespace
