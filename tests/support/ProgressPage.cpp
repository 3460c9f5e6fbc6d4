// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tests/support/ProgressPage.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>

#include <cerrno>
#include <system_error>

namespace qel::test {

ProgressPage::ProgressPage(std::string const& path) {
    int const fd = ::open(path.c_str(), O_RDWR | O_CLOEXEC);
    bool const sized = fd >= 0 && ::ftruncate(fd, sizeof(Page)) == 0;
    void* const mapping =
        sized ? ::mmap(nullptr, sizeof(Page), PROT_READ | PROT_WRITE, MAP_SHARED, fd, 0) : MAP_FAILED;
    int const error = errno;
    if (fd >= 0) {
        ::close(fd);
    }
    if (mapping == MAP_FAILED) { // NOLINT(performance-no-int-to-ptr): POSIX's constant
        throw std::system_error(error, std::generic_category(), path);
    }
    page_ = static_cast<Page*>(mapping);
}

ProgressPage::~ProgressPage() {
    ::munmap(page_, sizeof(Page));
}

} // namespace qel::test
