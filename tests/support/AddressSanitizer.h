/// @file
/// Whether the tests run under AddressSanitizer, which looks for leaks when a process ends.
#pragma once

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
