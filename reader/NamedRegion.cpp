// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "reader/NamedRegion.h"

#include "region/ObjectLock.h"
#include "region/QelShmRecords.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>

namespace shm {

namespace {

/// The file that shm_open(REGION_NAME) opens (glibc on Linux).
constexpr char path[] = "/dev/shm/QelSharedMemory";

std::uint64_t nanoseconds(timespec const& time) {
    return static_cast<std::uint64_t>(time.tv_sec) * 1'000'000'000U +
           static_cast<std::uint64_t>(time.tv_nsec);
}

ObjectId objectId(struct stat const& status) {
    return {status.st_dev, status.st_ino};
}

} // namespace

std::optional<ObjectId> namedObject() noexcept {
    struct stat status = {};
    bool const isThere = ::lstat(path, &status) == 0;
    return isThere ? std::optional<ObjectId>(objectId(status)) : std::nullopt;
}

NamedRegion::NamedRegion() noexcept {
    // O_NONBLOCK: a named pipe under this name must not block.
    int const fd = ::shm_open(REGION_NAME, O_RDONLY | O_NONBLOCK | O_CLOEXEC, 0);
    if (fd < 0) {
        exists_ = errno != ENOENT;
        struct stat status = {};
        // lstat() needs no descriptor; the process may have none left.
        if (exists_ && ::lstat(path, &status) == 0) {
            note(status);
        }
        return;
    }
    struct stat status = {};
    if (::fstat(fd, &status) == 0) {
        note(status);
        // Query for a read lock, with which only write locks conflict: only a process that may write can hold one.
        if (auto const met = wholeFileLock(fd, F_OFD_GETLK, F_RDLCK)) {
            isLockKnown_ = true;
            isLocked_ = met == F_WRLCK;
        }
    }
    ::close(fd);
}

void NamedRegion::note(struct stat const& status) noexcept {
    id_ = objectId(status);
    changed_ = nanoseconds(status.st_ctim);
}

} // namespace shm
