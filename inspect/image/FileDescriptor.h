// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// Ownership of file descriptors; reading and writing without gaps.
#pragma once

#include <cstddef>
#include <functional>
#include <string_view>
#include <utility>

#include <sys/types.h>

namespace qel::inspect {

/// Owns a file descriptor and closes it when destroyed.
///
/// Threads: reentrant.
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

    /// Whether it owns one.
    explicit operator bool() const { return fd_ >= 0; }
    /// @return the descriptor, negative for none
    int number() const { return fd_; }

private:
    int fd_ = -1;
};

/// Reads at most `count` bytes from an offset, like pread(). It returns the number of bytes read, 0 at the end, or -1
/// and sets errno.
using ReadAt = std::function<ssize_t(void* bytes, std::size_t count, off_t offset)>;

/// Reads until the buffer is full or the source ends; continues after short and interrupted reads. Reentrant.
/// @param buffer room for `size` bytes
/// @return the number of bytes read
/// @throws std::system_error if the source cannot be read
std::size_t readAll(ReadAt const& readAt, void* buffer, std::size_t size);

/// Writes all bytes; continues after short and interrupted writes. Reentrant.
/// @return 0, or the errno of the write that failed; the bytes before it are written
int writeAll(int fd, std::string_view bytes);

} // namespace qel::inspect
