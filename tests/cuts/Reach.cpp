// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tests/cuts/Reach.h"

#include "tests/support/RawRegion.h"
#include "tests/writer/WriterFixture.h"

#include <cstring>

namespace qel::test {

namespace {

/// Fields of a point that are shown, not followed: time, state, type and what is behind.
constexpr std::size_t shownOnly = field::pointAt;

} // namespace

void Reach::compute(std::uint8_t const* region, std::vector<Store const*> const& late) {
    for (auto const slot : marked_) {
        points_[slot] = None;
    }
    for (auto const slot : markedValues_) {
        values_[slot] = None;
    }
    marked_.clear();
    markedValues_.clear();
    region_ = region;
    late_ = &late;
    auto const follow = [this](std::uint32_t slot) {
        followPoint(slot, Shown);
    };
    followLink(field::devices, follow);
    followLink(field::groups, follow);
    for (auto const slot : remembered_) {
        followPoint(slot, Remembered);
    }
}

bool Reach::contains(std::uint32_t offset) const {
    if (offset >= rawRootOffset) {
        return true;
    }
    if (offset >= rawValuesOffset) {
        return values_[(offset - rawValuesOffset) / (rawValue(1) - rawValue(0))] != None;
    }
    auto const mark = points_[offset / rawPoint(1)];
    return mark == Shown || (mark == Remembered && offset % rawPoint(1) < shownOnly);
}

void Reach::followPoint(std::uint32_t slot, Mark mark) {
    if (slot >= points_.size() || points_[slot] >= mark) {
        return;
    }
    points_[slot] = mark;
    marked_.push_back(slot);
    auto const base = rawPoint(slot);
    auto const follow = [&](std::uint32_t next) {
        followPoint(next, mark);
    };
    followLink(base + field::next, follow);
    followLink(base + field::children, follow);
    followLink(base + field::mvs, [this](std::uint32_t value) { followValue(value); });
    auto const goBack = [&](std::uint32_t other) {
        followPoint(other, Remembered);
    };
    followLink(base + field::prev, goBack);
    followLink(base + field::parent, goBack);
}

void Reach::followValue(std::uint32_t slot) {
    if (slot >= values_.size() || values_[slot] != None) {
        return;
    }
    values_[slot] = Shown;
    markedValues_.push_back(slot);
    followLink(rawValue(slot) + field::valueNext, [this](std::uint32_t value) { followValue(value); });
}

template <typename Follow>
void Reach::followLink(std::size_t offset, Follow follow) const {
    std::uint32_t link = 0;
    std::memcpy(&link, region_ + offset, sizeof link);
    follow(link);
    for (auto const* const store : *late_) {
        if (store->offset == offset) {
            follow(static_cast<std::uint32_t>(store->written));
        }
    }
}

} // namespace qel::test
