// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// The object under the region's name.
#pragma once

#include <cstdint>
#include <optional>

#include <sys/stat.h>

namespace shm {

/// Identity of an object. It is unique while the object exists.
///
/// Threads: reentrant.
struct ObjectId {
    std::uint64_t device = 0; ///< st_dev
    std::uint64_t inode = 0;  ///< st_ino

    /// @param left  an object
    /// @param right an object
    /// @return whether both are the same object
    friend constexpr bool operator==(ObjectId const& left, ObjectId const& right) {
        return left.device == right.device && left.inode == right.inode;
    }
    /// @param left  an object
    /// @param right an object
    /// @return whether they are different objects
    friend constexpr bool operator!=(ObjectId const& left, ObjectId const& right) { return !(left == right); }
};

/// Identifies the object under the region's name by lstat(). Opens nothing.
///
/// Threads: reentrant.
/// @return the object; nothing if there is none or lstat() fails
std::optional<ObjectId> namedObject() noexcept;

/// What was under the region's name at one moment. The constructor opens the object, examines it and closes it. Never
/// blocks, creates nothing, throws nothing.
///
/// Threads: reentrant.
class NamedRegion {
public:
    /// Examines the object.
    NamedRegion() noexcept;

    /// @return whether there is an object under the name; true if it cannot be opened
    bool exists() const { return exists_; }

    /// @return the object, also if it cannot be opened; nothing if there is none or it cannot be identified
    std::optional<ObjectId> const& id() const { return id_; }

    /// @return whether a living writer has locked the object; writers hold the lock from their start to their end
    bool isLocked() const { return isLocked_; }

    /// Not the opposite of isLocked(): if the object cannot be opened, nothing is known about its lock.
    /// @return whether it is known that no writer has locked the object
    bool isUnlocked() const { return isLockKnown_ && !isLocked_; }

    /// Stores into the region do not change this time; a new writer that reuses the object does.
    /// @return st_ctim in ns since 1970 UTC; 0 when it is unknown
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
