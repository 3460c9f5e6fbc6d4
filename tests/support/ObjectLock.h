// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// The lock of a running writer.
#pragma once

#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>

#include <cerrno>
#include <stdexcept>
#include <system_error>

namespace qel::test {

/// Holds a writer's lock on the region's object, without a writer.
///
/// Threads: reentrant.
class ObjectLock {
public:
    /// @param type F_WRLCK as a writer, F_RDLCK as a process that may only read
    /// @throws std::system_error if the lock is refused
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
