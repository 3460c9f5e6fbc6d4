#include "reader/NamedRegion.h"

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

/// Asks for a read lock, which meets write locks alone: to have one takes the right to write the object.
bool hasWriteLock(int fd) {
    struct flock whole = {};
    whole.l_type = F_RDLCK;
    whole.l_whence = SEEK_SET; // from 0 up to any end: l_start and l_len are 0
    return ::fcntl(fd, F_OFD_GETLK, &whole) == 0 && whole.l_type == F_WRLCK;
}

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
        return;
    }
    struct stat status = {};
    if (::fstat(fd, &status) == 0) {
        id_ = objectId(status);
        changed_ = nanoseconds(status.st_ctim);
        isLocked_ = hasWriteLock(fd);
    }
    ::close(fd);
}

} // namespace shm
