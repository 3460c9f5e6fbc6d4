// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// What the system knows about the object that holds a region.
#pragma once

#include <cstdint>
#include <string>

#include <sys/stat.h>
#include <sys/types.h>

namespace qel::inspect {

/// Facts of one moment.
struct RegionObject {
    dev_t device = 0; ///< with inode: which object it is, for as long as anyone holds it open
    ino_t inode = 0;
    uid_t uid = 0;
    gid_t gid = 0;
    mode_t mode = 0; ///< permission bits
    std::uint64_t size = 0;
    std::uint64_t names = 0; ///< hard links to it; 0 once the last one was removed
    bool isRegular = false;  ///< a shared-memory object is; a directory or link under its name is not
};

RegionObject regionObject(struct stat const& status);

/// Whether both tell of the same object, whatever else has changed about it. Any thread.
bool isSameObject(RegionObject const& left, RegionObject const& right);

/// Name of the owner and of the group; the number in decimal when it has no name. Any thread.
std::string userName(uid_t uid);
std::string groupName(gid_t gid);

/// The permission bits as "rw-r--r--". Any thread.
std::string modeText(mode_t mode);

} // namespace qel::inspect
