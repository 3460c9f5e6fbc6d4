// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// Whether what a region shows is current, and why not.
#pragma once

#include <chrono>
#include <cstdint>
#include <ostream>

namespace shm {

/// In what condition a region is that somebody holds. Only Active promises current values.
enum class QelShmCondition : std::uint8_t {
    Active,   ///< its writer lives, as far as one can tell, and delivers
    Silent,   ///< active, but nothing was delivered within the time allowed
    Inactive, ///< not laid out yet, or laid out anew just now
    Replaced, ///< the name leads to another object; what is held is what an ended writer left
    Gone,     ///< there is no object under the name, or its writer has ended
};

/// "active", "silent", "inactive", "replaced", "gone"; "" for anything else. Any thread.
constexpr char const* conditionText(QelShmCondition condition) {
    switch (condition) {
    case QelShmCondition::Active:
        return "active";
    case QelShmCondition::Silent:
        return "silent";
    case QelShmCondition::Inactive:
        return "inactive";
    case QelShmCondition::Replaced:
        return "replaced";
    case QelShmCondition::Gone:
        return "gone";
    }
    return "";
}

inline std::ostream& operator<<(std::ostream& out, QelShmCondition condition) {
    return out << conditionText(condition);
}

/// What the condition is decided from: facts of one moment.
struct QelShmRegionFacts {
    bool isHeld = false;      ///< a region is held, mapped or as a copy
    bool isNamed = false;     ///< there is something under the region's name
    bool isSame = false;      ///< and it is known to be what is held
    bool isAbandoned = false; ///< what is held had a living writer, and has none now
    bool isActive = false;    ///< the root's version is ACTIVE_VERSION
    std::uint64_t newest = 0; ///< time of the newest delivery, ms since 1970 UTC; 0 for never
    std::uint64_t now = 0;    ///< ms since 1970 UTC
};

/// A maximal age that every delivery meets, and "never" too.
constexpr std::chrono::milliseconds ANY_AGE = std::chrono::milliseconds::max();

/// Whether the newest delivery is older than allowed. One from the future is not, one that never came is, whatever the
/// age; with ANY_AGE nothing is. An age of 0 or below allows only a delivery of this very millisecond.
constexpr bool isSilent(QelShmRegionFacts const& facts, std::chrono::milliseconds maxAge) {
    if (maxAge == ANY_AGE) {
        return false;
    }
    auto const allowed = maxAge.count() < 0 ? 0U : static_cast<std::uint64_t>(maxAge.count());
    return facts.newest == 0 || (facts.newest < facts.now && facts.now - facts.newest > allowed);
}

/// The first line that holds is the condition:
///
/// | held | under the name         | writer            | version | newest delivery  | condition |
/// |------|------------------------|-------------------|---------|------------------|-----------|
/// | no   | nothing                |                   |         |                  | Gone      |
/// | no   | something              |                   |         |                  | Inactive  |
/// | yes  | nothing                |                   |         |                  | Gone      |
/// | yes  | another one or unknown |                   |         |                  | Replaced  |
/// | yes  | the same               | known to be ended |         |                  | Gone      |
/// | yes  | the same               | alive or unknown  | not 32  |                  | Inactive  |
/// | yes  | the same               | alive or unknown  | 32      | older than maxAge| Silent    |
/// | yes  | the same               | alive or unknown  | 32      | current          | Active    |
///
/// A pure function. Any thread.
constexpr QelShmCondition conditionOf(QelShmRegionFacts const& facts, std::chrono::milliseconds maxAge) {
    if (!facts.isNamed) {
        return QelShmCondition::Gone;
    }
    if (!facts.isHeld) {
        return QelShmCondition::Inactive;
    }
    if (!facts.isSame) {
        return QelShmCondition::Replaced;
    }
    if (facts.isAbandoned) {
        return QelShmCondition::Gone;
    }
    if (!facts.isActive) {
        return QelShmCondition::Inactive;
    }
    return isSilent(facts, maxAge) ? QelShmCondition::Silent : QelShmCondition::Active;
}

} // namespace shm
