// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "inspect/image/RegionObject.h"

#include <grp.h>
#include <pwd.h>

#include <array>
#include <cerrno>
#include <vector>

namespace qel::inspect {

namespace {

struct PermissionBit {
    mode_t bit;
    char letter;
};

constexpr std::array<PermissionBit, 9> permissionBits{{{S_IRUSR, 'r'},
                                                       {S_IWUSR, 'w'},
                                                       {S_IXUSR, 'x'},
                                                       {S_IRGRP, 'r'},
                                                       {S_IWGRP, 'w'},
                                                       {S_IXGRP, 'x'},
                                                       {S_IROTH, 'r'},
                                                       {S_IWOTH, 'w'},
                                                       {S_IXOTH, 'x'}}};

/// The name in the record that a getpwuid_r-like call finds for a number, else the number.
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
    std::string text;
    for (auto const& permission : permissionBits) {
        text += (mode & permission.bit) != 0 ? permission.letter : '-';
    }
    return text;
}

} // namespace qel::inspect
