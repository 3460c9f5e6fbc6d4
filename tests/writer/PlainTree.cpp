// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tests/writer/PlainTree.h"

#include "tests/support/RawRegion.h"

namespace qel::test {

PlainTree::PlainTree(RawRegion const& raw) : raw_(raw) {
    walk(raw.u32(field::devices), rawNone);
    walk(raw.u32(field::groups), rawNone);
}

std::set<std::uint32_t> PlainTree::pointSlots() const {
    std::set<std::uint32_t> slots;
    for (auto const& point : points_) {
        slots.insert(point.first);
    }
    return slots;
}

void PlainTree::walk(std::uint32_t first, std::uint32_t parent) {
    auto previous = rawNone;
    for (auto pos = first; pos < 800; pos = raw_.u32(rawPoint(pos) + field::next)) {
        auto const slot = rawPoint(pos);
        auto const name = "point " + std::to_string(pos);
        auto const [known, isNew] = points_.insert({pos, {raw_.get<std::int64_t>(slot + field::guid), {}}});
        if (!isNew) {
            faults_.push_back(name + " is met twice");
            return;
        }
        if (!guids_.insert(known->second.guid).second) {
            faults_.push_back(name + " has the id of another one");
        }
        if (raw_.u32(slot + field::pos) != pos || raw_.u32(slot + field::prev) != previous ||
            raw_.u32(slot + field::parent) != parent) {
            faults_.push_back(name + " says that it stands elsewhere");
        }
        walkValues(pos, known->second);
        walk(raw_.u32(slot + field::children), pos);
        previous = pos;
    }
}

void PlainTree::walkValues(std::uint32_t pos, Point& point) {
    for (auto value = raw_.u32(rawPoint(pos) + field::mvs); value < 8800;
         value = raw_.u32(rawValue(value) + field::valueNext)) {
        auto const name = "value " + std::to_string(value) + " of point " + std::to_string(pos);
        if (!values_.insert(value).second) {
            faults_.push_back(name + " is met twice");
            return;
        }
        if (!point.values.insert({raw_.get<std::uint16_t>(rawValue(value) + field::valueKey), value})
                 .second) {
            faults_.push_back(name + " has the key of another one");
        }
    }
}

} // namespace qel::test
