// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tests/hostile/GuardedMappings.h"

#include "tests/support/RawRegion.h"

#include <sys/mman.h>
#include <unistd.h>

#include <cstddef>
#include <cstdlib>
#include <optional>

namespace {

using qel::test::GuardedMappings;
using qel::test::rawRegionSize;

std::optional<GuardedMappings::Place> active;

std::size_t pageSize() {
    return static_cast<std::size_t>(::sysconf(_SC_PAGESIZE));
}

/// The pages that a region takes.
std::size_t regionPages() {
    return (rawRegionSize + pageSize() - 1) / pageSize() * pageSize();
}

std::size_t frontGap() {
    return active == GuardedMappings::Place::BeforeRearGuard ? regionPages() - rawRegionSize : 0;
}

} // namespace

// NOLINTBEGIN(bugprone-reserved-identifier,cert-dcl37-c,cert-dcl51-cpp): the linker's names for --wrap.
extern "C" {

void* __real_mmap(void* address, size_t length, int protection, int flags, int fd, off_t offset);
int __real_munmap(void* address, size_t length);

void* __wrap_mmap(void* address, size_t length, int protection, int flags, int fd, off_t offset);
int __wrap_munmap(void* address, size_t length);

void* __wrap_mmap(void* address, size_t length, int protection, int flags, int fd, off_t offset) {
    if (!active || length != rawRegionSize) {
        return __real_mmap(address, length, protection, flags, fd, offset);
    }
    auto const whole = regionPages() + 2 * pageSize();
    void* const reserved = __real_mmap(nullptr, whole, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    if (reserved == MAP_FAILED) { // NOLINT(performance-no-int-to-ptr): POSIX's constant
        return reserved;
    }
    auto* const pages = static_cast<std::uint8_t*>(reserved) + pageSize();
    void* const mapped = __real_mmap(pages, regionPages(), protection, flags | MAP_FIXED, fd, offset);
    if (mapped == MAP_FAILED) { // NOLINT(performance-no-int-to-ptr)
        __real_munmap(reserved, whole);
        return mapped;
    }
    return pages + frontGap();
}

int __wrap_munmap(void* address, size_t length) {
    if (!active || length != rawRegionSize) {
        return __real_munmap(address, length);
    }
    auto* const reserved = static_cast<std::uint8_t*>(address) - frontGap() - pageSize();
    return __real_munmap(reserved, regionPages() + 2 * pageSize());
}

} // extern "C"
// NOLINTEND(bugprone-reserved-identifier,cert-dcl37-c,cert-dcl51-cpp)

namespace qel::test {

GuardedMappings::GuardedMappings(Place place) {
    if (active) {
        std::abort(); // the mappings of the first one would be taken for those of this one
    }
    active = place;
}

GuardedMappings::~GuardedMappings() {
    active.reset();
}

} // namespace qel::test
