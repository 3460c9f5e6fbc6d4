// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// What a reader's index of a region depends on.
#pragma once

#include "inspect/image/Image.h"
#include "inspect/image/PointTree.h"

#include <cstdint>
#include <vector>

namespace qel::inspect {

/// The points and values of a tree, in its order: their ids and keys, slots, depths and type codes. Two fingerprints are
/// equal if and only if none of these differs. Times, states and numbers do not count.
///
/// Threads: reentrant.
class StructureFingerprint {
public:
    /// Of a region without points.
    StructureFingerprint() = default;

    /// @param image whose tree it is
    /// @param tree  of the image
    StructureFingerprint(Image const& image, PointTree const& tree);

    friend bool operator==(StructureFingerprint const& left, StructureFingerprint const& right) {
        return left.numbers_ == right.numbers_;
    }
    friend bool operator!=(StructureFingerprint const& left, StructureFingerprint const& right) {
        return !(left == right);
    }

private:
    std::vector<std::int64_t> numbers_;
};

} // namespace qel::inspect
