// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "inspect/image/FileDescriptor.h"

#include <unistd.h>

#include <cerrno>
#include <system_error>

namespace qel::inspect {

FileDescriptor& FileDescriptor::operator=(FileDescriptor&& other) noexcept {
    FileDescriptor taken(std::move(other));
    std::swap(fd_, taken.fd_); // what it owned before is closed with `taken`
    return *this;
}

FileDescriptor::~FileDescriptor() {
    if (fd_ >= 0) {
        ::close(fd_);
    }
}

std::size_t readAll(ReadAt const& readAt, void* buffer, std::size_t size) {
    auto* const bytes = static_cast<unsigned char*>(buffer);
    std::size_t done = 0;
    while (done < size) {
        auto const count = readAt(bytes + done, size - done, static_cast<off_t>(done));
        if (count > 0) {
            done += static_cast<std::size_t>(count);
        } else if (count == 0) {
            break;
        } else if (errno != EINTR) {
            throw std::system_error(errno, std::generic_category(), "read");
        }
    }
    return done;
}

int writeAll(int fd, std::string_view bytes) {
    while (!bytes.empty()) {
        auto const count = ::write(fd, bytes.data(), bytes.size());
        if (count >= 0) {
            bytes.remove_prefix(static_cast<std::size_t>(count));
        } else if (errno != EINTR) {
            return errno;
        }
    }
    return 0;
}

} // namespace qel::inspect
