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

/// Where Linux keeps what shm_open(REGION_NAME) opens.
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
    // O_NONBLOCK: a named pipe in its place must not hold up.
    int const fd = ::shm_open(REGION_NAME, O_RDONLY | O_NONBLOCK | O_CLOEXEC, 0);
    if (fd < 0) {
        exists_ = errno != ENOENT;
        struct stat status = {};
        // Which one it is takes no descriptor, of which the process may have run out.
        if (exists_ && ::lstat(path, &status) == 0) {
            note(status);
        }
        return;
    }
    struct stat status = {};
    if (::fstat(fd, &status) == 0) {
        note(status);
        // Asks for a read lock, which meets write locks alone: to have one takes the right to write the object.
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
