// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tests/support/SmallStack.h"

#include <pthread.h>

#include <system_error>

namespace qel::test {

namespace {

void require(int error, char const* step) {
    if (error != 0) {
        throw std::system_error(error, std::generic_category(), step);
    }
}

void* call(void* action) {
    (*static_cast<std::function<void()> const*>(action))();
    return nullptr;
}

} // namespace

void runOnSmallStack(std::function<void()> const& action) {
    pthread_attr_t attributes{};
    require(pthread_attr_init(&attributes), "pthread_attr_init");
    require(pthread_attr_setstacksize(&attributes, smallStack), "pthread_attr_setstacksize");
    auto own = action;
    pthread_t thread{};
    require(pthread_create(&thread, &attributes, call, &own), "pthread_create");
    require(pthread_join(thread, nullptr), "pthread_join");
    require(pthread_attr_destroy(&attributes), "pthread_attr_destroy");
}

} // namespace qel::test
