// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// The object that a unit's writing process keeps current.
#pragma once

#include "inspect/image/FileDescriptor.h"
#include "inspect/image/Image.h"

#include <cstdint>
#include <optional>
#include <string>

#include <sys/stat.h>
#include <sys/types.h>

namespace qel::inspect {

/// What the system knows about the object at one moment.
struct RegionObject {
    dev_t device = 0; ///< with inode: identifies the object for as long as anyone holds it open
    ino_t inode = 0;
    uid_t uid = 0;
    gid_t gid = 0;
    mode_t mode = 0; ///< permission bits
    std::uint64_t size = 0;
    std::uint64_t names = 0; ///< hard links to it; 0 once the last one was removed
    bool isRegular = false; ///< true for a shared-memory object, false for a directory or link under its name
};

/// The facts in what stat() filled in. Reentrant.
RegionObject regionObject(struct stat const& status);

/// Whether both are the same object, whatever has changed in it. Reentrant.
bool isSameObject(RegionObject const& left, RegionObject const& right);

/// Name of a user; the number in decimal if it has no name. Reentrant.
std::string userName(uid_t uid);

/// Name of a group; the number in decimal if it has no name. Reentrant.
std::string groupName(gid_t gid);

/// Permission bits as "rw-r--r--". Reentrant.
std::string modeText(mode_t mode);

/// The outcome of opening the object.
enum class Opening : std::uint8_t {
    Opened,
    Absent,     ///< there is nothing under the name
    Unreadable, ///< the system refuses to open it
    NotRegular, ///< a directory, link, pipe or device has the name
};

/// Where an image comes from. By default: a file that could be read.
struct RegionSource {
    Opening opening = Opening::Opened;
    int error = 0;                      ///< errno of Unreadable
    bool isReplaced = false;            ///< the name now leads to another object, or to none
    std::optional<RegionObject> object; ///< none if absent, and for a file
};

/// Why the object could not be opened, without a full stop: "no such object", "Permission denied", "a directory, link
/// or device stands under the name". Reentrant.
/// @return "" if it was opened
std::string openingProblem(RegionSource const& source);

/// The object that had the name at construction, held open by a read-only descriptor. It is copied by reading, never
/// mapped and never created, so no change of its content, size or name can harm the caller, and the writer does not
/// notice. While it is held its memory stays, even if the writer has removed the name. Construct a new LiveRegion to
/// follow the name.
///
/// Threads: thread-safe.
class LiveRegion {
public:
    /// Opens the object. Failure is an outcome, see source(), not an exception.
    LiveRegion();

    /// Whether the object was opened.
    bool isOpen() const { return static_cast<bool>(descriptor_); }

    /// Copies the object as it is now. If it is cut off during the copy, the image lacks the bytes (see Image).
    /// @return an image of size 0 if the object is not open
    /// @throws std::system_error if the system cannot read it
    Image copy() const;

    /// What is known about the open object now; about one that could not be opened, as of construction.
    std::optional<RegionObject> object() const;

    /// Whether the name now leads to another object than the open one, or to none. False if none is open.
    bool isReplaced() const;

    /// Whether a writer has locked the open object: writers do so from their start to their end. False if none is
    /// open, and for a writer of a version that locks nothing.
    bool isLocked() const;

    /// How the opening went, isReplaced() and object().
    RegionSource source() const;

private:
    FileDescriptor descriptor_;
    RegionSource found_; ///< at construction
};

} // namespace qel::inspect
