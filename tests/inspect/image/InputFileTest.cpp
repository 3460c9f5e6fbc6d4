// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "inspect/image/InputFile.h"

#include "tests/inspect/FileTest.h"

#include <gtest/gtest.h>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <thread>

namespace qel::inspect {

namespace {

using std::chrono::milliseconds;

class InputFileTest : public test::FileTest<std::runtime_error> {
protected:
    std::string pipePath() const {
        EXPECT_EQ(0, ::mkfifo(path("pipe").c_str(), 0600));
        return path("pipe");
    }

    static std::string readOnce(InputFile const& sut) {
        std::array<char, 16> bytes{};
        auto const count = sut.read(bytes.data(), bytes.size());
        return count < 0 ? "error" : std::string(bytes.data(), static_cast<std::size_t>(count));
    }

    /// Opens a pipe for writing after a while, and writes after another while.
    static std::thread writer(std::string const& pipe, milliseconds opening, milliseconds writing) {
        return std::thread([=] {
            std::this_thread::sleep_for(opening);
            FileDescriptor const descriptor(::open(pipe.c_str(), O_WRONLY | O_CLOEXEC));
            std::this_thread::sleep_for(writing);
            EXPECT_EQ(4, ::write(descriptor.number(), "late", 4));
        });
    }
};

} // namespace

TEST_F(InputFileTest, RegularFile_HasBytesAndASize) {
    fill(path("file"), "some bytes");
    InputFile const sut(path("file"));
    ASSERT_TRUE(sut);
    EXPECT_EQ(10U, sut.regularSize());
    EXPECT_EQ("some bytes", readOnce(sut));
    EXPECT_EQ("", readOnce(sut));
}

TEST_F(InputFileTest, RegularFile_CanBeReadAnywhereAndAgain) {
    fill(path("file"), "some bytes");
    InputFile const sut(path("file"));
    EXPECT_TRUE(sut.isRegular());
    for (int time = 0; time < 2; ++time) {
        std::array<char, 5> bytes{};
        EXPECT_EQ(5, sut.readAt(bytes.data(), bytes.size(), 5));
        EXPECT_EQ("bytes", std::string(bytes.data(), bytes.size()));
    }
    EXPECT_EQ("some bytes", readOnce(sut)) << "reads in turn go on where they were";
    EXPECT_FALSE(InputFile(pipePath()).isRegular());
}

TEST_F(InputFileTest, FileThatIsNotThere_IsNotOpenedAndErrnoSaysWhy) {
    InputFile const sut(path("none"));
    EXPECT_EQ(ENOENT, errno);
    EXPECT_FALSE(sut);
}

TEST_F(InputFileTest, Device_HasNoSize) {
    InputFile const sut("/dev/zero");
    EXPECT_EQ(0U, sut.regularSize());
    EXPECT_EQ(std::string(16, '\0'), readOnce(sut));
}

TEST_F(InputFileTest, WriterOfAPipe_MayComeLateAndHesitate) {
    auto const pipe = pipePath();
    for (auto const writing : {milliseconds(0), milliseconds(200)}) {
        InputFile const sut(pipe);
        auto late = writer(pipe, milliseconds(100), writing);
        EXPECT_EQ("late", readOnce(sut));
        late.join();
        EXPECT_EQ("", readOnce(sut)) << "the end";
    }
}

// Opening it the usual way would wait for ever.
TEST_F(InputFileTest, PipeThatNobodyWritesTo_IsGivenUp) {
    InputFile const sut(pipePath());
    ASSERT_TRUE(sut);
    errno = 0;
    EXPECT_EQ("error", readOnce(sut));
    EXPECT_EQ(ENODATA, errno);
}

} // namespace qel::inspect
