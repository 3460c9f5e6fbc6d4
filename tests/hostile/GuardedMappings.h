// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// Mappings of the region that no access may leave.
#pragma once

#include <cstdint>

namespace qel::test {

/// While one lives, every mapping of the region that this program makes, the library's as well as a test's own, has an
/// inaccessible page before and behind it. The region is no whole number of pages: it either begins where the front
/// guard ends or ends where the rear guard begins, so one of the two places shows any access beyond it. All mappings
/// of one file at the same place show the same bytes. Needs the linker's --wrap for mmap and munmap.
///
/// One at a time; it must outlive the mappings.
///
/// Threads: thread-bound to the thread that made it; no other thread may map or unmap while it comes or goes.
class GuardedMappings {
public:
    enum class Place : std::uint8_t { BehindFrontGuard, BeforeRearGuard };

    explicit GuardedMappings(Place place);
    ~GuardedMappings();
    GuardedMappings(GuardedMappings const&) = delete;
    GuardedMappings& operator=(GuardedMappings const&) = delete;
};

} // namespace qel::test
