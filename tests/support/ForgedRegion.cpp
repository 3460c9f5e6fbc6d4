// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tests/support/ForgedRegion.h"

namespace qel::test {

void ForgedRegion::point(std::uint32_t pos, long long svid) const {
    raw_.set<std::uint32_t>(rawPoint(pos) + field::pos, pos);
    raw_.set<std::int64_t>(rawPoint(pos) + field::guid, svid);
}

std::uint32_t ForgedRegion::siblings(std::vector<std::uint32_t> const& positions) const {
    auto next = rawNone;
    for (auto pos = positions.rbegin(); pos != positions.rend(); ++pos) {
        raw_.set<std::uint32_t>(rawPoint(*pos) + field::next, next);
        raw_.set<std::uint32_t>(rawPoint(*pos) + field::prev, rawNone);
        if (next != rawNone) {
            raw_.set<std::uint32_t>(rawPoint(next) + field::prev, *pos);
        }
        next = *pos;
    }
    return next;
}

void ForgedRegion::children(std::uint32_t parent, std::vector<std::uint32_t> const& positions) const {
    raw_.set<std::uint32_t>(rawPoint(parent) + field::children, siblings(positions));
    for (auto const pos : positions) {
        raw_.set<std::uint32_t>(rawPoint(pos) + field::parent, parent);
    }
}

void ForgedRegion::devices(std::vector<std::uint32_t> const& positions) const {
    raw_.set<std::uint32_t>(field::devices, siblings(positions));
    for (auto const pos : positions) {
        raw_.set<std::uint32_t>(rawPoint(pos) + field::parent, rawNone);
    }
}

void ForgedRegion::groups(std::vector<std::uint32_t> const& positions) const {
    raw_.set<std::uint32_t>(field::groups, siblings(positions));
    for (auto const pos : positions) {
        raw_.set<std::uint32_t>(rawPoint(pos) + field::parent, rawNone);
    }
}

void ForgedRegion::values(std::uint32_t pos, std::uint32_t first,
                          std::vector<std::uint16_t> const& keys) const {
    auto slot = first;
    for (auto const key : keys) {
        raw_.set<std::uint16_t>(rawValue(slot) + field::valueKey, key);
        raw_.set<std::uint32_t>(rawValue(slot) + field::valueNext,
                                slot + 1 - first < keys.size() ? slot + 1 : rawNone);
        ++slot;
    }
    raw_.set<std::uint32_t>(rawPoint(pos) + field::mvs, keys.empty() ? rawNone : first);
}

void ForgedRegion::activate() const {
    raw_.set<std::uint8_t>(field::version, 32);
}

} // namespace qel::test
