// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "inspect/image/FileOutput.h"

#include "region/QelShmRecords.h"

#include <unistd.h>

#include <cerrno>
#include <cstddef>
#include <system_error>

namespace qel::inspect {

namespace {

/// Where Linux shows shared-memory objects.
constexpr char sharedMemoryDirectory[] = "/dev/shm";

} // namespace

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

bool isLiveObject(std::filesystem::path const& path) {
    std::error_code ignored;
    return path.filename() == shm::REGION_NAME &&
           std::filesystem::equivalent(path.has_parent_path() ? path.parent_path() : ".",
                                       sharedMemoryDirectory, ignored);
}

} // namespace qel::inspect
