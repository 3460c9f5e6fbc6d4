// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// Telling living writers of one region apart.
#pragma once

#include "region/ObjectLock.h"
#include "region/QelShmRecords.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>

#include <cstdint>

namespace shm {

/// An advisory lock on the region's object: the open-file-description write lock (F_OFD_SETLK) on the whole file. Whoever
/// writes the region takes it once its object is open, and holds it as long as it lives; the kernel gives it back when the
/// process ends, however it ends. Nobody waits for it, and without it everything goes on as with it: it only tells others
/// that a writer lives. They ask with F_OFD_GETLK.
///
/// It belongs to the object that stood under the name when it was taken. It is not tried again: a writer that started
/// while another one lived goes without to its end. A program that is started by exec does not get it; a forked child
/// shares it, so it is held until parent and child have ended.
///
/// Who may write the object can take this lock alone. Who may read it can hold a read lock, which keeps this one from
/// being taken; that counts as "no lock to be had", not as another writer. Ask for a read lock (F_RDLCK) to learn of a
/// writer: that question is answered by write locks alone.
///
/// In a header alone, since the recorded region of qel-replay takes it too, from outside the library.
///
/// Threads: const operations from any thread.
class WriterLock {
public:
    /// Tries to take the lock of the object under the region's name.
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
    ~WriterLock() { close(); }
    WriterLock(WriterLock const&) = delete;
    WriterLock& operator=(WriterLock const&) = delete;

    /// Whether the lock was taken.
    bool isHeld() const noexcept { return outcome_ == Outcome::Held; }

    /// Whether another living writer had it. False, too, when there was no lock to be had.
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
