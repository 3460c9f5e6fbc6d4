// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// A damaged region by the bytes of a fuzzer.
#pragma once

#include "tests/fuzz/Input.h"

#include "region/QelShmRecords.h"

#include <memory>

namespace qel::fuzz {

/// What the patches are made to.
enum class Base : std::uint8_t {
    SampleUnit, ///< a small unit as the writer lays it out, see tests/inspect/SampleUnit.h
    Wiped,
};

/// Makes a region and applies all of the input to it as patches. Each patch is the kind of record (0 root, 1 point,
/// 2 value, 3 any offset; modulo 4), the slot (one byte), the offset in the record (one byte; of kind 3: four bytes in
/// the region, lowest first, instead of slot and offset), the count of bytes (modulo 16) and the bytes. Whatever is
/// beyond a record or the region is taken modulo its size.
std::unique_ptr<shm::record::Region> patchedRegion(Base base, Input input);

} // namespace qel::fuzz
