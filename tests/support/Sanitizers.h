// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// Which sanitizer the tests run under. All of it is reentrant.
#pragma once

#include <gtest/gtest.h>

// GCC names a sanitizer by a macro, Clang answers a query.
#ifndef __has_feature
#define __has_feature(feature) 0
#endif

#if defined(__SANITIZE_ADDRESS__) || __has_feature(address_sanitizer)
#define QEL_TEST_ADDRESS_SANITIZER 1
#else
#define QEL_TEST_ADDRESS_SANITIZER 0
#endif

#if defined(__SANITIZE_THREAD__) || __has_feature(thread_sanitizer)
#define QEL_TEST_THREAD_SANITIZER 1
#else
#define QEL_TEST_THREAD_SANITIZER 0
#endif

namespace qel::test {

/// Looks for leaks when a process ends. A child that was forked while another thread was in its runtime hangs.
constexpr bool underAddressSanitizer = QEL_TEST_ADDRESS_SANITIZER != 0;

/// Has an operator new of its own.
constexpr bool underThreadSanitizer = QEL_TEST_THREAD_SANITIZER != 0;

} // namespace qel::test

/// For tests that fork while threads run.
#define QEL_SKIP_FORK_UNDER_ADDRESS_SANITIZER()                                                              \
    if (qel::test::underAddressSanitizer)                                                                    \
    GTEST_SKIP() << "AddressSanitizer's runtime may hang in a child that is forked beside threads"
