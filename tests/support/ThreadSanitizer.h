// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// Whether the tests run under ThreadSanitizer, where a few of them cannot.
#pragma once

#ifdef __has_feature
#if __has_feature(thread_sanitizer)
#define QEL_TEST_THREAD_SANITIZER
#endif
#endif
#ifdef __SANITIZE_THREAD__
#define QEL_TEST_THREAD_SANITIZER
#endif

namespace qel::test {

#ifdef QEL_TEST_THREAD_SANITIZER
constexpr bool underThreadSanitizer = true;
#else
constexpr bool underThreadSanitizer = false;
#endif

} // namespace qel::test
