// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// A system without threads to give.
#pragma once

#include <pthread.h>

#include <cstdint>

namespace qel::test {

/// While one lives, no thread with default attributes can be created: it would need too large a stack.
///
/// Threads: thread-bound to the thread that made it; one object at a time.
class NoMoreThreads {
public:
    NoMoreThreads() {
        pthread_getattr_default_np(&former_);
        pthread_attr_t enormous;
        pthread_attr_init(&enormous);
        pthread_attr_setstacksize(&enormous, ~(SIZE_MAX / 4)); // three quarters of all addresses
        pthread_setattr_default_np(&enormous);
        pthread_attr_destroy(&enormous);
    }
    ~NoMoreThreads() {
        pthread_setattr_default_np(&former_);
        pthread_attr_destroy(&former_);
    }
    NoMoreThreads(NoMoreThreads const&) = delete;
    NoMoreThreads& operator=(NoMoreThreads const&) = delete;

private:
    pthread_attr_t former_{};
};

} // namespace qel::test
