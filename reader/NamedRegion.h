// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// What stands under the region's name.
#pragma once

#include <cstdint>
#include <optional>

#include <sys/stat.h>

namespace shm {

/// Which object it is, for as long as anybody holds it.
struct ObjectId {
    std::uint64_t device = 0;
    std::uint64_t inode = 0;

    friend constexpr bool operator==(ObjectId const& left, ObjectId const& right) {
        return left.device == right.device && left.inode == right.inode;
    }
    friend constexpr bool operator!=(ObjectId const& left, ObjectId const& right) { return !(left == right); }
};

/// Which one stands under the region's name now; nothing if there is none, or when it cannot be told. Opens nothing. Any
/// thread.
std::optional<ObjectId> namedObject() noexcept;

/// The object of one moment: looked at by construction, and closed again. Never blocks, creates nothing, throws nothing.
///
/// Threads: const operations from any thread.
class NamedRegion {
public:
    /// Looks at it now.
    NamedRegion() noexcept;

    /// False only if there is nothing under the name; what cannot be opened is there.
    bool exists() const { return exists_; }

    /// Which one it is; nothing if there is none, or when it cannot be told. Known of what cannot be opened, too.
    std::optional<ObjectId> const& id() const { return id_; }

    /// Whether a writer lives that has locked it, as writers do from their start to their end.
    bool isLocked() const { return isLocked_; }

    /// Whether it is known that no writer has it locked. Not the reverse of isLocked(): without the right to open the object,
    /// or without a descriptor to do so, nothing is known.
    bool isUnlocked() const { return isLockKnown_ && !isLocked_; }

    /// When the object itself changed last, in ns of the system clock; storing into the region does not change it, a
    /// writer that takes it over does. 0 when it cannot be told.
    std::uint64_t changed() const { return changed_; }

private:
    void note(struct stat const& status) noexcept;

    bool exists_ = true;
    bool isLockKnown_ = false;
    bool isLocked_ = false;
    std::optional<ObjectId> id_;
    std::uint64_t changed_ = 0;
};

} // namespace shm
