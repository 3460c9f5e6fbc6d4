// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tests/support/RawRegion.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <optional>
#include <system_error>

namespace qel::test {

namespace {

constexpr char const* objectName = "QelSharedMemory";

[[noreturn]] void fail(char const* step) {
    throw std::system_error(errno, std::generic_category(), step);
}

std::optional<struct stat> statusOfObject() {
    int const fd = ::shm_open(objectName, O_RDONLY, 0);
    if (fd < 0) {
        return std::nullopt;
    }
    struct stat status = {};
    int const result = ::fstat(fd, &status);
    ::close(fd);
    return result == 0 ? std::optional(status) : std::nullopt;
}

} // namespace

bool rawRegionExists() {
    return rawRegionSizeNow() >= 0;
}

long rawRegionSizeNow() {
    auto const status = statusOfObject();
    return status ? static_cast<long>(status->st_size) : -1;
}

std::uint64_t rawRegionInode() {
    auto const status = statusOfObject();
    return status ? status->st_ino : 0;
}

RawRegion::RawRegion(bool create) {
    int const fd = ::shm_open(objectName, create ? O_RDWR | O_CREAT : O_RDWR, 0644);
    if (fd < 0) {
        fail("shm_open");
    }
    if (create && ::ftruncate(fd, rawRegionSize) != 0) {
        ::close(fd);
        fail("ftruncate");
    }
    void* const mapping = ::mmap(nullptr, rawRegionSize, PROT_READ | PROT_WRITE, MAP_SHARED, fd, 0);
    ::close(fd);
    if (mapping == MAP_FAILED) {
        fail("mmap");
    }
    bytes_ = static_cast<std::uint8_t*>(mapping);
}

RawRegion::~RawRegion() {
    ::munmap(bytes_, rawRegionSize);
}

} // namespace qel::test
