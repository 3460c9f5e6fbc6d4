// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tests/cuts/WriterBench.h"

#include "tests/model/ReferenceSvid.h"

#include <log4cpp/Category.hh>
#include <log4cpp/Priority.hh>

#include <cstring>
#include <stdexcept>
#include <utility>

namespace qel::test {

namespace {

constexpr unsigned short noKeys = 0x100; ///< first key of values that only hold slots

/// A point that is linked nowhere.
long long unlinkedId(std::size_t number) {
    return pointId(static_cast<int>(number / 100), 3, static_cast<int>(number % 100));
}

Keys manyKeys(std::size_t count) {
    Keys keys;
    for (std::size_t i = 0; i < count; ++i) {
        keys[static_cast<unsigned short>(noKeys + i)] = 0;
    }
    return keys;
}

log4cpp::Category& logOfTheRegion() {
    return log4cpp::Category::getInstance("qel.shm");
}

int exchangeLogLevel(int level) {
    auto const former = logOfTheRegion().getPriority();
    logOfTheRegion().setPriority(level);
    return former;
}

} // namespace

WriterBench::WriterBench() : formerLogLevel_(exchangeLogLevel(log4cpp::Priority::FATAL)) {
    constexpr std::size_t points = 800 - pointSlots;
    constexpr std::size_t values = 8800 - valueSlots;
    for (std::size_t i = 0; i < points; ++i) {
        auto const keys = manyKeys(values / points + (i < values % points ? 1 : 0));
        writer_.addMP(unlinkedId(i), keys, rawNone);
        permanent_.emplace(unlinkedId(i), shm::MPDef());
    }
    alive_ = permanent_;
    takeFreeSlots(); // and so no slot is new from now on
    writer_.setActive();
}

WriterBench::~WriterBench() {
    logOfTheRegion().setPriority(formerLogLevel_);
}

void WriterBench::layOut(Tree const& tree) {
    writer_.removeStructure(permanent_);
    alive_ = permanent_;
    positions_.clear();
    added_.clear();
    stored_.clear();
    moment_ = 0;
    tree_ = tree;
    writer_.setActive();
    for (auto const& point : tree.points) {
        positions_.push_back(writer_.addMP(point.svid, keysOf(point.values), positionOf(point.parent)));
        alive_.emplace(point.svid, shm::MPDef());
        added_.push_back(point.svid);
        for (unsigned key = 1; key <= point.values; ++key) {
            update(point.svid + key);
        }
    }
    writer_.propagateStates();
}

void WriterBench::takeFreeSlots() {
    constexpr std::size_t first = 1000;
    for (std::size_t i = first;; ++i) {
        if (writer_.addMP(unlinkedId(i), manyKeys(valueSlots), rawNone) >= 800) {
            return;
        }
        alive_.emplace(unlinkedId(i), shm::MPDef());
    }
}

void WriterBench::add(NewPlace const& place, unsigned values) {
    if (writer_.addMP(place.svid, keysOf(values), positionOf(place.parent)) >= 800) {
        throw std::logic_error("no slot for a new point");
    }
    alive_.emplace(place.svid, shm::MPDef());
    added_.push_back(place.svid);
}

void WriterBench::addKeys(std::size_t point, std::vector<unsigned short> const& keys) {
    Keys wanted;
    for (auto const key : keys) {
        wanted[key] = 0;
    }
    writer_.addMP(tree_.points[point].svid, wanted, rawNone);
}

void WriterBench::remove(std::vector<std::size_t> const& points) {
    for (auto const point : points) {
        alive_.erase(tree_.points[point].svid);
    }
    writer_.removeStructure(alive_);
}

void WriterBench::modify(NewPlace const& place, std::vector<std::size_t> const& gone) {
    for (auto const point : gone) {
        alive_.erase(tree_.points[point].svid);
    }
    alive_.emplace(place.svid, shm::MPDef());
    added_.push_back(place.svid);
    std::unordered_set<long long> svids{place.svid + 1, place.svid + 2};
    for (auto const& known : alive_) {
        svids.insert(known.first);
    }
    writer_.modifyStructure(svids);
}

template <typename Store>
void WriterBench::updateBy(long long svid, eStatus_Bits state, Store const& store) {
    // Both halves of the number and of the time differ from one update to the next.
    ++updates_;
    auto const number = static_cast<double>(updates_) * 1.1;
    auto const at = updates_ << 32U | updates_;
    store(number, at);
    auto const key = static_cast<std::uint16_t>(svid & 0xFFFF);
    auto const written = reference::storedNumber(key, number);
    std::uint64_t bits = 0;
    std::memcpy(&bits, &written, sizeof bits);
    stored_.push_back({svid & ~0xFFFFLL, key, bits, at, state, moment_});
}

void WriterBench::update(long long svid, eStatus_Bits state) {
    updateBy(svid, state, [&](double number, std::uint64_t at) {
        writer_.updateMV(svid, std::make_unique<measval::MeasureValue>(number, at, state));
    });
}

void WriterBench::updateKept(long long svid, eStatus_Bits state) {
    updateBy(svid, state, [&](double number, std::uint64_t at) {
        writer_.updateMV(kept_.try_emplace(svid, svid).first->second, number, at, state);
    });
}

void WriterBench::updateText(long long svid) {
    ++updates_;
    writer_.updateMV(svid, std::make_unique<measval::MeasureValue>("text", updates_ << 32U | updates_,
                                                                   eStatus_LowWarning));
}

std::vector<std::uint32_t> WriterBench::knownSlots() {
    std::vector<std::uint32_t> slots;
    for (auto const svid : added_) {
        if (alive_.count(svid) != 0) {
            slots.push_back(writer_.addMP(svid, {}, rawNone)); // of a known point it only tells the slot
        }
    }
    return slots;
}

std::uint32_t WriterBench::positionOf(int parent) const {
    return parent < 0 ? rawNone : positions_[static_cast<std::size_t>(parent)];
}

Keys WriterBench::keysOf(unsigned values) const {
    Keys keys;
    for (unsigned key = 1; key <= values; ++key) {
        keys[static_cast<unsigned short>(key)] = 0;
    }
    return keys;
}

} // namespace qel::test
