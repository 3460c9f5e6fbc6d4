// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// Equality of stored content.
#pragma once

#include <cstring>
#include <type_traits>

namespace qel::inspect {

/// Whether both consist of the same bytes: the number NaN equals itself, 0.0 and -0.0 differ. Any thread.
template <typename Record>
bool hasSameBits(Record const& left, Record const& right) {
    static_assert(std::is_trivially_copyable_v<Record>);
    // NOLINTNEXTLINE(bugprone-suspicious-memory-comparison,cert-exp42-c,cert-flp37-c): the bytes are what is meant
    return std::memcmp(&left, &right, sizeof left) == 0;
}

} // namespace qel::inspect
