// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tests/model/ReferenceWriter.h"

#include "tests/support/RawRegion.h"

#include <algorithm>

namespace qel::test {

using reference::isPointStateKey;
using reference::keyOf;
using reference::kindLevel;
using reference::levelOf;
using reference::pointOf;
using reference::rootSvid;
using reference::standsBefore;
using reference::States;

namespace {

constexpr std::uint32_t points = 800;
constexpr std::uint32_t values = 8800;
constexpr std::uint8_t wiped = 0xFF;

constexpr reference::State onState = 17;
constexpr reference::State expectedValue = -2;

} // namespace

ReferenceWriter::ReferenceWriter() : image_(rawRegionSize, wiped) {
    for (std::uint32_t pos = 0; pos < values; ++pos) {
        freeValues_.push_back(pos);
    }
    for (std::uint32_t pos = 0; pos < points; ++pos) {
        freePoints_.push_back(pos);
    }
}

void ReferenceWriter::setActive() {
    put(field::rootGuid, rootSvid);
    put(field::rootState, onState);
    put(field::rootUnused, std::uint64_t{0});
    put(field::version, std::uint8_t{32});
}

ReferenceWriter::Outcome ReferenceWriter::addStructure(Structure const& structure) {
    auto outcome = Outcome::Nothing;
    for (auto const& [svid, keys] : structure) {
        if (pointOf(svid) == rootSvid) {
            continue;
        }
        auto parent = std::optional(rawNone);
        if (auto const found = known_.find(svid); found != known_.end()) {
            auto const& present = found->second.values;
            if (std::all_of(keys.begin(), keys.end(), [&](auto key) { return present.count(key) != 0; })) {
                continue;
            }
        } else { // also for the id of a known point with a key in it
            parent = parentPosition(svid);
        }
        if (!parent || addMP(svid, keys, *parent) >= points) {
            return Outcome::Thrown;
        }
        outcome = Outcome::Changed;
    }
    return outcome;
}

std::optional<std::uint32_t> ReferenceWriter::parentPosition(Svid svid) const {
    auto const candidates = reference::parentCandidates(svid);
    for (auto const candidate : candidates) {
        if (auto const found = known_.find(candidate); found != known_.end()) {
            return found->second.pos;
        }
    }
    return candidates.empty() ? std::optional(rawNone) : std::nullopt;
}

std::uint32_t ReferenceWriter::addMP(Svid svid, Keys const& keys, std::uint32_t parent) {
    auto const id = pointOf(svid);
    if (id == rootSvid) {
        return rawNone;
    }
    if (auto const found = known_.find(id); found != known_.end()) {
        addValues(found->second, keys);
        return found->second.pos;
    }
    if (freePoints_.empty()) {
        return rawNone;
    }
    auto const pos = freePoints_.front();
    freePoints_.pop_front();
    fillPoint(pos, id, parent);
    enter(pos);
    addValues(known_[id] = {pos, {}}, keys);
    return pos;
}

void ReferenceWriter::fillPoint(std::uint32_t pos, Svid id, std::uint32_t parent) {
    auto const slot = rawPoint(pos);
    std::fill_n(image_.begin() + static_cast<std::ptrdiff_t>(slot), rawPoint(1), wiped);
    put(slot + field::pos, pos);
    put(slot + field::parent, parent);
    put(slot + field::guid, id);
    put(slot + field::pointAt, std::uint64_t{0});
    put(slot + field::pointState, onState);
    int const kind = levelOf(id, kindLevel);
    put(slot + field::pointType,
        std::uint8_t{kind == 2 || kind == 4}); // a socket group, a residual-current monitor
}

void ReferenceWriter::fillValue(std::uint32_t pos, std::uint16_t key) {
    auto const slot = rawValue(pos);
    std::fill_n(image_.begin() + static_cast<std::ptrdiff_t>(slot), rawValue(1) - rawValue(0), wiped);
    put(slot, 0.0);
    put(slot + field::valueAt, std::uint64_t{0});
    put(slot + field::valueState, expectedValue);
    put(slot + field::valueKey, key);
}

void ReferenceWriter::addValues(Known& target, Keys const& keys) {
    auto tail = rawNone; // the highest position is taken for the end of the chain
    for (auto const& [key, pos] : target.values) {
        tail = tail == rawNone ? pos : std::max(tail, pos);
    }
    for (auto const key : keys) {
        if (target.values.count(key) != 0 || freeValues_.empty()) {
            continue;
        }
        auto const pos = freeValues_.front();
        freeValues_.pop_front();
        fillValue(pos, key);
        target.values[key] = pos;
        if (link(rawPoint(target.pos) + field::mvs) >= values) {
            put(rawPoint(target.pos) + field::mvs, pos);
        }
        if (tail < values) {
            put(rawValue(tail) + field::valueNext, pos);
        }
        tail = pos;
    }
}

// The root has a list of electrical points and one of socket groups. A top-level point of another kind is in none.
void ReferenceWriter::setHead(Svid svid, std::uint32_t pos) {
    if (levelOf(svid, kindLevel) == 0) {
        put(field::devices, pos);
    } else if (levelOf(svid, kindLevel) == 2) {
        put(field::groups, pos);
    }
}

void ReferenceWriter::enter(std::uint32_t pos) {
    auto const slot = rawPoint(pos);
    auto const svid = get<Svid>(slot + field::guid);
    auto const parent = link(slot + field::parent);
    auto current = rawNone;
    if (parent < points) {
        current = link(rawPoint(parent) + field::children);
    } else if (levelOf(svid, kindLevel) == 0) {
        current = link(field::devices);
    } else if (levelOf(svid, kindLevel) == 2) {
        current = link(field::groups);
    }
    auto last = rawNone;
    while (current < points && !standsBefore(svid, get<Svid>(rawPoint(current) + field::guid))) {
        last = current;
        current = link(rawPoint(current) + field::next);
    }
    if (current >= points && last < points) { // behind the last one
        put(slot + field::prev, last);
        put(rawPoint(last) + field::next, pos);
        return;
    }
    auto owner = parent;
    if (current < points) { // before the current one
        auto const before = link(rawPoint(current) + field::prev);
        owner = link(rawPoint(current) + field::parent);
        put(slot + field::next, current);
        put(slot + field::prev, before);
        put(rawPoint(current) + field::prev, pos);
        if (before < points) {
            put(rawPoint(before) + field::next, pos);
            return;
        }
    }
    if (owner < points) {
        put(rawPoint(owner) + field::children, pos);
    } else {
        setHead(svid, pos);
    }
}

ReferenceWriter::Outcome ReferenceWriter::modifyStructure(std::set<Svid> const& svids) {
    Structure structure;
    for (auto const svid : svids) {
        auto& keys = structure[pointOf(svid)];
        if (keyOf(svid) != 0 && !isPointStateKey(keyOf(svid))) {
            keys.insert(keyOf(svid));
        }
    }
    auto const added = addStructure(structure);
    if (added == Outcome::Thrown) {
        return added;
    }
    return removeStructure(structure) ? Outcome::Changed : added;
}

bool ReferenceWriter::removeStructure(Structure const& structure) {
    std::set<Svid> removed;
    for (auto const& [svid, definition] : known_) {
        if (structure.count(svid) == 0) {
            for (auto const& [key, pos] : definition.values) {
                freeValues_.push_back(pos);
            }
            takeOut(definition.pos);
            freePoints_.push_back(definition.pos);
            removed.insert(svid);
        }
    }
    for (auto const svid : removed) {
        known_.erase(svid);
    }
    return !removed.empty();
}

// The slot keeps what it held but for these links; a point behind another one keeps its prev.
void ReferenceWriter::takeOut(std::uint32_t pos) {
    auto const slot = rawPoint(pos);
    auto const next = link(slot + field::next);
    auto const parent = link(slot + field::parent);
    auto const prev = link(slot + field::prev);
    if (prev < points) {
        put(rawPoint(prev) + field::next, next);
    } else {
        if (parent < points) {
            put(rawPoint(parent) + field::children, next);
        } else {
            setHead(get<Svid>(slot + field::guid), next);
        }
        put(slot + field::prev, rawNone);
    }
    if (next < points) {
        put(rawPoint(next) + field::prev, link(slot + field::prev));
        put(slot + field::next, rawNone);
    }
    put(slot + field::parent, rawNone);
}

std::set<ReferenceWriter::Svid> ReferenceWriter::injectTypes(std::map<Svid, int> const& codes) {
    std::set<Svid> applied;
    for (auto const& [svid, code] : codes) {
        if (auto const found = known_.find(pointOf(svid)); found != known_.end()) {
            put(rawPoint(found->second.pos) + field::pointType, static_cast<std::uint8_t>(code & 0xFF));
            applied.insert(svid);
        }
    }
    return applied;
}

bool ReferenceWriter::updateMV(Svid svid, std::optional<double> number, std::uint64_t at, State state) {
    auto const found = known_.find(pointOf(svid));
    if (found == known_.end()) {
        return false;
    }
    auto const key = keyOf(svid);
    if (isPointStateKey(key)) { // the number, if it is one, is dropped
        put(rawPoint(found->second.pos) + field::pointState, state);
        put(rawPoint(found->second.pos) + field::pointAt, at);
        return true;
    }
    auto const slot = found->second.values.find(key);
    if (slot == found->second.values.end()) {
        return false;
    }
    put(rawValue(slot->second) + field::valueAt, at);
    put(rawValue(slot->second) + field::valueState, state);
    if (number) {
        put(rawValue(slot->second), reference::storedNumber(key, *number));
    }
    return number.has_value();
}

// A point and all that follow it among their siblings, children first.
void ReferenceWriter::fold(std::uint32_t pos, States& reported) {
    for (; pos < points; pos = link(rawPoint(pos) + field::next)) {
        auto const slot = rawPoint(pos);
        States ofValues;
        for (auto m = link(slot + field::mvs); m < values; m = link(rawValue(m) + field::valueNext)) {
            ofValues.push_back(get<State>(rawValue(m) + field::valueState));
        }
        States ofChildren;
        fold(link(slot + field::children), ofChildren);
        auto const state = reference::pointState(get<State>(slot + field::pointState), ofValues, ofChildren);
        put(slot + field::pointState, state);
        reported.push_back(reference::reportedState(get<Svid>(slot + field::guid), state));
    }
}

void ReferenceWriter::propagateStates() {
    States reported;
    fold(link(field::devices), reported);
    fold(link(field::groups), reported);
    put(field::rootState, reference::pointState(onState, {}, reported));
}

} // namespace qel::test
