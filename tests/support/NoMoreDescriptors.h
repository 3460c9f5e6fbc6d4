// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// A process that has run out of descriptors.
#pragma once

#include <fcntl.h>
#include <sys/resource.h>
#include <unistd.h>

#include <vector>

namespace qel::test {

/// While the object exists, the process can open no files: "Too many open files". Open ones keep working.
///
/// Threads: thread-bound to the thread that made it; one object at a time.
class NoMoreDescriptors {
public:
    NoMoreDescriptors() {
        ::getrlimit(RLIMIT_NOFILE, &former_);
        auto few = former_;
        few.rlim_cur = 256; // and not 0: poll() takes no more descriptors than that either
        ::setrlimit(RLIMIT_NOFILE, &few);
        for (int fd = ::open("/dev/null", O_RDONLY | O_CLOEXEC); fd >= 0;
             fd = ::fcntl(fd, F_DUPFD_CLOEXEC, 0)) {
            taken_.push_back(fd);
        }
    }
    ~NoMoreDescriptors() {
        for (int const fd : taken_) {
            ::close(fd);
        }
        ::setrlimit(RLIMIT_NOFILE, &former_);
    }
    NoMoreDescriptors(NoMoreDescriptors const&) = delete;
    NoMoreDescriptors& operator=(NoMoreDescriptors const&) = delete;

private:
    rlimit former_{};
    std::vector<int> taken_;
};

} // namespace qel::test
