// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tests/cuts/CutReader.h"

#include "reader/BaseQelShmVisitor.h"
#include "region/QelShmRoot.h"
#include "tests/support/RawRegion.h"

#include <algorithm>
#include <cstring>
#include <memory>
#include <stdexcept>

namespace qel::test {

namespace {

using Result = std::shared_ptr<shm::IQelVisitorResult>;

constexpr std::size_t mostCallbacks = 1000;
constexpr std::uint32_t noSlot = 0xFFFFFFFE; ///< for what lies in no table

std::uint8_t const* bytesOf(MappedReader const& reader) {
    return reinterpret_cast<std::uint8_t const*>(&*reader.root()) - rawRootOffset;
}

/// The number of a slot in its table; noSlot when the address is none of a slot there.
std::uint32_t slotAt(void const* address, std::uint8_t const* table, std::size_t size, std::size_t slots) {
    auto const offset = static_cast<std::uint8_t const*>(address) - table;
    auto const bytes = static_cast<std::size_t>(offset);
    return offset < 0 || bytes % size != 0 || bytes / size >= slots
               ? noSlot
               : static_cast<std::uint32_t>(bytes / size);
}

std::uint32_t pointSlotAt(void const* address, std::uint8_t const* region) {
    return slotAt(address, region, rawPoint(1), 800);
}

std::uint32_t valueSlotAt(void const* address, std::uint8_t const* region) {
    return slotAt(address, region + rawValuesOffset, rawValue(1) - rawValue(0), 8800);
}

std::uint64_t bitsOf(double number) {
    std::uint64_t bits = 0;
    std::memcpy(&bits, &number, sizeof bits);
    return bits;
}

void read(shm::QelShmMVal const& value, SeenValue& seen) {
    seen.key = value->key;
    seen.number = bitsOf(value->value);
    seen.at = value->at;
    seen.state = value->state;
}

} // namespace

/// Notes what it is shown, after the region has moved on.
class CutReader::Noting : public shm::BaseQelShmVisitor {
public:
    Noting(std::uint8_t const* region, Picture& seen, std::function<void(std::size_t)> const& moving)
        : region_(region),
          seen_(seen),
          moving_(moving) {}

    void onRoot(shm::QelShmRoot const& root, Result& /*result*/) override {
        step();
        seen_.globalState = root->state;
    }

    void onMPnt(shm::QelShmMPnt const& point, unsigned int depth, Result& /*result*/) override {
        step();
        SeenPoint seen;
        seen.slot = pointSlotAt(&*point, region_);
        if (seen.slot != noSlot) {
            seen.prev = point->prev;
            seen.parent = point->parent;
            seen.depth = depth;
            seen.state = point->state;
            seen.guid = point->guid;
            seen.at = point->at;
            seen.type = point->type;
        }
        seen_.points.push_back(seen);
    }

    void onMVal(shm::QelShmMVal const& value, long long svid, unsigned int /*depth*/,
                Result& /*result*/) override {
        step();
        SeenValue seen;
        seen.owner = svid;
        seen.slot = valueSlotAt(&*value, region_);
        if (seen.slot != noSlot) {
            read(value, seen);
        }
        seen_.values.push_back(seen);
    }

private:
    void step() {
        if (callbacks_ > mostCallbacks) {
            throw std::runtime_error("the visit does not end");
        }
        if (moving_) {
            moving_(callbacks_);
        }
        ++callbacks_;
    }

    std::uint8_t const* region_;
    Picture& seen_;
    std::function<void(std::size_t)> const& moving_;
    std::size_t callbacks_ = 0;
};

CutReader::CutReader() : freshBytes_(bytesOf(fresh_)), oldBytes_(bytesOf(old_)) {}

void CutReader::remember(Picture const& now) {
    old_.syncPositions(true);
    rememberedPoints_.clear();
    rememberedSlots_.clear();
    kept_.clear();
    for (auto const& point : now.points) {
        rememberedPoints_.push_back(point.guid);
        rememberedSlots_.push_back(point.slot);
    }
    for (auto const& value : now.values) {
        kept_.emplace_back(value.owner + value.key);
        if (!old_.mval(kept_.back())) {
            throw std::logic_error("a value of a resting region is not found");
        }
    }
}

void CutReader::visit(Picture& seen, std::function<void(std::size_t)> const& moving) {
    seen.clear();
    fresh_.visitor(std::make_unique<Noting>(freshBytes_, seen, moving));
    try {
        fresh_.visit();
    } catch (...) {
        fresh_.visitor(nullptr);
        throw;
    }
    fresh_.visitor(nullptr);
}

void CutReader::scan(Picture& seen, std::function<void(std::size_t)> const& moving) {
    seen.clear();
    Noting noting(freshBytes_, seen, moving);
    Result none;
    noting.onRoot(fresh_.root(), none);
    for (auto const& point : fresh_.points()) {
        noting.onMPnt(point, point.depth(), none);
        auto const svid = point.svid();
        for (auto const& value : point.values()) {
            noting.onMVal(value, svid, point.depth(), none);
        }
    }
}

std::string CutReader::compareLists(Picture const& visited) {
    std::size_t points = 0;
    std::size_t values = 0;
    auto const holdPoints = [&](std::uint32_t first) {
        for (auto const& point : fresh_.mps(first, SensorType::Any)) {
            auto const slot = slotOf(point);
            auto const wasMet = [&](auto const& seen) {
                return seen.slot == slot;
            };
            points += std::any_of(visited.points.begin(), visited.points.end(), wasMet) ? 1 : mostCallbacks;
        }
    };
    auto const root = fresh_.root();
    holdPoints(root->devices);
    holdPoints(root->groups);
    for (auto const& met : visited.points) {
        auto const& point = *reinterpret_cast<shm::QelShmMP const*>(freshBytes_ + rawPoint(met.slot));
        holdPoints(point.children);
        for (auto const& value : fresh_.mvs(point.mvs)) {
            auto const slot = slotOf(value);
            auto const wasMet = [&](auto const& seen) {
                return seen.slot == slot && seen.owner == met.guid;
            };
            values += std::any_of(visited.values.begin(), visited.values.end(), wasMet) ? 1 : mostCallbacks;
        }
    }
    if (points != visited.points.size()) {
        return "mps lists other points than a visit meets";
    }
    return values != visited.values.size() ? "mvs lists other values than a visit meets" : "";
}

std::string CutReader::compareIndex(Picture const& visited, Past const& past, std::size_t& unfound) {
    fresh_.syncPositions(true);
    for (auto const& wanted : past.points()) {
        auto const met = std::find_if(visited.points.begin(), visited.points.end(),
                                      [&](auto const& point) { return point.guid == wanted.guid; });
        auto const found = fresh_.mpnt(wanted.guid, false);
        if ((found == nullptr) != (met == visited.points.end()) ||
            (found != nullptr && slotOf(*found) != met->slot)) {
            return "mpnt does not find what a visit meets";
        }
    }
    for (auto const& wanted : past.values()) {
        auto const met = std::find_if(visited.values.begin(), visited.values.end(), [&](auto const& value) {
            return value.owner == wanted.owner && value.key == wanted.key;
        });
        auto const found = fresh_.mval(wanted.owner + wanted.key, false);
        if (found && (met == visited.values.end() || slotOf(found) != met->slot)) {
            return "mval with a new index finds what a visit does not meet";
        }
        unfound += !found && met != visited.values.end() ? 1 : 0;
    }
    return {};
}

void CutReader::lookUpByOldIndex(std::vector<Found>& found) {
    found.clear();
    for (auto kept : kept_) { // a copy, for looking up changes it
        auto const svid = kept.svid();
        for (bool const isKept : {false, true}) {
            auto const value = isKept ? old_.mval(kept) : old_.mval(svid, false);
            Found result;
            result.point = svid & ~0xFFFFLL;
            result.key = static_cast<std::uint16_t>(svid & 0xFFFF);
            result.isNull = !value;
            if (value) {
                result.value = seen(value, result.point);
            }
            found.push_back(result);
        }
    }
}

std::string CutReader::countForeignPoints(std::size_t& foreign) {
    for (auto const svid : rememberedPoints_) {
        auto const point = old_.mpnt(svid, false);
        if (point == nullptr) {
            continue;
        }
        if (pointSlotAt(&**point, oldBytes_) == noSlot) {
            return "mpnt with an old index leaves the table";
        }
        foreign += (*point)->guid != svid ? 1 : 0;
    }
    return {};
}

std::uint32_t CutReader::slotOf(shm::QelShmMPnt const& point) const {
    return pointSlotAt(&*point, freshBytes_);
}

std::uint32_t CutReader::slotOf(shm::QelShmMVal const& value) const {
    return valueSlotAt(&*value, freshBytes_);
}

SeenValue CutReader::seen(shm::QelShmMVal const& value, std::int64_t owner) const {
    SeenValue seen;
    seen.owner = owner;
    seen.slot = valueSlotAt(&*value, oldBytes_);
    if (seen.slot != noSlot) {
        read(value, seen);
    }
    return seen;
}

} // namespace qel::test
