// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "inspect/image/LiveRegion.h"

#include "inspect/image/ImageFile.h"

#include "region/ObjectLock.h"

#include <fcntl.h>
#include <grp.h>
#include <pwd.h>
#include <sys/mman.h>
#include <unistd.h>

#include <cerrno>
#include <cstddef>
#include <system_error>
#include <vector>

namespace qel::inspect {

namespace {

/// Name of a user or group, by getpwuid_r() or getgrgid_r(); the number if there is none.
template <typename Record, typename Id, typename LookUp>
std::string nameOf(Id id, char* Record::*name, LookUp const& lookUp) {
    constexpr std::size_t firstSize = 1024;
    constexpr std::size_t lastSize = std::size_t{1} << 20U; // no record of the system is larger
    for (std::size_t size = firstSize; size <= lastSize; size *= 2) {
        std::vector<char> buffer(size);
        Record record = {};
        Record* found = nullptr;
        int const error = lookUp(id, &record, buffer.data(), buffer.size(), &found);
        if (found != nullptr) {
            return found->*name;
        }
        if (error != ERANGE) {
            break;
        }
    }
    return std::to_string(id);
}

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

RegionObject regionObject(struct stat const& status) {
    constexpr mode_t permissions = S_ISUID | S_ISGID | S_ISVTX | S_IRWXU | S_IRWXG | S_IRWXO;
    return {status.st_dev,
            status.st_ino,
            status.st_uid,
            status.st_gid,
            status.st_mode & permissions,
            static_cast<std::uint64_t>(status.st_size),
            static_cast<std::uint64_t>(status.st_nlink),
            S_ISREG(status.st_mode)};
}

bool isSameObject(RegionObject const& left, RegionObject const& right) {
    return left.device == right.device && left.inode == right.inode;
}

std::string userName(uid_t uid) {
    return nameOf(uid, &passwd::pw_name, ::getpwuid_r);
}

std::string groupName(gid_t gid) {
    return nameOf(gid, &group::gr_name, ::getgrgid_r);
}

std::string modeText(mode_t mode) {
    std::string text = "rwxrwxrwx";
    mode_t bit = S_IRUSR;
    for (auto& letter : text) {
        letter = (mode & bit) != 0 ? letter : '-';
        bit >>= 1U;
    }
    return text;
}

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
    // O_PATH needs no right to read and does not follow a link.
    auto const name = openName(O_RDONLY | O_PATH);
    if (!name) {
        found_.error = errno == ENOENT ? 0 : errno;
        found_.opening = found_.error == 0 ? Opening::Absent : Opening::Unreadable;
        return;
    }
    found_.object = factsOf(name);
    if (found_.object && !found_.object->isRegular) {
        found_.opening = Opening::NotRegular;
        return;
    }
    // Another object may have taken the name by now. O_NONBLOCK: opening a named pipe must not block.
    descriptor_ = openName(O_RDONLY | O_NONBLOCK);
    if (!descriptor_) {
        found_.error = errno;
        found_.opening = Opening::Unreadable;
        return;
    }
    if (auto const opened = factsOf(descriptor_); opened && !opened->isRegular) {
        found_.object = opened;
        descriptor_ = FileDescriptor();
        found_.opening = Opening::NotRegular;
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
    return isOpen() ? factsOf(descriptor_) : found_.object;
}

bool LiveRegion::isReplaced() const {
    if (!isOpen()) {
        return false;
    }
    auto const mine = factsOf(descriptor_);
    auto const named = factsOf(openName(O_RDONLY | O_PATH));
    return !mine || !named || !isSameObject(*mine, *named);
}

bool LiveRegion::isLocked() const {
    return isOpen() && shm::wholeFileLock(descriptor_.number(), F_OFD_GETLK, F_RDLCK) == F_WRLCK;
}

RegionSource LiveRegion::source() const {
    return {found_.opening, found_.error, isReplaced(), object()};
}

} // namespace qel::inspect
