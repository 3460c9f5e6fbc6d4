// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "inspect/image/FileOutput.h"

#include "inspect/image/FileDescriptor.h"

#include <gtest/gtest.h>

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <filesystem>
#include <string>
#include <thread>

namespace qel::inspect {

// A pipe takes far less at once.
TEST(FileOutputTest, WriteAll_GoesOnAfterShortWrites) {
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

TEST(FileOutputTest, WriteAll_GivesTheErrorNumber) {
    EXPECT_EQ(EBADF, writeAll(-1, "x"));
    FileDescriptor const full(::open("/dev/full", O_WRONLY));
    EXPECT_EQ(ENOSPC, writeAll(full.number(), "x"));
    EXPECT_EQ(0, writeAll(full.number(), ""));
}

TEST(FileOutputTest, LiveObject_IsKnownByItsPath) {
    EXPECT_TRUE(isLiveObject("/dev/shm/QelSharedMemory"));
    EXPECT_TRUE(isLiveObject("/dev/../dev/shm/./QelSharedMemory"));
    EXPECT_FALSE(isLiveObject("/dev/shm/QelSharedMemory2"));
    EXPECT_FALSE(isLiveObject("/tmp/QelSharedMemory"));
    EXPECT_FALSE(isLiveObject("/nowhere/QelSharedMemory"));
    EXPECT_FALSE(isLiveObject(""));
}

TEST(FileOutputTest, LiveObject_IsKnownByItsNameInItsDirectory) {
    auto const before = std::filesystem::current_path();
    std::filesystem::current_path("/dev/shm");
    EXPECT_TRUE(isLiveObject("QelSharedMemory"));
    std::filesystem::current_path(before);
}

} // namespace qel::inspect
