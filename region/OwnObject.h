// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// Whose object stands under the region's name.
#pragma once

namespace shm {

/// Opens the region's object for a writer: the one that an earlier writer left, or a new one of mode 0644.
///
/// Only an object of the effective user counts as left by a writer: a regular file with one name that neither its group
/// nor others may write. Anything else is not ours, and somebody may hold it open: its name is removed and the object
/// created anew. So is what cannot be opened because something that is not ours stands there. Who puts something there
/// over and over makes the opening fail in the end, and so does who takes it away between the refusal and the look at it.
///
/// @return a descriptor for reading and writing, or -1 with errno: of the opening, or of removing what is not ours
/// Logs one WARN line in "qel.shm.access" as openShm() when there is something that is not ours. Threads: any.
int openOwnObject();

} // namespace shm
