// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "inspect/image/InputFile.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <thread>

namespace qel::inspect {

InputFile::InputFile(std::string const& path)
    : descriptor_(::open(path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC | O_NOCTTY)) {
    struct stat status = {};
    if (!descriptor_) {
        return;
    }
    mayLackWriter_ = ::fstat(descriptor_.number(), &status) == 0 && S_ISFIFO(status.st_mode);
    if (!mayLackWriter_) {
        letReadsWait();
    }
}

ssize_t InputFile::read(void* bytes, std::size_t count) const {
    return mayLackWriter_ ? firstRead(bytes, count) : ::read(descriptor_.number(), bytes, count);
}

// While nobody has the pipe open for writing it is at its end. With a writer that has not written yet the read would
// have to wait.
ssize_t InputFile::firstRead(void* bytes, std::size_t count) const {
    constexpr std::chrono::milliseconds pause(10);
    auto const end = std::chrono::steady_clock::now() + patience;
    for (;;) {
        auto const done = ::read(descriptor_.number(), bytes, count);
        bool const hasToWait = done < 0 && errno == EAGAIN;
        if (done > 0 || hasToWait) {
            mayLackWriter_ = false;
            letReadsWait();
            return hasToWait ? ::read(descriptor_.number(), bytes, count) : done;
        }
        if (done < 0) {
            return done;
        }
        if (std::chrono::steady_clock::now() >= end) {
            errno = ENODATA;
            return -1;
        }
        std::this_thread::sleep_for(pause);
    }
}

void InputFile::letReadsWait() const {
    int const flags = ::fcntl(descriptor_.number(), F_GETFL);
    if (flags >= 0) {
        ::fcntl(descriptor_.number(), F_SETFL, flags & ~O_NONBLOCK);
    }
}

bool InputFile::isRegular() const {
    struct stat status = {};
    return ::fstat(descriptor_.number(), &status) == 0 && S_ISREG(status.st_mode);
}

ssize_t InputFile::readAt(void* bytes, std::size_t count, off_t offset) const {
    return ::pread(descriptor_.number(), bytes, count, offset);
}

std::uint64_t InputFile::regularSize() const {
    struct stat status = {};
    bool const isRegular = ::fstat(descriptor_.number(), &status) == 0 && S_ISREG(status.st_mode);
    return isRegular ? static_cast<std::uint64_t>(status.st_size) : 0;
}

} // namespace qel::inspect
