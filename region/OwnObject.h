// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// Opens the shared-memory object for a writer.
#pragma once

namespace shm {

/// Opens the object under the region's name: the one that an earlier writer left, or a new one of mode 0644.
///
/// An object counts as left by a writer if it is a regular file of the effective user, has one name, and neither its
/// group nor others may write to it. Anything else is foreign, and its creator may still hold it open. Its name is
/// removed and the a new object created (O_EXCL), also when the foreign object cannot be opened at all.
///
/// The number of attempts is bounded. So the call fails when another process keeps putting a foreign object there, or
/// removes one between the refused opening and the look at it.
///
/// @note Logs one line at WARN in "qel.shm.access", as openShm(), when it removes a foreign object.
///
/// Threads: reentrant.
/// @return a descriptor for reading and writing, or -1 with errno (shm_open or shm_unlink)
int openOwnObject();

} // namespace shm
