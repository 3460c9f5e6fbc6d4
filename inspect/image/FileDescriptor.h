// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// Ownership of file descriptors, and reading a region through one.
#pragma once

#include "inspect/image/Image.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <utility>

#include <sys/types.h>

namespace qel::inspect {

/// Closes its descriptor at the end; movable. Threads: not shared without care.
class FileDescriptor {
public:
    /// Owns none.
    FileDescriptor() = default;
    /// @param fd an open descriptor, or a negative number for none
    explicit FileDescriptor(int fd) : fd_(fd) {}
    FileDescriptor(FileDescriptor&& other) noexcept : fd_(std::exchange(other.fd_, -1)) {}
    FileDescriptor& operator=(FileDescriptor&& other) noexcept;
    FileDescriptor(FileDescriptor const&) = delete;
    FileDescriptor& operator=(FileDescriptor const&) = delete;
    ~FileDescriptor();

    explicit operator bool() const { return fd_ >= 0; }
    int number() const { return fd_; }

private:
    int fd_ = -1;
};

/// Reads up to a number of bytes at an offset, as pread() does: how many, 0 at the end, -1 with errno.
using ReadAt = std::function<ssize_t(void* bytes, std::size_t count, off_t offset)>;

/// Reads as much of a region as the source gives, over short and interrupted reads. The image's size is that number
/// of bytes, or sourceSize() if the source gave a whole region and has more.
/// Throws std::system_error when the source cannot be read.
Image imageOf(ReadAt const& readAt, std::function<std::uint64_t()> const& sourceSize);

} // namespace qel::inspect
