// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

// Each call of the region's access fails, with several errors each.

#include "reader/QelSharedMemoryReader.h"
#include "tests/faults/FaultLines.h"
#include "tests/region/FailingCall.h"
#include "tests/support/ForgedRegion.h"
#include "writer/QelSharedMemoryWriter.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cerrno>
#include <memory>
#include <ostream>
#include <string>
#include <vector>

namespace {

using qel::test::Call;
using qel::test::FailingCall;
using qel::test::ForgedRegion;
using qel::test::LogCapture;
using qel::test::LogEntry;
using qel::test::notMapped;
using qel::test::notOpened;
using qel::test::notUnlinked;
using qel::test::notUnmapped;
using qel::test::rawRegionExists;
using testing::ElementsAreArray;
using testing::IsEmpty;

using Lines = std::vector<LogEntry>;

struct Failure {
    std::string name;
    Call call;
    std::vector<int> errors;
    Lines (*opening)(int error); ///< what the opening logs
    Lines (*closing)(int error); ///< what the end logs
    bool mapped;                 ///< whether there is a region in between
    bool left;                   ///< whether the object is there in the end

    friend std::ostream& operator<<(std::ostream& out, Failure const& failure) { return out << failure.name; }
};

Lines nothing(int /*error*/) {
    return {};
}
Lines mapLine(int error) {
    return {notMapped(error)};
}

std::vector<Failure> const& writerFailures() {
    static auto const* const all = new std::vector<Failure>{
        {"ShmOpen",
         Call::ShmOpen,
         {EACCES, EMFILE, ENFILE, ENOMEM, ENOSPC, EINTR},
         [](int error) {
             return Lines{notOpened(error), notMapped(EBADF), notUnlinked(ENOENT), notMapped(EBADF),
                          notUnlinked(ENOENT)};
         },
         nothing,
         false,
         false},
        {"Fstat", Call::Fstat, {EIO, EOVERFLOW}, nothing, nothing, true, false},
        {"Ftruncate", Call::Ftruncate, {EFBIG, EINVAL, EIO, EPERM, EINTR}, mapLine, nothing, false, false},
        {"PosixFallocate",
         Call::PosixFallocate,
         {ENOSPC, EFBIG, EIO, ENODEV, EOPNOTSUPP},
         mapLine,
         nothing,
         false,
         false},
        {"Mmap", Call::Mmap, {ENOMEM, EAGAIN, ENODEV, EPERM, ENFILE}, mapLine, nothing, false, false},
        {"Close", Call::Close, {EINTR, EIO}, nothing, nothing, true, false},
        {"Fcntl", Call::Fcntl, {EINVAL, ENOLCK, EINTR, ENOSYS}, nothing, nothing, true, false},
        {"Munmap",
         Call::Munmap,
         {EINVAL, ENOMEM},
         nothing,
         [](int error) { return Lines{notUnmapped(error)}; },
         true,
         false},
        {"ShmUnlink",
         Call::ShmUnlink,
         {EACCES, ENOENT, EROFS},
         nothing,
         [](int error) { return Lines{notUnlinked(error)}; },
         true,
         true},
    };
    return *all;
}

std::vector<Failure> const& readerFailures() {
    static auto const* const all = new std::vector<Failure>{
        {"ShmOpen",
         Call::ShmOpen,
         {EACCES, EMFILE, ENFILE, ENOMEM, ENOENT, EINTR},
         [](int error) {
             return Lines{notOpened(error), notMapped(EBADF)};
         },
         nothing,
         false,
         true},
        {"Fstat", Call::Fstat, {EIO, EOVERFLOW}, nothing, nothing, true, true},
        {"Mmap", Call::Mmap, {ENOMEM, EAGAIN, ENODEV, EPERM, ENFILE}, mapLine, nothing, false, true},
        {"Close", Call::Close, {EINTR, EIO}, nothing, nothing, true, true},
        {"Munmap",
         Call::Munmap,
         {EINVAL, ENOMEM},
         nothing,
         [](int error) { return Lines{notUnmapped(error)}; },
         true,
         true},
    };
    return *all;
}

bool isOfTheEnd(Call call) {
    return call == Call::Munmap || call == Call::ShmUnlink;
}

/// Opens, uses and ends a region's access while the call fails in the phase that it belongs to, and once more after it.
template <typename Open>
void expectAsTold(Failure const& failure, Open const& open) {
    for (int const error : failure.errors) {
        SCOPED_TRACE(error);
        LogCapture log("qel.shm.access", log4cpp::Priority::ERROR);
        std::unique_ptr<FailingCall> failing;
        auto const fail = [&] {
            failing = std::make_unique<FailingCall>(failure.call, error);
        };
        if (!isOfTheEnd(failure.call)) {
            fail();
        }
        auto sut = open();
        EXPECT_EQ(failure.mapped, static_cast<bool>(sut->root()));
        EXPECT_THAT(log.take(), ElementsAreArray(failure.opening(error)));

        if (isOfTheEnd(failure.call)) {
            fail();
        }
        sut.reset();
        EXPECT_EQ(0, FailingCall::left()) << "the call was not made";
        EXPECT_THAT(log.take(), ElementsAreArray(failure.closing(error)));
        EXPECT_EQ(failure.left, rawRegionExists());

        failing.reset();
        EXPECT_TRUE(open()->root()) << "the next one";
        EXPECT_THAT(log.entries(), IsEmpty());
    }
}

class WriterSystemCalls : public testing::TestWithParam<Failure> {};

TEST_P(WriterSystemCalls, Failing_IsLogged_AndTheNextWriterHasItsRegion) {
    expectAsTold(GetParam(), [] { return std::make_unique<shm::QelSharedMemoryWriter>(); });
    EXPECT_FALSE(rawRegionExists());
}

INSTANTIATE_TEST_SUITE_P(Call, WriterSystemCalls, testing::ValuesIn(writerFailures()),
                         [](auto const& instance) { return instance.param.name; });

class ReaderSystemCalls : public testing::TestWithParam<Failure> {};

TEST_P(ReaderSystemCalls, Failing_IsLogged_AndTheNextReaderHasItsRegion) {
    ForgedRegion const region;
    expectAsTold(GetParam(), [] {
        auto reader = std::make_unique<shm::QelSharedMemoryReader>(0, false);
        reader->onInitialized();
        EXPECT_EQ(nullptr, reader->mpnt(1, true));
        return reader;
    });
}

INSTANTIATE_TEST_SUITE_P(Call, ReaderSystemCalls, testing::ValuesIn(readerFailures()),
                         [](auto const& instance) { return instance.param.name; });

TEST(ReaderSystemCallsNotMade, SizingAndUnlinking_AreTheWritersAlone) {
    ForgedRegion const region;
    for (auto const call : {Call::Ftruncate, Call::PosixFallocate, Call::ShmUnlink}) {
        FailingCall const failing(call, EPERM);
        {
            shm::QelSharedMemoryReader sut(0, false);
            sut.onInitialized();
            EXPECT_TRUE(sut.root());
        }
        EXPECT_EQ(1, FailingCall::left());
    }
    EXPECT_TRUE(rawRegionExists());
}

TEST(WriterSystemCallsInterrupted, ReservingThatIsInterrupted_IsRepeated) {
    LogCapture const log("qel.shm.access", log4cpp::Priority::ERROR);
    FailingCall const failing(Call::PosixFallocate, EINTR, 100);
    shm::QelSharedMemoryWriter const sut;
    EXPECT_TRUE(sut.root());
    EXPECT_EQ(0, FailingCall::left());
    EXPECT_THAT(log.entries(), IsEmpty());
}

} // namespace
