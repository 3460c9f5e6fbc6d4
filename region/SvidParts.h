// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// The two parts of a value's sensor id: its point's id, and its key in the low 16 bits.
///
/// Threads: reentrant.
#pragma once

namespace shm {

/// @param svid of a value or a point
/// @return the point's svid: the low 16 bits are 0
constexpr long long pointSvid(long long svid) {
    return svid & ~0xFFFFLL;
}

/// @param svid of a value or a point
/// @return the value key, 0 for a point; see keyName()
constexpr unsigned short valueKey(long long svid) {
    return static_cast<unsigned short>(svid & 0xFFFFLL);
}

} // namespace shm
