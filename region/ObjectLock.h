// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// The file lock that shows a living writer.
#pragma once

#include <fcntl.h>
#include <unistd.h>

#include <optional>

namespace shm {

/// Takes or queries an open-file-description lock (Linux, fcntl(2)) on a whole file. Never waits.
///
/// Header-only, since qel-replay uses it without the library.
///
/// Threads: reentrant.
/// @param fd      of the file
/// @param command F_OFD_SETLK to take the lock, F_OFD_GETLK to query it
/// @param type    F_WRLCK or F_RDLCK
/// @return after F_OFD_SETLK the type taken; after F_OFD_GETLK the type of a conflicting lock, F_UNLCK for none;
///         nothing on failure
inline std::optional<short> wholeFileLock(int fd, int command, short type) noexcept {
    struct flock whole = {};
    whole.l_type = type;
    whole.l_whence = SEEK_SET; // from 0 up to any end: l_start and l_len are 0
    return ::fcntl(fd, command, &whole) == 0 ? std::optional<short>(whole.l_type) : std::nullopt;
}

} // namespace shm
