// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tests/support/ScarceMemory.h"

#include "tests/support/Sanitizers.h"

#include <malloc.h>

#include <atomic>
#include <cstddef>
#include <cstdlib>
#include <limits>
#include <new>

namespace {

constexpr std::size_t unlimited = std::numeric_limits<std::size_t>::max();

struct Limits {
    std::size_t allocations = unlimited;
    std::size_t failing = unlimited;
    std::size_t bytes = unlimited;
    bool spared = false;
};

thread_local Limits limits;
std::atomic<bool> othersFail{false};
std::atomic<std::size_t> failureCount{0};

bool permits(std::size_t size) {
    if (othersFail && !limits.spared) {
        return false;
    }
    if (limits.allocations == 0) {
        if (limits.failing == 0) {
            return true;
        }
        --limits.failing;
        return false;
    }
    if (limits.allocations != unlimited) {
        --limits.allocations;
    }
    return size <= limits.bytes;
}

[[maybe_unused]] void* allocate(std::size_t size) noexcept {
    if (!permits(size)) {
        ++failureCount;
        return nullptr;
    }
    void* const block = std::malloc(size == 0 ? 1 : size);
    if (block != nullptr && limits.bytes != unlimited) {
        auto const used = ::malloc_usable_size(block);
        limits.bytes -= used < limits.bytes ? used : limits.bytes;
    }
    return block;
}

[[maybe_unused]] void release(void* block) noexcept {
    if (block != nullptr && limits.bytes != unlimited) {
        limits.bytes += ::malloc_usable_size(block);
    }
    std::free(block);
}

} // namespace

#if !QEL_TEST_THREAD_SANITIZER
// All of them, so that what one allocates is freed by its counterpart under sanitizers too.
void* operator new(std::size_t size) {
    void* const block = allocate(size);
    if (block == nullptr) {
        throw std::bad_alloc();
    }
    return block;
}

void* operator new[](std::size_t size) {
    return ::operator new(size);
}

void* operator new(std::size_t size, std::nothrow_t const& /*tag*/) noexcept {
    return allocate(size);
}

void* operator new[](std::size_t size, std::nothrow_t const& /*tag*/) noexcept {
    return allocate(size);
}

void operator delete(void* block) noexcept {
    release(block);
}

void operator delete[](void* block) noexcept {
    release(block);
}

void operator delete(void* block, std::size_t /*size*/) noexcept {
    release(block);
}

void operator delete[](void* block, std::size_t /*size*/) noexcept {
    release(block);
}

void operator delete(void* block, std::nothrow_t const& /*tag*/) noexcept {
    release(block);
}

void operator delete[](void* block, std::nothrow_t const& /*tag*/) noexcept {
    release(block);
}

#endif

namespace qel::test {

ScarceMemory ScarceMemory::afterAllocations(std::size_t allowed) {
    failureCount = 0;
    limits.allocations = allowed;
    return {};
}

ScarceMemory ScarceMemory::onceAfterAllocations(std::size_t allowed) {
    failureCount = 0;
    limits.failing = 1;
    limits.allocations = allowed;
    return {};
}

ScarceMemory ScarceMemory::ofBytes(std::size_t bytes) {
    failureCount = 0;
    limits.bytes = bytes;
    return {};
}

ScarceMemory ScarceMemory::inOtherThreads() {
    failureCount = 0;
    limits.spared = true;
    othersFail = true;
    return {};
}

ScarceMemory::~ScarceMemory() {
    othersFail = false;
    limits = Limits();
}

// NOLINTNEXTLINE(readability-convert-member-functions-to-static): asked of the object that stands for the limit
std::size_t ScarceMemory::failures() const {
    return failureCount;
}

} // namespace qel::test
