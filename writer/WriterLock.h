// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// The lock that shows that a region's writer lives.
#pragma once

#include "region/ObjectLock.h"
#include "region/QelShmRecords.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>

#include <cstdint>

namespace shm {

/// An advisory lock on the region's object: the open-file-description write lock (Linux, F_OFD_SETLK) on the whole
/// file. A writer takes it after it has opened the object and holds it as long as it lives. The kernel releases it
/// when the process ends, however it ends. Nobody waits for the lock, and a writer without it works in the same
/// way: the lock only shows others that a writer lives. They query it by F_OFD_GETLK.
///
/// The lock belongs to the object that had the name when it was taken. There is one attempt: a writer that starts
/// while another one lives stays without the lock. exec() drops it. A forked child shares it, so it lasts until
/// parent and child have ended.
///
/// Only a process that may write to the object can take this lock. A process that may read the object can hold a
/// read lock, which prevents this one; that counts as no lock, not as another writer. To find a writer, query for
/// a read lock (F_RDLCK): only write locks conflict with it.
///
/// Header-only, since qel-replay uses it without the library.
///
/// Threads: thread-safe. The const operations only read.
class WriterLock {
public:
    /// Tries to lock the object under the region's name.
    WriterLock() noexcept : fd_(::shm_open(REGION_NAME, O_RDWR | O_CLOEXEC | O_NONBLOCK, 0)) {
        if (fd_ < 0) {
            return;
        }
        if (wholeFileLock(fd_, F_OFD_SETLK, F_WRLCK) == F_WRLCK) {
            outcome_ = Outcome::Held;
            return;
        }
        if (wholeFileLock(fd_, F_OFD_GETLK, F_RDLCK) == F_WRLCK) {
            outcome_ = Outcome::AnotherWriter;
        }
        close();
    }

    /// Releases the lock.
    ~WriterLock() { close(); }
    WriterLock(WriterLock const&) = delete;
    WriterLock& operator=(WriterLock const&) = delete;

    /// @return whether this object holds the lock
    bool isHeld() const noexcept { return outcome_ == Outcome::Held; }

    /// @return whether another living writer held the lock; false too if nobody could take it
    bool isOfAnotherWriter() const noexcept { return outcome_ == Outcome::AnotherWriter; }

private:
    enum class Outcome : std::uint8_t { None, Held, AnotherWriter };

    void close() noexcept {
        if (fd_ >= 0) {
            ::close(fd_);
        }
        fd_ = -1;
    }

    int fd_;
    Outcome outcome_ = Outcome::None;
};

} // namespace shm
