// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "inspect/image/FileDescriptor.h"

#include <gtest/gtest.h>

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <string>
#include <thread>
#include <utility>

namespace qel::inspect {

namespace {

bool isOpen(int fd) {
    return ::fcntl(fd, F_GETFD) >= 0;
}

int openOne() {
    return ::open("/dev/null", O_RDONLY | O_CLOEXEC);
}

} // namespace

TEST(FileDescriptorTest, ClosesAtTheEnd) {
    int const fd = openOne();
    {
        FileDescriptor const descriptor(fd);
        EXPECT_TRUE(descriptor);
        EXPECT_EQ(fd, descriptor.number());
        EXPECT_TRUE(isOpen(fd));
    }
    EXPECT_FALSE(isOpen(fd));
}

TEST(FileDescriptorTest, OwnsNoneByDefaultOrByANegativeNumber) {
    EXPECT_FALSE(FileDescriptor());
    EXPECT_FALSE(FileDescriptor(-1));
}

TEST(FileDescriptorTest, AMoveHandsItOver) {
    int const fd = openOne();
    FileDescriptor from(fd);
    {
        FileDescriptor const into(std::move(from));
        EXPECT_EQ(fd, into.number());
        EXPECT_FALSE(from); // NOLINT(bugprone-use-after-move): says that it is given away
        EXPECT_TRUE(isOpen(fd));
    }
    EXPECT_FALSE(isOpen(fd));
}

TEST(FileDescriptorTest, AssignmentClosesWhatItHeld) {
    int const first = openOne();
    int const second = openOne();
    FileDescriptor descriptor(first);
    descriptor = FileDescriptor(second);
    EXPECT_FALSE(isOpen(first));
    EXPECT_EQ(second, descriptor.number());
    auto& same = descriptor;
    descriptor = std::move(same);
    EXPECT_TRUE(isOpen(second));
}

// A pipe takes far less at once.
TEST(FileDescriptorTest, WriteAll_GoesOnAfterShortWrites) {
    int ends[2] = {-1, -1};
    ASSERT_EQ(0, ::pipe(ends));
    FileDescriptor const output(ends[0]);
    FileDescriptor input(ends[1]);
    std::string const sent(1000000, 'x');
    std::string received;
    std::thread reader([&] {
        char buffer[4096];
        for (ssize_t count = 0; (count = ::read(output.number(), buffer, sizeof buffer)) > 0;) {
            received.append(buffer, static_cast<std::size_t>(count));
        }
    });
    EXPECT_EQ(0, writeAll(input.number(), sent));
    input = FileDescriptor();
    reader.join();
    EXPECT_EQ(sent, received);
}

TEST(FileDescriptorTest, WriteAll_GivesTheErrorNumber) {
    EXPECT_EQ(EBADF, writeAll(-1, "x"));
    FileDescriptor const full(::open("/dev/full", O_WRONLY));
    EXPECT_EQ(ENOSPC, writeAll(full.number(), "x"));
    EXPECT_EQ(0, writeAll(full.number(), ""));
}

} // namespace qel::inspect
