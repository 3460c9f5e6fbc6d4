// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// An object under the region's name that belongs to somebody without rights.
#pragma once

#include <sys/types.h>

namespace qel::test {

/// A process of the user "nobody" that creates the region's object and holds it open and mapped, as anybody can do on a
/// machine whose /dev/shm everybody may write. Ends with the object of this class; what it created stays.
///
/// Threads: thread-bound to the thread that made it.
class NobodysObject {
public:
    /// Creates the object, 320032 bytes of zeros.
    /// @param mode its permission bits
    /// Throws std::system_error when there can be no such process.
    explicit NobodysObject(mode_t mode);
    ~NobodysObject();
    NobodysObject(NobodysObject const&) = delete;
    NobodysObject& operator=(NobodysObject const&) = delete;

    /// False where there is no other user, or the object could not be created.
    bool succeeded() const { return succeeded_; }

    /// Stores an active root with a state of its own into what it holds mapped.
    bool forge() const { return obey('f'); }

    /// Cuts what it holds open to 0 bytes.
    bool truncate() const { return obey('t'); }

    /// Whether it can open what stands under the name now, to write to it.
    bool opensForWriting() const { return obey('w'); }

private:
    /// Whether the process could do it.
    bool obey(char order) const;

    pid_t child_ = -1;
    int orders_ = -1;
    bool succeeded_ = false;
};

} // namespace qel::test
