// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "inspect/image/FileDescriptor.h"

#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <memory>
#include <system_error>

namespace qel::inspect {

namespace {

void close(int fd) {
    if (fd >= 0) {
        ::close(fd);
    }
}

} // namespace

FileDescriptor& FileDescriptor::operator=(FileDescriptor&& other) noexcept {
    if (this != &other) {
        close(std::exchange(fd_, std::exchange(other.fd_, -1)));
    }
    return *this;
}

FileDescriptor::~FileDescriptor() {
    close(fd_);
}

Image imageOf(ReadAt const& readAt, std::function<std::uint64_t()> const& sourceSize) {
    auto region = std::make_unique<shm::record::Region>();
    auto* const bytes = reinterpret_cast<unsigned char*>(region.get());
    std::size_t present = 0;
    while (present < shm::REGION_SIZE) {
        auto const count = readAt(bytes + present, shm::REGION_SIZE - present, static_cast<off_t>(present));
        if (count > 0) {
            present += static_cast<std::size_t>(count);
        } else if (count == 0) {
            return {std::move(region), present};
        } else if (errno != EINTR) {
            throw std::system_error(errno, std::generic_category(), "read");
        }
    }
    return {std::move(region), std::max<std::uint64_t>(sourceSize(), present)};
}

} // namespace qel::inspect
