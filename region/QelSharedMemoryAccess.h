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

/// For what a process opens the region.
enum class ShmAccess : std::uint8_t {
    Read = 0,  ///< opens an existing object and maps it read-only
    Write = 1, ///< creates or reuses the object, sizes, maps and wipes it; removes its name in the end
};

/// The step of opening that failed.
enum class ShmError : std::uint8_t {
    Open = 0,   ///< shm_open
    Resize = 1, ///< ftruncate or posix_fallocate
    Map = 2,    ///< mmap
};

/// Common base of the writer and the reader. Owns the mapping of the region (POSIX shared memory, see
/// QelShmRecords.h). No operation throws. A failure is logged at ERROR in "qel.shm.access" and leaves nothing mapped.
///
/// Threads: thread-bound to the owner, who must not open or close while another thread reads through the region. root()
/// and region() are thread-safe.
class QEL_EXPORT QelSharedMemoryAccess {
public:
    /// Opens nothing.
    /// @note Logs at INFO "start".
    /// @param access for what openShm() opens the region
    explicit QelSharedMemoryAccess(ShmAccess const& access);

    QelSharedMemoryAccess(QelSharedMemoryAccess const&) = delete;
    QelSharedMemoryAccess& operator=(QelSharedMemoryAccess const&) = delete;

    // Virtual operations in the order of their slots (binary interface); new ones go last.

    /// Closes the region as closeShm() does.
    /// @note Logs at INFO "done".
    virtual ~QelSharedMemoryAccess();

    /// Maps the region.
    ///
    /// A writer creates the object (mode 0644) or reuses the one that an earlier writer left, sizes it, reserves its
    /// memory and fills it with 0xFF, so readers see it inactive. It first removes a foreign object: one of another
    /// owner, writable for group or others, with several names, or no regular file.
    ///
    /// A reader maps the object that exists, if it is a regular file of at least REGION_SIZE bytes. It never waits.
    ///
    /// After a failure nothing is mapped.
    /// @note Logs at ERROR each step that fails, at WARN a foreign object that it removes.
    virtual void openShm();

    /// Unmaps the region. A writer also removes the object's name, but not in a child that was forked from the process
    /// that opened it. Does nothing while nothing is mapped.
    /// @note Logs at ERROR when munmap or shm_unlink fails.
    void closeShm();

    /// The root of the tree.
    ///
    /// Threads: thread-safe.
    /// @return the root, a null handle while nothing is mapped
    QelShmRoot root() const { return QelShmRoot(region()); }

    /// Prints the whole tree for diagnostics. The region's links must not be cyclic.
    /// @return one line per point, numbers in hexadecimal; "" while nothing is mapped
    std::string tree() const;

protected:
    /// Forgets the mapping without unmapping it. A writer also removes the object's name, as closeShm() does.
    /// @note Logs at ERROR when shm_unlink fails.
    void unlinkShm();

    /// Logs a failed step of openShm() at ERROR, and cleans up after a failed Resize or Map by unlinkShm().
    /// @param error  the step
    /// @param errnum its errno; strerror() gives the text
    void errorShm(ShmError const& error, int errnum);

    /// Writes a point, its children and its following siblings, one line each.
    /// @param mp     the point
    /// @param indent number of spaces; children get two more
    /// @param out    where to
    void treenode(QelShmMP const& mp, unsigned int indent, std::ostringstream& out) const;

    /// The mapping.
    ///
    /// Threads: thread-safe.
    /// @return the mapped region, null while nothing is mapped
    record::Region* region() const { return region_.load(std::memory_order_relaxed); }

private:
    ShmAccess const access_;
    // Atomic: a reader's wait thread maps the region while client threads ask whether it is there.
    std::atomic<record::Region*> region_;
};
static_assert(sizeof(std::atomic<record::Region*>) == sizeof(record::Region*));

} // namespace shm
