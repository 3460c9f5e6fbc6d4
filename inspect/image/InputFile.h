// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// Files that are read.
#pragma once

#include "inspect/image/FileDescriptor.h"

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <string>

#include <sys/types.h>

namespace qel::inspect {

/// A file of any kind, open to be read. Opening it never waits, even if a named pipe takes its name meanwhile: what it
/// is, is asked of the descriptor.
///
/// Threads: reentrant.
class InputFile {
public:
    /// How long the first read of a pipe waits for somebody who writes to it.
    static constexpr std::chrono::milliseconds patience{5000};

    /// Opens a file. If it cannot be opened, there is none, and errno says why.
    explicit InputFile(std::string const& path);

    /// Whether the file was opened.
    explicit operator bool() const { return static_cast<bool>(descriptor_); }

    /// Reads at most `count` bytes, like read(). From a pipe that nobody writes to it fails with ENODATA.
    ssize_t read(void* bytes, std::size_t count) const;

    /// Whether it can be read anywhere and again.
    bool isRegular() const;

    /// Reads at most `count` bytes of a regular file from an offset, like pread().
    ssize_t readAt(void* bytes, std::size_t count, off_t offset) const;

    /// The size of a regular file, 0 for others.
    std::uint64_t regularSize() const;

private:
    ssize_t firstRead(void* bytes, std::size_t count) const;
    void letReadsWait() const;

    FileDescriptor descriptor_;
    mutable bool mayLackWriter_ = false; ///< a pipe that was not read yet
};

} // namespace qel::inspect
