// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// The two parts of a value's sensor id: the id of its point, and its key in the low 16 bits.
#pragma once

namespace shm {

/// The point that a value belongs to: the value's svid without its key.
constexpr long long pointSvid(long long svid) {
    return svid & ~0xFFFFLL;
}

/// What a value is, see keyName().
constexpr unsigned short valueKey(long long svid) {
    return static_cast<unsigned short>(svid & 0xFFFFLL);
}

} // namespace shm
