// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// The lock by which a living writer is known.
#pragma once

#include <fcntl.h>
#include <unistd.h>

#include <optional>

namespace shm {

/// Takes a lock on a whole object, or asks for one; never waits.
/// @param fd of the object
/// @param command F_OFD_SETLK or F_OFD_GETLK
/// @param type F_WRLCK or F_RDLCK
/// @return for SETLK the type taken; for GETLK the type of a lock that is in the way, F_UNLCK when there is none; nothing
///         when it failed
///
/// In a header alone, as the writer's lock is. Any thread.
inline std::optional<short> wholeFileLock(int fd, int command, short type) noexcept {
    struct flock whole = {};
    whole.l_type = type;
    whole.l_whence = SEEK_SET; // from 0 up to any end: l_start and l_len are 0
    return ::fcntl(fd, command, &whole) == 0 ? std::optional<short>(whole.l_type) : std::nullopt;
}

} // namespace shm
