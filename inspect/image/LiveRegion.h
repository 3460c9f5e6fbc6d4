// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// The object that a unit's writing process keeps current.
#pragma once

#include "inspect/image/FileDescriptor.h"
#include "inspect/image/Image.h"
#include "inspect/image/RegionObject.h"

#include <cstdint>
#include <optional>
#include <string>

namespace qel::inspect {

/// What became of opening the object.
enum class Opening : std::uint8_t {
    Opened,
    Absent,     ///< there is nothing under the name
    Unreadable, ///< there is something, but the system refuses to open it
    NotRegular, ///< a directory, link or the like stands under the name
};

/// Where an image comes from. As it is by default, it stands for a file that could be read.
struct RegionSource {
    Opening opening = Opening::Opened;
    int error = 0;                      ///< errno of Unreadable
    bool isReplaced = false;            ///< the name leads to another object by now, or to none
    std::optional<RegionObject> object; ///< none when absent, and for a file
};

/// Why it could not be opened, in words without a full stop: "no such object", "Permission denied", "a directory,
/// link or device stands under the name"; "" when it could be opened. Any thread.
std::string openingProblem(RegionSource const& source);

/// The object as it was found at construction, held open by a read-only descriptor. It is copied by reading, never
/// mapped and never created: no change of its content, its size or its name can harm who looks at it, and the writer
/// notices nothing. Holding it open keeps its memory when the writer has removed the name; construct anew to follow
/// the name.
///
/// Threads: const operations from any thread.
class LiveRegion {
public:
    /// Opens what stands under the name now; failing is an outcome, not an exception.
    LiveRegion();

    bool isOpen() const { return static_cast<bool>(descriptor_); }
    Opening opening() const { return opening_; }
    /// errno of an Unreadable opening, else 0.
    int error() const { return error_; }

    /// Copies the object as it is now; what it lacks (see Image) may have been cut off during the copy. An image of
    /// size 0 when the object is not open.
    /// Throws std::system_error when the system cannot read it.
    Image copy() const;

    /// The facts of the open object now; of one that could not be opened, those of construction time, if any.
    std::optional<RegionObject> object() const;

    /// Whether the name leads to another object than the open one, or to none. False when none is open.
    bool isReplaced() const;

    /// All of the above as data.
    RegionSource source() const;

private:
    FileDescriptor descriptor_;
    Opening opening_ = Opening::Opened;
    int error_ = 0;
    std::optional<RegionObject> found_;
};

} // namespace qel::inspect
