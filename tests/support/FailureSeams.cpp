// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tests/support/FailureSeams.h"

#include "domain/MeasureValue.h"

#include <pthread.h>

#include <cerrno>
#include <cstddef>
#include <limits>
#include <new>

namespace {

constexpr std::size_t unlimited = std::numeric_limits<std::size_t>::max();

thread_local std::size_t allocationCount = 0;
thread_local std::size_t allocationsLeft = unlimited;
thread_local std::size_t lockCount = 0;
thread_local bool mutexesFail = false;
thread_local bool conversionThrows = false;

} // namespace

// The linker's --wrap sends every call of X to __wrap_X and calls the original __real_X.
// NOLINTBEGIN(bugprone-reserved-identifier,cert-dcl37-c,cert-dcl51-cpp): names that --wrap prescribes

// operator new(std::size_t), whose symbol tells the width of its argument.
#if __SIZEOF_SIZE_T__ == 8
void* realOperatorNew(std::size_t size) __asm__("__real__Znwm");
void* wrapOperatorNew(std::size_t size) __asm__("__wrap__Znwm");
#else
void* realOperatorNew(std::size_t size) __asm__("__real__Znwj");
void* wrapOperatorNew(std::size_t size) __asm__("__wrap__Znwj");
#endif

void* wrapOperatorNew(std::size_t size) {
    ++allocationCount;
    if (allocationsLeft == 0) {
        throw std::bad_alloc();
    }
    if (allocationsLeft != unlimited) {
        --allocationsLeft;
    }
    return realOperatorNew(size);
}

extern "C" {
int __real_pthread_mutex_lock(pthread_mutex_t* mutex);
int __wrap_pthread_mutex_lock(pthread_mutex_t* mutex) {
    ++lockCount;
    return mutexesFail ? EINVAL : __real_pthread_mutex_lock(mutex);
}

measval::MeasureValue::DoubleResult
__real__ZNK7measval12MeasureValue8toDoubleEv(measval::MeasureValue const* value);
measval::MeasureValue::DoubleResult
__wrap__ZNK7measval12MeasureValue8toDoubleEv(measval::MeasureValue const* value) {
    if (conversionThrows) {
        throw 1;
    }
    return __real__ZNK7measval12MeasureValue8toDoubleEv(value);
}
}
// NOLINTEND(bugprone-reserved-identifier,cert-dcl37-c,cert-dcl51-cpp)

namespace qel::test {

std::size_t allocations() {
    return allocationCount;
}

std::size_t locks() {
    return lockCount;
}

MemoryRunsOut::MemoryRunsOut(std::size_t allowed) {
    allocationsLeft = allowed;
}

MemoryRunsOut::~MemoryRunsOut() {
    allocationsLeft = unlimited;
}

MutexesFail::MutexesFail() {
    mutexesFail = true;
}

MutexesFail::~MutexesFail() {
    mutexesFail = false;
}

ConversionThrowsInt::ConversionThrowsInt() {
    conversionThrows = true;
}

ConversionThrowsInt::~ConversionThrowsInt() {
    conversionThrows = false;
}

} // namespace qel::test
