// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// Records and fields of the region as bytes.
#pragma once

#include "region/QelShmRecords.h"

#include <algorithm>
#include <cstring>
#include <type_traits>

namespace qel::inspect {

/// Compares byte by byte: the number NaN equals itself, 0.0 and -0.0 differ. Reentrant.
template <typename Record>
bool hasSameBits(Record const& left, Record const& right) {
    static_assert(std::is_trivially_copyable_v<Record>);
    // NOLINTNEXTLINE(bugprone-suspicious-memory-comparison,cert-exp42-c,cert-flp37-c): bytes on purpose
    return std::memcmp(&left, &right, sizeof left) == 0;
}

/// Whether no writer has used a slot yet: all of its bytes are WIPE_BYTE. Reentrant.
template <typename Slot>
bool isUnused(Slot const& slot) {
    auto const* const bytes = reinterpret_cast<unsigned char const*>(&slot);
    return std::all_of(bytes, bytes + sizeof slot, [](unsigned char byte) { return byte == shm::WIPE_BYTE; });
}

} // namespace qel::inspect
