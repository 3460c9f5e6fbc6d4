// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// Creates, opens, maps and releases the shared-memory region.
#pragma once

#include "region/QelExport.h"
#include "region/QelShmRecords.h"
#include "region/QelShmRoot.h"

#include <atomic>
#include <cstdint>
#include <iosfwd>
#include <string>

namespace shm {

/// Who opens the region.
enum class ShmAccess : std::uint8_t {
    Read = 0,  ///< opens an existing object and maps it read-only
    Write = 1, ///< creates or reuses the object, sizes, maps and wipes it, and removes its name at the end
};

/// The step of opening that failed.
enum class ShmError : std::uint8_t {
    Open = 0,   ///< shm_open
    Resize = 1, ///< ftruncate, or reserving the memory behind it
    Map = 2,    ///< mmap
};

/// Common base of the writer and the reader: owns the mapping of the region (POSIX shared memory, see
/// QelShmRecords.h). No operation throws; failures are logged at ERROR in "qel.shm.access" and leave nothing mapped.
///
/// Threads: not thread-safe. The owner must not open or close while another thread reads through the region; only
/// whether something is mapped may be asked from any thread.
class QEL_EXPORT QelSharedMemoryAccess {
public:
    /// Opens nothing. Logs at INFO "start".
    explicit QelSharedMemoryAccess(ShmAccess const& access);

    QelSharedMemoryAccess(QelSharedMemoryAccess const&) = delete;
    QelSharedMemoryAccess& operator=(QelSharedMemoryAccess const&) = delete;

    // Virtual operations in slot order, part of the binary contract; new ones go last.

    /// Closes the region (a writer also removes its name), then logs at INFO "done".
    virtual ~QelSharedMemoryAccess();

    /// Maps the region. A writer creates the object (mode 0644) or reuses what an earlier writer left, sizes it,
    /// reserves its memory and fills it with 0xFF, so readers see it inactive. What is not the writer's own (another
    /// owner, write rights for group or others, several names, no regular file) it first removes, with one WARN line.
    /// A reader maps what is there, if it is a regular file and large enough; it waits for nobody. Every step that
    /// fails is logged and leaves the access without a region in the end.
    virtual void openShm();

    /// Unmaps the region; a writer also removes the object's name, but not in a process that was forked from the one
    /// that opened it. Does nothing while nothing is mapped.
    void closeShm();

    /// The root, a null handle while nothing is mapped.
    QelShmRoot root() const { return QelShmRoot(region()); }

    /// The whole tree as text for diagnostics, one line per point; "" while nothing is mapped. Numbers are
    /// hexadecimal. Links must not be cyclic.
    std::string tree() const;

protected:
    /// Forgets the mapping without unmapping it; a writer also removes the object's name, as closeShm() does.
    void unlinkShm();

    /// Logs the failed step with the text of errnum, and cleans up after a failed Resize or Map by unlinkShm().
    void errorShm(ShmError const& error, int errnum);

    /// Writes a point, its children (indented by two more) and its following siblings, one line each.
    void treenode(QelShmMP const& mp, unsigned int indent, std::ostringstream& out) const;

    /// The mapped region, null while nothing is mapped.
    record::Region* region() const { return region_.load(std::memory_order_relaxed); }

private:
    ShmAccess const access_;
    // Atomic: a reader's wait thread maps the region while client threads ask whether it is there.
    std::atomic<record::Region*> region_;
};
static_assert(sizeof(std::atomic<record::Region*>) == sizeof(record::Region*));

} // namespace shm
