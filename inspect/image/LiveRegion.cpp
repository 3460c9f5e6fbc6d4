// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "inspect/image/LiveRegion.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <system_error>

namespace qel::inspect {

namespace {

FileDescriptor openName(int flags) {
    return FileDescriptor(::shm_open(shm::REGION_NAME, flags | O_CLOEXEC, 0));
}

std::optional<RegionObject> factsOf(FileDescriptor const& descriptor) {
    struct stat status = {};
    if (!descriptor || ::fstat(descriptor.number(), &status) != 0) {
        return std::nullopt;
    }
    return regionObject(status);
}

} // namespace

std::string openingProblem(RegionSource const& source) {
    switch (source.opening) {
    case Opening::Opened:
        return {};
    case Opening::Absent:
        return "no such object";
    case Opening::Unreadable:
        return std::generic_category().message(source.error);
    case Opening::NotRegular:
        return "a directory, link or device stands under the name";
    }
    return {};
}

LiveRegion::LiveRegion() {
    // O_PATH shows what is there without the right to read it, and without following a link.
    auto const name = openName(O_RDONLY | O_PATH);
    if (!name) {
        error_ = errno == ENOENT ? 0 : errno;
        opening_ = error_ == 0 ? Opening::Absent : Opening::Unreadable;
        return;
    }
    found_ = factsOf(name);
    if (found_ && !found_->isRegular) {
        opening_ = Opening::NotRegular;
        return;
    }
    // Something else may stand there by now; a named pipe must hold nobody up.
    descriptor_ = openName(O_RDONLY | O_NONBLOCK);
    if (!descriptor_) {
        error_ = errno;
        opening_ = Opening::Unreadable;
        return;
    }
    if (auto const opened = factsOf(descriptor_); opened && !opened->isRegular) {
        found_ = opened;
        descriptor_ = FileDescriptor();
        opening_ = Opening::NotRegular;
    }
}

Image LiveRegion::copy() const {
    if (!isOpen()) {
        return {};
    }
    return imageOf([this](void* bytes, std::size_t count,
                          off_t offset) { return ::pread(descriptor_.number(), bytes, count, offset); },
                   [this] {
                       auto const facts = factsOf(descriptor_);
                       return facts ? facts->size : 0;
                   });
}

std::optional<RegionObject> LiveRegion::object() const {
    return isOpen() ? factsOf(descriptor_) : found_;
}

bool LiveRegion::isReplaced() const {
    if (!isOpen()) {
        return false;
    }
    auto const mine = factsOf(descriptor_);
    auto const named = factsOf(openName(O_RDONLY | O_PATH));
    return !mine || !named || !isSameObject(*mine, *named);
}

RegionSource LiveRegion::source() const {
    return {opening_, error_, isReplaced(), object()};
}

} // namespace qel::inspect
