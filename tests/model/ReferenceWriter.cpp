// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tests/writer/PlainModel.h"

#include <algorithm>
#include <initializer_list>

namespace qel::test {

namespace {

constexpr std::uint32_t none = 0xFFFFFFFF;
constexpr std::uint32_t points = 800;
constexpr std::uint32_t values = 8800;
constexpr std::int64_t rootSvid = static_cast<std::int64_t>(0xFF00FFFFFFFF0000U);

// Byte offsets of the fields.
constexpr std::size_t pointNext = 4;
constexpr std::size_t pointPrev = 8;
constexpr std::size_t pointMvs = 12;
constexpr std::size_t pointChildren = 16;
constexpr std::size_t pointParent = 20;
constexpr std::size_t pointGuid = 24;
constexpr std::size_t pointAt = 32;
constexpr std::size_t pointState = 40;
constexpr std::size_t pointType = 44;
constexpr std::size_t valueAt = 8;
constexpr std::size_t valueState = 16;
constexpr std::size_t valueNext = 20;
constexpr std::size_t valueKey = 24;
constexpr std::size_t rootGuid = 320000;
constexpr std::size_t rootUnused = 320008;
constexpr std::size_t rootDevices = 320016;
constexpr std::size_t rootGroups = 320020;
constexpr std::size_t rootState = 320024;
constexpr std::size_t rootVersion = 320028;

std::size_t point(std::uint32_t pos, std::size_t field = 0) {
    return pos * std::size_t{48} + field;
}
std::size_t value(std::uint32_t pos, std::size_t field = 0) {
    return 38400 + pos * std::size_t{32} + field;
}

// Byte i of an svid, counted from the top, as a signed number.
int part(std::int64_t svid, int i) {
    return static_cast<signed char>((static_cast<std::uint64_t>(svid) >> (56 - 8 * i)) & 0xFF);
}

std::int64_t withPart(std::int64_t svid, int i, int number) {
    int const shift = 56 - 8 * i;
    auto const cleared = static_cast<std::uint64_t>(svid) & ~(std::uint64_t{0xFF} << shift);
    return static_cast<std::int64_t>(cleared | (static_cast<std::uint64_t>(number & 0xFF) << shift));
}

std::int64_t pointId(std::int64_t svid) {
    return static_cast<std::int64_t>(static_cast<std::uint64_t>(svid) & ~std::uint64_t{0xFFFF});
}

std::uint16_t keyOf(std::int64_t svid) {
    return static_cast<std::uint16_t>(static_cast<std::uint64_t>(svid) & 0xFFFF);
}

bool isPointKey(int key) {
    return key == 0x30 || (key >= 0x33 && key <= 0x3B);
}

bool isThousandths(int key) {
    return (key >= 32 && key <= 38) || (key >= 0xFFF9 && key <= 0xFFFC);
}

bool oneOf(std::int32_t state, std::initializer_list<std::int32_t> states) {
    return std::find(states.begin(), states.end(), state) != states.end();
}

bool isValueAlarm(std::int32_t state) {
    return oneOf(state, {1, 2, 9, 10, 39});
}
bool isValueWarning(std::int32_t state) {
    return oneOf(state, {3, 4, 13, 14, 40});
}
bool isChildAlarm(std::int32_t state) {
    return oneOf(state, {5, 7, 8, 9, 10, 19, 20, 22, 23, 25, 39});
}
bool isChildWarning(std::int32_t state) {
    return oneOf(state, {11, 12, 13, 14, 21, 24, 40});
}
bool isOwnAlarm(std::int32_t state) {
    return oneOf(state, {5, 7, 8, 9, 10, 19, 20, 22, 23, 25, 35, 39});
}

std::int32_t ownPart(std::int32_t state) {
    if (oneOf(state, {-2, 5, 6, 34, 35, 36, 43})) {
        return state;
    }
    if (oneOf(state, {7, 11, 15})) {
        return 15;
    }
    if (oneOf(state, {8, 12, 16})) {
        return 16;
    }
    return oneOf(state, {10, 14, 18, 20, 22}) ? 18 : 17;
}

std::int32_t foldValues(std::vector<std::int32_t> const& states) {
    std::int32_t result = -1;
    for (auto const state : states) {
        if (state == -2 || state == -1) {
            continue;
        }
        if (isValueAlarm(state)) {
            return state;
        }
        if (isValueWarning(state) || !isValueWarning(result)) {
            result = state;
        }
    }
    return result;
}

std::int32_t foldChildren(std::vector<std::int32_t> const& states) {
    std::int32_t result = -1;
    for (auto const state : states) {
        if (state == 34 || state == 35) {
            return state;
        }
        if (isChildAlarm(state) || (isChildWarning(state) && !isOwnAlarm(result))) {
            result = state;
        }
    }
    return result;
}

std::int32_t foldPoint(std::int32_t stored, std::vector<std::int32_t> const& valueStates,
                       std::vector<std::int32_t> const& childStates) {
    auto own = ownPart(stored);
    if (oneOf(own, {-2, -1, 5, 6, 34, 36, 43})) {
        return own;
    }
    auto const fromValues = foldValues(valueStates);
    if (own >= 15 && own <= 18) {
        if (isValueAlarm(fromValues)) {
            own -= 8;
        } else if (isValueWarning(fromValues)) {
            own -= 4;
        }
    }
    auto const fromChildren = foldChildren(childStates);
    if (fromChildren == 34 || fromChildren == 35) {
        return fromChildren;
    }
    if (isOwnAlarm(own)) {
        return own;
    }
    if (isChildAlarm(fromChildren)) {
        return own == 18 ? 20 : 23;
    }
    if (oneOf(own, {15, 16, 17, 18, -1}) && isChildWarning(fromChildren)) {
        return own == 18 ? 22 : 24;
    }
    return own;
}

// Does a new point stand before one that is in the list already?
bool standsBefore(std::int64_t added, std::int64_t present) {
    int const kind = part(added, 1);
    int const other = part(present, 1);
    bool const smaller = added < present;
    switch (kind) {
    case 0:
        return other != 0 || smaller;
    case 1:
        if (other == 0 || other == 4) {
            return false;
        }
        if (other == 2) {
            return true;
        }
        if (part(added, 3) != part(present, 3)) {
            return part(added, 3) < part(present, 3);
        }
        return part(added, 4) < part(present, 4);
    case 2:
        return other == 2 && smaller;
    case 4:
        if (other == 0) {
            return false;
        }
        return other == 1 || other == 2 || smaller;
    default:
        return smaller;
    }
}

} // namespace

bool PlainModel::Order::operator()(std::int64_t left, std::int64_t right) const {
    for (int i = 0; i < 6; ++i) {
        int const l = part(left, i) & 0xFF;
        int const r = part(right, i) & 0xFF;
        if (l != r) {
            return l == 0xFF || (r != 0xFF && l < r);
        }
    }
    return left < right;
}

PlainModel::PlainModel() : image_(320032, 0xFF) {
    for (std::uint32_t pos = 0; pos < values; ++pos) {
        freeValues_.push_back(pos);
    }
    for (std::uint32_t pos = 0; pos < points; ++pos) {
        freePoints_.push_back(pos);
    }
}

void PlainModel::setActive() {
    put(rootGuid, rootSvid);
    put(rootState, std::int32_t{17});
    put(rootUnused, std::uint64_t{0});
    put(rootVersion, std::uint8_t{32});
}

PlainModel::Outcome PlainModel::addStructure(Structure const& structure) {
    auto outcome = Outcome::Nothing;
    for (auto const& [svid, keys] : structure) {
        if (svid == rootSvid) {
            continue;
        }
        auto parent = none;
        if (auto const found = known_.find(svid); found != known_.end()) {
            auto const& present = found->second.values;
            if (std::all_of(keys.begin(), keys.end(), [&](auto key) { return present.count(key) != 0; })) {
                continue;
            }
        } else if (!findParent(svid, parent)) {
            return Outcome::Thrown;
        }
        if (addMP(svid, keys, parent) >= points) {
            return Outcome::Thrown;
        }
        outcome = Outcome::Changed;
    }
    return outcome;
}

bool PlainModel::findParent(std::int64_t svid, std::uint32_t& parent) const {
    if (part(svid, 0) == -1 || part(svid, 2) == -1) {
        return true; // a top-level point
    }
    auto id = withPart(rootSvid, 0, part(svid, 0));
    for (int i = 2; part(svid, 1) != 1 && i <= 4; ++i) {
        bool const deeper = part(svid, i + 1) != -1 || (i < 4 && part(svid, i + 2) != -1);
        if (!deeper) {
            break;
        }
        id = withPart(id, i, part(svid, i));
    }
    auto found = known_.find(id);
    if (found == known_.end() && part(svid, 5) != -1 && part(svid, 4) == 0) {
        found = known_.find(withPart(withPart(id, 4, -1), 5, -1));
    }
    if (found == known_.end()) {
        return false;
    }
    parent = found->second.pos;
    return true;
}

std::uint32_t PlainModel::addMP(std::int64_t svid, Keys const& keys, std::uint32_t parent) {
    auto const id = pointId(svid);
    if (auto const found = known_.find(id); found != known_.end()) {
        addValues(found->second, keys);
        return found->second.pos;
    }
    if (freePoints_.empty()) {
        return none;
    }
    auto const pos = freePoints_.front();
    freePoints_.pop_front();
    std::fill_n(image_.begin() + static_cast<std::ptrdiff_t>(point(pos)), 48, std::uint8_t{0xFF});
    put(point(pos), pos);
    put(point(pos, pointParent), parent);
    put(point(pos, pointGuid), id);
    put(point(pos, pointAt), std::uint64_t{0});
    put(point(pos, pointState), std::int32_t{17});
    put(point(pos, pointType), static_cast<std::uint8_t>(part(id, 1) == 2 || part(id, 1) == 4 ? 1 : 0));
    link(pos);
    Known fresh{pos, {}};
    addValues(fresh, keys);
    known_.emplace(id, fresh);
    return pos;
}

void PlainModel::addValues(Known& target, Keys const& keys) {
    auto tail = none; // the highest position is taken for the end of the chain
    for (auto const& [key, pos] : target.values) {
        tail = tail == none ? pos : std::max(tail, pos);
    }
    for (auto const key : keys) {
        if (target.values.count(key) != 0 || freeValues_.empty()) {
            continue;
        }
        auto const pos = freeValues_.front();
        freeValues_.pop_front();
        std::fill_n(image_.begin() + static_cast<std::ptrdiff_t>(value(pos)), 32, std::uint8_t{0xFF});
        put(value(pos), 0.0);
        put(value(pos, valueAt), std::uint64_t{0});
        put(value(pos, valueState), std::int32_t{-2});
        put(value(pos, valueKey), key);
        target.values[key] = pos;
        if (get<std::uint32_t>(point(target.pos, pointMvs)) >= values) {
            put(point(target.pos, pointMvs), pos);
        }
        if (tail < values) {
            put(value(tail, valueNext), pos);
        }
        tail = pos;
    }
}

void PlainModel::setHead(std::int64_t svid, std::uint32_t pos) {
    if (part(svid, 1) == 0) {
        put(rootDevices, pos);
    } else if (part(svid, 1) == 2) {
        put(rootGroups, pos);
    }
}

void PlainModel::link(std::uint32_t pos) {
    auto const svid = get<std::int64_t>(point(pos, pointGuid));
    auto const parent = get<std::uint32_t>(point(pos, pointParent));
    auto current = none;
    if (parent < points) {
        current = get<std::uint32_t>(point(parent, pointChildren));
    } else if (part(svid, 1) == 0 || part(svid, 1) == 2) {
        current = get<std::uint32_t>(part(svid, 1) == 0 ? rootDevices : rootGroups);
    }
    auto last = none;
    while (current < points && !standsBefore(svid, get<std::int64_t>(point(current, pointGuid)))) {
        last = current;
        current = get<std::uint32_t>(point(current, pointNext));
    }
    if (current >= points && last < points) { // behind the last one
        put(point(pos, pointPrev), last);
        put(point(last, pointNext), pos);
        return;
    }
    auto owner = parent;
    if (current < points) { // before the current one
        auto const before = get<std::uint32_t>(point(current, pointPrev));
        owner = get<std::uint32_t>(point(current, pointParent));
        put(point(pos, pointNext), current);
        put(point(pos, pointPrev), before);
        put(point(current, pointPrev), pos);
        if (before < points) {
            put(point(before, pointNext), pos);
            return;
        }
    }
    if (owner < points) {
        put(point(owner, pointChildren), pos);
    } else {
        setHead(svid, pos);
    }
}

PlainModel::Outcome PlainModel::modifyStructure(std::set<std::int64_t> const& svids) {
    Structure structure;
    for (auto const svid : svids) {
        auto& keys = structure[pointId(svid)];
        if (svid != pointId(svid) && !isPointKey(keyOf(svid))) {
            keys.insert(keyOf(svid));
        }
    }
    auto const added = addStructure(structure);
    if (added == Outcome::Thrown) {
        return added;
    }
    return removeStructure(structure) ? Outcome::Changed : added;
}

bool PlainModel::removeStructure(Structure const& structure) {
    std::set<std::int64_t> removed;
    for (auto const& [svid, definition] : known_) {
        if (structure.count(svid) == 0) {
            for (auto const& [key, pos] : definition.values) {
                freeValues_.push_back(pos);
            }
            unlink(definition.pos);
            freePoints_.push_back(definition.pos);
            removed.insert(svid);
        }
    }
    for (auto const svid : removed) {
        known_.erase(svid);
    }
    return !removed.empty();
}

void PlainModel::unlink(std::uint32_t pos) {
    auto const next = get<std::uint32_t>(point(pos, pointNext));
    auto const parent = get<std::uint32_t>(point(pos, pointParent));
    auto const prev = get<std::uint32_t>(point(pos, pointPrev));
    if (prev < points) {
        put(point(prev, pointNext), next);
    } else {
        if (parent < points) {
            put(point(parent, pointChildren), next);
        } else {
            setHead(get<std::int64_t>(point(pos, pointGuid)), next);
        }
        put(point(pos, pointPrev), none);
    }
    if (next < points) {
        put(point(next, pointPrev), get<std::uint32_t>(point(pos, pointPrev)));
        put(point(pos, pointNext), none);
    }
    put(point(pos, pointParent), none);
}

std::set<std::int64_t> PlainModel::injectTypes(std::map<std::int64_t, int> const& codes) {
    std::set<std::int64_t> applied;
    for (auto const& [svid, code] : codes) {
        if (auto const found = known_.find(pointId(svid)); found != known_.end()) {
            put(point(found->second.pos, pointType), static_cast<std::uint8_t>(code & 0xFF));
            applied.insert(svid);
        }
    }
    return applied;
}

bool PlainModel::updateMV(std::int64_t svid, bool isNumber, double number, std::uint64_t at,
                          std::int32_t state) {
    auto const found = known_.find(pointId(svid));
    if (found == known_.end()) {
        return false;
    }
    auto const key = keyOf(svid);
    if (isPointKey(key)) {
        put(point(found->second.pos, pointAt), at);
        put(point(found->second.pos, pointState), state);
        return true;
    }
    auto const slot = found->second.values.find(key);
    if (slot == found->second.values.end()) {
        return false;
    }
    put(value(slot->second, valueAt), at);
    put(value(slot->second, valueState), state);
    if (isNumber) {
        put(value(slot->second), isThousandths(key) ? number / 1000.0 : number);
    }
    return isNumber;
}

void PlainModel::fold(std::uint32_t pos, std::vector<std::int32_t>& reported) {
    for (; pos < points; pos = get<std::uint32_t>(point(pos, pointNext))) {
        std::vector<std::int32_t> valueStates;
        for (auto m = get<std::uint32_t>(point(pos, pointMvs)); m < values;
             m = get<std::uint32_t>(value(m, valueNext))) {
            valueStates.push_back(get<std::int32_t>(value(m, valueState)));
        }
        std::vector<std::int32_t> childStates;
        fold(get<std::uint32_t>(point(pos, pointChildren)), childStates);
        auto const state = foldPoint(get<std::int32_t>(point(pos, pointState)), valueStates, childStates);
        put(point(pos, pointState), state);
        auto const svid = get<std::int64_t>(point(pos, pointGuid));
        bool const isCircuit = part(svid, 1) == 0 && part(svid, 4) != -1 && part(svid, 5) == -1;
        reported.push_back(state == 18 && isCircuit ? 39 : state);
    }
}

void PlainModel::propagateStates() {
    std::vector<std::int32_t> reported;
    for (auto const head : {rootDevices, rootGroups}) {
        // Each top-level point starts a walk over itself and all that follow it.
        for (auto pos = get<std::uint32_t>(head); pos < points;
             pos = get<std::uint32_t>(point(pos, pointNext))) {
            fold(pos, reported);
        }
    }
    put(rootState, foldPoint(17, {}, reported));
}

} // namespace qel::test
