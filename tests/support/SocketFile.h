// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// A socket in the file system.
#pragma once

#include <gtest/gtest.h>

#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <cstring>

namespace qel::test {

/// Makes a socket with a name.
/// @param type SOCK_STREAM or SOCK_DGRAM
/// @return the descriptor, which the caller closes
inline int boundSocket(char const* path, int type) {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    std::strncpy(address.sun_path, path, sizeof address.sun_path - 1);
    int const fd = ::socket(AF_UNIX, type | SOCK_CLOEXEC, 0);
    EXPECT_EQ(0, ::bind(fd, reinterpret_cast<sockaddr const*>(&address), sizeof address));
    return fd;
}

/// Makes a socket that nobody listens to.
inline void makeSocket(char const* path) {
    ::close(boundSocket(path, SOCK_STREAM));
}

} // namespace qel::test
