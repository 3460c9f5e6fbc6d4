// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "reader/VisitsOfThread.h"

#include <pthread.h>

#include <new>
#include <system_error>
#include <type_traits>
#include <utility>

namespace shm {

namespace {

// Usable in every phase of a thread's life, also while its other variables are destroyed.
thread_local VisitsOfThread visits;
static_assert(std::is_trivially_destructible_v<VisitsOfThread>);

pthread_key_t createKey(void (*atEnd)(void*)) {
    pthread_key_t key{};
    if (int const errnum = pthread_key_create(&key, atEnd); errnum != 0) {
        throw std::system_error(errnum, std::generic_category(), "pthread_key_create");
    }
    return key;
}

} // namespace

VisitsOfThread& VisitsOfThread::get() {
    return visits;
}

void VisitsOfThread::releaseAtEnd() {
    // Not by the destructor of a thread-local variable: without memory its registration ends the process.
    static pthread_key_t const key = createKey(release);
    if (pthread_setspecific(key, this) != 0) {
        throw std::bad_alloc();
    }
    isReleasedAtEnd_ = true;
}

void VisitsOfThread::release(void* visitsOfThread) {
    auto& ended = *static_cast<VisitsOfThread*>(visitsOfThread);
    ended.positions_.release();
    ended.isReleasedAtEnd_ = false;
}

void VisitsOfThread::retire(std::unique_ptr<RetiredVisitor> visitor) {
    if (isInCallback()) {
        visitor->next.reset(std::exchange(retired_, nullptr));
        retired_ = visitor.release();
    }
}

void VisitsOfThread::destroyRetired() {
    // One by one: a visitor's destructor may visit too.
    while (auto const newest = std::unique_ptr<RetiredVisitor>(std::exchange(retired_, nullptr))) {
        retired_ = newest->next.release();
    }
}

} // namespace shm
