// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tests/cuts/Judge.h"

#include <algorithm>
#include <ios>
#include <sstream>

namespace qel::test {

namespace {

constexpr std::uint32_t pointSlots = 800;
constexpr std::uint32_t valueSlots = 8800;
constexpr std::int32_t on = 17;
constexpr std::int32_t expectedValue = -2;
constexpr std::uint64_t highHalf = 0xFFFFFFFF00000000;

/// Whether what was seen of 8 bytes is one of the contents that were there, or put together of two of them.
class Contents {
public:
    /// Zero is what every slot holds initially.
    Contents(std::uint64_t seen, bool allowsHalves) : seen_(seen), allowsHalves_(allowsHalves) { hold(0); }

    void hold(std::uint64_t content) {
        auto const difference = seen_ ^ content;
        isWhole_ = isWhole_ || difference == 0;
        hasHigh_ = hasHigh_ || (difference & highHalf) == 0;
        hasLow_ = hasLow_ || (difference & ~highHalf) == 0;
    }

    bool isExplained() const { return isWhole_ || (allowsHalves_ && hasHigh_ && hasLow_); }

private:
    std::uint64_t seen_;
    bool allowsHalves_;
    bool isWhole_ = false;
    bool hasHigh_ = false;
    bool hasLow_ = false;
};

std::string nameOf(std::int64_t guid) {
    std::ostringstream text;
    text << std::hex << std::showbase << guid;
    return text.str();
}

std::string nameOf(SeenValue const& value) {
    return "value slot " + std::to_string(value.slot) + " under " + nameOf(value.owner) + " with key " +
           std::to_string(value.key);
}

} // namespace

std::string Judge::judge(Picture const& seen) const {
    for (auto const& point : seen.points) {
        if (auto verdict = judge(point); !verdict.empty()) {
            return verdict;
        }
    }
    for (auto const& value : seen.values) {
        if (auto verdict = judge(value); !verdict.empty()) {
            return verdict;
        }
    }
    return {};
}

std::string Judge::judge(SeenPoint const& seen) const {
    auto const name = [&] {
        return "point slot " + std::to_string(seen.slot) + " as " + nameOf(seen.guid);
    };
    if (seen.slot >= pointSlots) {
        return name() + ": no slot of the table";
    }
    if (!past_.hadPoint(seen.slot, seen.guid)) {
        return name() + ": the slot never had this id";
    }
    auto const& point = *past_.point(seen.guid);
    bool hasState = seen.state == on;
    bool hasType = seen.type <= 1;
    Contents times(seen.at, allowsHalves_);
    for (auto const* const list : {&point.seen, &point.hidden}) {
        for (auto const* const moment : *list) {
            if (moment != nullptr) {
                hasState = hasState || moment->state == seen.state;
                hasType = hasType || moment->type == seen.type;
                times.hold(moment->at);
            }
        }
    }
    return hasState && hasType && times.isExplained()
               ? ""
               : name() + ": time, state or type was never stored for it";
}

std::string Judge::judge(SeenValue const& seen) const {
    if (seen.slot >= valueSlots) {
        return nameOf(seen) + ": no slot of the table";
    }
    if (!past_.hadValue(seen.slot, seen.owner, seen.key)) {
        return nameOf(seen) + ": the slot never was this point's value of this key";
    }
    return hasStoredContent(seen, *past_.value(seen.owner, seen.key))
               ? ""
               : nameOf(seen) + ": time, state or number was never stored for it";
}

bool Judge::hasStoredContent(SeenValue const& seen, Past::Value const& value) const {
    bool hasState = seen.state == expectedValue;
    Contents times(seen.at, allowsHalves_);
    Contents numbers(seen.number, allowsHalves_);
    auto const hold = [&](auto const& content) {
        hasState = hasState || content.state == seen.state;
        times.hold(content.at);
        numbers.hold(content.number);
    };
    for (auto const* const moment : value.seen) {
        if (moment != nullptr) {
            hold(*moment);
        }
    }
    for (auto const* const hidden : value.hidden) {
        hold(*hidden);
    }
    std::for_each(value.stored.begin(), value.stored.end(), hold);
    return hasState && times.isExplained() && numbers.isExplained();
}

} // namespace qel::test
