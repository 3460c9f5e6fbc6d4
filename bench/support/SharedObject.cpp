// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "bench/support/SharedObject.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <unistd.h>

#include <cerrno>
#include <system_error>
#include <utility>

namespace bench {

namespace {

[[noreturn]] void fail(std::string const& call) {
    throw std::system_error(errno, std::generic_category(), call);
}

} // namespace

SharedObject::SharedObject(std::string name, std::size_t size, Access access)
    : name_(std::move(name)),
      size_(size),
      owner_(access == Access::Create) {
    constexpr mode_t mode = 0600;
    if (owner_) {
        shm_unlink(name_.c_str());
    }
    int const file = shm_open(name_.c_str(),
                              owner_ ? O_CREAT | O_RDWR : (access == Access::Read ? O_RDONLY : O_RDWR), mode);
    if (file < 0) {
        fail("shm_open " + name_);
    }
    if (owner_ && ftruncate(file, static_cast<off_t>(size_)) != 0) {
        fail("ftruncate " + name_);
    }
    data_ = mmap(nullptr, size_, access == Access::Read ? PROT_READ : PROT_READ | PROT_WRITE, MAP_SHARED,
                 file, 0);
    close(file);
    if (data_ == MAP_FAILED) {
        fail("mmap " + name_);
    }
}

SharedObject::~SharedObject() {
    munmap(data_, size_);
    if (owner_) {
        shm_unlink(name_.c_str());
    }
}

} // namespace bench
