// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// The lock by which a living writer is known.
#pragma once

#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>

#include <cerrno>
#include <stdexcept>
#include <system_error>

namespace qel::test {

/// Holds the lock that a writer holds, on the object of the region's name, without a writer.
class ObjectLock {
public:
    /// @param type F_WRLCK as a writer, F_RDLCK as somebody who may only read
    /// Throws std::system_error when it cannot be had.
    explicit ObjectLock(short type = F_WRLCK)
        : fd_(::shm_open("QelSharedMemory", type == F_WRLCK ? O_RDWR : O_RDONLY, 0)) {
        struct flock whole = {};
        whole.l_type = type;
        whole.l_whence = SEEK_SET;
        if (::fcntl(fd_, F_OFD_SETLK, &whole) != 0) {
            throw std::system_error(errno, std::generic_category(), "lock of the region");
        }
    }
    ~ObjectLock() { ::close(fd_); }
    ObjectLock(ObjectLock const&) = delete;
    ObjectLock& operator=(ObjectLock const&) = delete;

private:
    int fd_;
};

} // namespace qel::test
