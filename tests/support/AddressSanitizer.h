// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// Whether the tests run under AddressSanitizer. It looks for leaks when a process ends, and a child that was forked while
/// another thread was in its runtime waits there for good.
#pragma once

#include <gtest/gtest.h>

#ifdef __has_feature
#if __has_feature(address_sanitizer)
#define QEL_TEST_ADDRESS_SANITIZER
#endif
#endif
#ifdef __SANITIZE_ADDRESS__
#define QEL_TEST_ADDRESS_SANITIZER
#endif

namespace qel::test {

#ifdef QEL_TEST_ADDRESS_SANITIZER
constexpr bool underAddressSanitizer = true;
#else
constexpr bool underAddressSanitizer = false;
#endif

} // namespace qel::test

/// For tests that fork while threads run.
#define QEL_SKIP_FORK_UNDER_ADDRESS_SANITIZER()                                                              \
    if (qel::test::underAddressSanitizer)                                                                    \
    GTEST_SKIP() << "AddressSanitizer's runtime may not survive a fork beside threads"
