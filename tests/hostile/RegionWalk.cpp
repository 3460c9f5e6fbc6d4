// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tests/hostile/RegionWalk.h"

#include "tests/writer/WriterFixture.h"

#include <cinttypes>
#include <cstdio>

namespace qel::test {

namespace {

constexpr std::size_t pointSlots = 800;
constexpr std::size_t valueSlots = 8800;

/// The slots from a position on, one more than there are if they are in a circle.
template <typename Next>
Positions chain(std::uint32_t first, std::size_t slots, Next const& next) {
    Positions chain;
    for (auto pos = first; pos < slots && chain.size() <= slots; pos = next(pos)) {
        chain.push_back(pos);
    }
    return chain;
}

} // namespace

RegionWalk::RegionWalk(RawRegion const& raw) : raw_(raw) {
    walk(raw_.u32(field::devices));
    walk(raw_.u32(field::groups));
    // A look-up goes to the slot that a point names as its own, which need not be the one that it is in.
    for (std::size_t i = 0; ends_ && i < points_.size(); ++i) {
        auto const named = raw_.u32(rawPoint(points_[i].slot) + field::pos);
        ends_ =
            named >= pointSlots || valueChain(raw_.u32(rawPoint(named) + field::mvs)).size() <= valueSlots;
    }
}

void RegionWalk::walk(std::uint32_t first) {
    struct Pending {
        std::uint32_t slot;
        unsigned int depth;
    };
    std::vector<Pending> pending{{first, 1}};
    while (ends_ && !pending.empty()) {
        auto const [slot, depth] = pending.back();
        pending.pop_back();
        if (slot >= pointSlots) {
            continue;
        }
        addValues(points_.emplace_back(WalkedPoint{slot, depth, {}}));
        ends_ = ends_ && points_.size() <= pointSlots;
        pending.push_back({raw_.u32(rawPoint(slot) + field::next), depth});
        pending.push_back({raw_.u32(rawPoint(slot) + field::children), depth + 1});
    }
}

void RegionWalk::addValues(WalkedPoint& point) {
    point.values = valueChain(raw_.u32(rawPoint(point.slot) + field::mvs));
    valueCount_ += point.values.size();
    ends_ = ends_ && valueCount_ <= valueSlots;
}

Positions RegionWalk::siblings(std::uint32_t first) const {
    return chain(first, pointSlots, [&](auto pos) { return raw_.u32(rawPoint(pos) + field::next); });
}

Positions RegionWalk::valueChain(std::uint32_t first) const {
    return chain(first, valueSlots, [&](auto pos) { return raw_.u32(rawValue(pos) + field::valueNext); });
}

std::string RegionWalk::treeText() const {
    constexpr std::size_t lineSize = 128;
    char line[lineSize];
    static_cast<void>(
        std::snprintf(line, sizeof line, "0x%" PRIx64 "\n", raw_.get<std::uint64_t>(rawRootOffset)));
    std::string text = line;
    for (auto const& point : points_) {
        auto const number = [&](std::size_t offset) {
            return raw_.u32(rawPoint(point.slot) + offset);
        };
        text.append(std::size_t{2} * point.depth, ' ');
        static_cast<void>(std::snprintf(
            line, sizeof line, "- 0x%016" PRIx64 ", this = %x, parent = %x, prev = %x, next = %x [",
            raw_.get<std::uint64_t>(rawPoint(point.slot) + field::guid), number(field::pos),
            number(field::parent), number(field::prev), number(field::next)));
        text += line;
        for (std::size_t i = 0; i < point.values.size(); ++i) {
            static_cast<void>(
                std::snprintf(line, sizeof line, "%s0x%04x", i == 0 ? "" : ", ",
                              raw_.get<std::uint16_t>(rawValue(point.values[i]) + field::valueKey)));
            text += line;
        }
        text += "]\n";
    }
    return text;
}

} // namespace qel::test
