// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// In which order one region is made equal to another while readers look on.
#pragma once

#include "inspect/image/RecordBytes.h"
#include "region/QelShmRecords.h"
#include "region/RegionFields.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace qel::tools {

/// What an update has changed.
struct RegionChange {
    std::size_t values = 0;          ///< values whose time, state or number changed
    bool isStructureChanged = false; ///< links, ids, keys or slot numbers changed
};

/// Stores the fields that differ, and nothing else: first cuts all links that change, then stores what slots hold, then
/// sets the new links, and the root's version last. So at any moment the links are some of the old ones or some of the
/// new ones, never both: together they could form a cycle, in which a reader would walk forever. Of a value the number
/// comes after time and state, as the writer does it. Other processors see the three steps in this order too.
///
/// Threads: not shared.
/// @tparam Store called for each single store but that of the version: as link(field, position) for links, which it
///               stores with release order, as field(field, value) for all others
template <typename Store>
class RegionUpdate {
public:
    /// Both regions must outlive the object.
    RegionUpdate(shm::record::Region& live, shm::record::Region const& wanted, Store const& storeOne)
        : live_(live),
          wanted_(wanted),
          storeOne_(storeOne),
          points_(changedSlots(live.points, wanted.points)),
          values_(changedSlots(live.values, wanted.values)) {}

    RegionChange run() {
        forEachLink([this](std::uint32_t& link, std::uint32_t wanted) {
            return link != wanted && storeLink(link, shm::NO_POSITION);
        });
        shm::orderUnlinkBeforeReuse();
        for (auto const pos : points_) {
            storePoint(live_.points[pos], wanted_.points[pos]);
        }
        for (auto const pos : values_) {
            storeValue(live_.values[pos], wanted_.values[pos]);
        }
        storeRoot();
        forEachLink([this](std::uint32_t& link, std::uint32_t wanted) { return storeLink(link, wanted); });
        if (live_.root.version != wanted_.root.version) {
            shm::storeVersion(live_.root, wanted_.root.version);
        }
        return change_;
    }

private:
    template <typename Slot>
    using Link = std::uint32_t Slot::*;
    using Point = shm::record::QelShmMP;
    using Value = shm::record::QelShmMVal;
    using Root = shm::record::QelShmRoot;

    static constexpr std::array<Link<Root>, 2> rootLinks{&Root::devices, &Root::groups};
    static constexpr std::array<Link<Point>, 5> pointLinks{&Point::next, &Point::prev, &Point::mvs,
                                                           &Point::children, &Point::parent};
    static constexpr std::array<Link<Value>, 1> valueLinks{&Value::next};

    template <typename Slot, std::size_t count>
    static std::vector<std::size_t> changedSlots(Slot const (&live)[count], Slot const (&wanted)[count]) {
        std::vector<std::size_t> changed;
        for (std::size_t pos = 0; pos < count; ++pos) {
            if (!inspect::hasSameBits(live[pos], wanted[pos])) {
                changed.push_back(pos);
            }
        }
        return changed;
    }

    /// Gives whether the field had to be stored.
    template <typename Field>
    bool store(Field& field, Field const& wanted) {
        if (inspect::hasSameBits(field, wanted)) {
            return false;
        }
        storeOne_.field(field, wanted);
        return true;
    }

    bool storeLink(std::uint32_t& link, std::uint32_t wanted) {
        if (link == wanted) {
            return false;
        }
        storeOne_.link(link, wanted);
        return true;
    }

    template <std::size_t count>
    void storeBytes(std::uint8_t (&bytes)[count], std::uint8_t const (&wanted)[count]) {
        for (std::size_t index = 0; index < count; ++index) {
            store(bytes[index], wanted[index]);
        }
    }

    template <typename Visit>
    void forEachLink(Visit const& visit) {
        auto const links = [&](auto& slot, auto const& wanted, auto const& fields) {
            for (auto const field : fields) {
                change_.isStructureChanged |= visit(slot.*field, wanted.*field);
            }
        };
        links(live_.root, wanted_.root, rootLinks);
        for (auto const pos : points_) {
            links(live_.points[pos], wanted_.points[pos], pointLinks);
        }
        for (auto const pos : values_) {
            links(live_.values[pos], wanted_.values[pos], valueLinks);
        }
    }

    void storePoint(Point& point, Point const& wanted) {
        change_.isStructureChanged |= store(point.pos, wanted.pos);
        change_.isStructureChanged |= store(point.guid, wanted.guid);
        store(point.at, wanted.at);
        store(point.state, wanted.state);
        store(point.type, wanted.type);
        storeBytes(point.reserved, wanted.reserved);
    }

    void storeValue(Value& value, Value const& wanted) {
        change_.isStructureChanged |= store(value.key, wanted.key);
        bool const isTimeNew = store(value.at, wanted.at);
        bool const isStateNew = store(value.state, wanted.state);
        bool const isNumberNew = store(value.value, wanted.value);
        change_.values += isTimeNew || isStateNew || isNumberNew ? 1 : 0;
        storeBytes(value.reserved, wanted.reserved);
    }

    void storeRoot() {
        store(live_.root.guid, wanted_.root.guid);
        store(live_.root.unused, wanted_.root.unused);
        store(live_.root.state, wanted_.root.state);
        storeBytes(live_.root.reserved, wanted_.root.reserved);
    }

    shm::record::Region& live_;
    shm::record::Region const& wanted_;
    Store const& storeOne_;
    std::vector<std::size_t> points_; // positions that differ
    std::vector<std::size_t> values_;
    RegionChange change_;
};

} // namespace qel::tools
