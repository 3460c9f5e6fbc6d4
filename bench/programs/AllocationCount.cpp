// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "bench/programs/AllocationCount.h"

#include <malloc.h>

#include <atomic>
#include <cerrno>
#include <cstdlib>

// NOLINTBEGIN(bugprone-reserved-identifier): the C library's names of what lies behind its functions.
extern "C" {
void* __libc_malloc(std::size_t size);
void* __libc_calloc(std::size_t count, std::size_t size);
void* __libc_realloc(void* block, std::size_t size);
void* __libc_memalign(std::size_t alignment, std::size_t size);
void __libc_free(void* block);
}
// NOLINTEND(bugprone-reserved-identifier)

namespace {

std::atomic<std::size_t> allocations{0};
std::atomic<std::size_t> bytesInUse{0};

void* counted(void* block) {
    if (block != nullptr) {
        allocations.fetch_add(1, std::memory_order_relaxed);
        bytesInUse.fetch_add(malloc_usable_size(block), std::memory_order_relaxed);
    }
    return block;
}

void uncount(void* block) {
    if (block != nullptr) {
        bytesInUse.fetch_sub(malloc_usable_size(block), std::memory_order_relaxed);
    }
}

} // namespace

// The program's own definitions come before the C library's for everything that is linked to it.
// NOLINTBEGIN(readability-inconsistent-declaration-parameter-name): the C library's names are reserved ones.
extern "C" {

void* malloc(std::size_t size) {
    return counted(__libc_malloc(size));
}

void* calloc(std::size_t count, std::size_t size) {
    return counted(__libc_calloc(count, size));
}

void* realloc(void* block, std::size_t size) {
    uncount(block);
    return counted(__libc_realloc(block, size));
}

void* memalign(std::size_t alignment, std::size_t size) {
    return counted(__libc_memalign(alignment, size));
}

void* aligned_alloc(std::size_t alignment, std::size_t size) {
    return counted(__libc_memalign(alignment, size));
}

int posix_memalign(void** block, std::size_t alignment, std::size_t size) {
    *block = counted(__libc_memalign(alignment, size));
    return *block == nullptr ? ENOMEM : 0;
}

void free(void* block) {
    uncount(block);
    __libc_free(block);
}

} // extern "C"
// NOLINTEND(readability-inconsistent-declaration-parameter-name)

bench::AllocationCount bench::allocationCount() {
    return {allocations.load(), bytesInUse.load()};
}
