// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// Definition of a point and the order of sensor ids, the straightforward way.
#pragma once

#include "region/QelShmRecords.h"

#include <cstdint>
#include <map>
#include <mutex>
#include <utility>

namespace bench::literal {

/// Levels from the highest byte down, an unused one first; then the whole ids.
struct SvidCmp {
    bool operator()(long long left, long long right) const {
        for (int byte = 7; byte >= 2; --byte) {
            auto const leftByte = static_cast<std::uint8_t>(left >> (8 * byte));
            auto const rightByte = static_cast<std::uint8_t>(right >> (8 * byte));
            if (leftByte != rightByte) {
                if (leftByte == 0xFF) {
                    return true;
                }
                if (rightByte == 0xFF) {
                    return false;
                }
                return leftByte < rightByte;
            }
        }
        return left < right;
    }
};

using Keys = std::map<unsigned short, unsigned int>;

/// A point's slot and its values, with the mutex that guards them; a copy has a mutex of its own.
struct MPDef {
    MPDef() = default;
    MPDef(MPDef const& other) : pos(other.pos), mvs(other.mvs) {}
    MPDef(MPDef&& other) noexcept : pos(other.pos), mvs(std::move(other.mvs)) {}
    MPDef& operator=(MPDef const&) = delete;
    MPDef& operator=(MPDef&&) = delete;
    ~MPDef() = default;

    unsigned int pos = shm::NO_POSITION;
    Keys mvs;
    std::mutex mutex;
};

using Definitions = std::map<long long, MPDef, SvidCmp>;

} // namespace bench::literal
