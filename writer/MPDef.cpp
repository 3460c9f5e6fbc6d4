// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "writer/MPDef.h"

#include "format/Names.h"

#include <ostream>
#include <utility>

namespace shm {

MPDef::MPDef(unsigned int position, std::map<unsigned short, unsigned int> values)
    : pos(position),
      mvs(std::move(values)) {}

MPDef::MPDef(MPDef const& other) : pos(other.pos), mvs(other.mvs) {}

MPDef::MPDef(MPDef&& other) noexcept : pos(other.pos), mvs(std::move(other.mvs)) {}

MPDef& MPDef::operator=(MPDef const& other) {
    if (this != &other) {
        pos = other.pos;
        mvs = other.mvs;
    }
    return *this;
}

MPDef& MPDef::operator=(MPDef&& other) noexcept {
    if (this != &other) {
        pos = other.pos;
        mvs = std::move(other.mvs);
    }
    return *this;
}

std::ostream& operator<<(std::ostream& out, MPDef const& definition) {
    out << "MPDef {pos = " << definition.pos << ", mvs = [";
    char const* separator = "";
    for (auto const& [key, pos] : definition.mvs) {
        out << separator << '<' << keyName(key) << ';' << pos << '>';
        separator = ", ";
    }
    return out << "]}";
}

} // namespace shm
