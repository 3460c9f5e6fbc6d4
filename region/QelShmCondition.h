// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// Whether a region is current, and if not, why.
#pragma once

#include <chrono>
#include <cstdint>
#include <ostream>

namespace shm {

/// Condition of a region that a process has mapped or copied. Only Active promises current values.
enum class QelShmCondition : std::uint8_t {
    Active,   ///< the writer lives, as far as can be known, and delivers values
    Silent,   ///< active, but no value was delivered within the maximum age
    Inactive, ///< not activated yet, or being laid out again
    Replaced, ///< the name leads to another object; the region is what an ended writer left
    Gone,     ///< there is no object under the name, or its writer has ended
};

/// Names a condition.
///
/// Threads: reentrant.
/// @param condition any number
/// @return "active", "silent", "inactive", "replaced" or "gone"; "" for any other number
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

/// Writes conditionText().
///
/// Threads: reentrant.
/// @param out       the stream
/// @param condition any number
/// @return the stream
inline std::ostream& operator<<(std::ostream& out, QelShmCondition condition) {
    return out << conditionText(condition);
}

/// What decides a region's condition: facts of one moment.
struct QelShmRegionFacts {
    bool isHeld = false;      ///< a region is held, mapped or as a copy
    bool isNamed = false;     ///< there is an object under the region's name
    bool isSame = false;      ///< that object is known to be the one that is held
    bool isAbandoned = false; ///< the held object was locked by a writer, and is no longer
    bool isActive = false;    ///< the root's version is ACTIVE_VERSION
    std::uint64_t newest = 0; ///< newest time of all points and values, ms since 1970 UTC; 0 for never
    std::uint64_t now = 0;    ///< the present time, ms since 1970 UTC
};

/// The maximum age that calls no region silent, not even one that never got a value.
constexpr std::chrono::milliseconds ANY_AGE = std::chrono::milliseconds::max();

/// Tells whether the newest value is too old. A value from the future is not. A region that never got a value is
/// silent, except with ANY_AGE.
///
/// Threads: reentrant.
/// @param facts  newest and now are used
/// @param maxAge the age that is still current; 0 or less allows only a value of the present millisecond
/// @return whether the region is silent
constexpr bool isSilent(QelShmRegionFacts const& facts, std::chrono::milliseconds maxAge) {
    if (maxAge == ANY_AGE) {
        return false;
    }
    auto const allowed = maxAge.count() < 0 ? 0U : static_cast<std::uint64_t>(maxAge.count());
    return facts.newest == 0 || (facts.newest < facts.now && facts.now - facts.newest > allowed);
}

/// Decides the condition. The first row that applies gives it:
///
/// | held | object under the name  | writer            | version | newest value     | condition |
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
/// Threads: reentrant.
/// @param facts  of the present moment
/// @param maxAge see isSilent()
/// @return the condition
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
