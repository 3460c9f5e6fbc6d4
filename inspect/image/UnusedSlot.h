// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// Slots that the writer has not handed out yet.
#pragma once

#include "region/QelShmRecords.h"

#include <algorithm>

namespace qel::inspect {

/// Whether a slot holds nothing but the bytes that a region is wiped with.
template <typename Slot>
bool isUnused(Slot const& slot) {
    auto const* const bytes = reinterpret_cast<unsigned char const*>(&slot);
    return std::all_of(bytes, bytes + sizeof slot, [](unsigned char byte) { return byte == shm::WIPE_BYTE; });
}

} // namespace qel::inspect
