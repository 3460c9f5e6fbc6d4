// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "inspect/check/ValueChainCheck.h"

#include "inspect/image/UnusedSlot.h"

#include <algorithm>
#include <bitset>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <utility>

namespace qel::inspect {

namespace {

class ValueChainCheck {
public:
    ValueChainCheck(Image const& image, FindingList& findings);

    void run(std::vector<PlacedPoint> const& points);

private:
    /// A field that leads to a value: a point's mvs or a value's next.
    struct Link {
        RegionField field;
        std::uint32_t pos = 0;
        std::uint32_t target = shm::NO_POSITION;
    };

    struct Chain {
        std::uint32_t point;
        std::size_t begin; ///< into values_
        std::size_t end;
    };

    void follow(std::uint32_t point);
    bool isFollowed(Link const& link, std::uint32_t point);
    void checkKeys(Chain const& chain);
    void checkValue(std::uint32_t pos, std::uint32_t point);

    Image const& image_;
    FindingList& findings_;
    std::vector<std::uint32_t> values_; ///< in the order of the chains
    std::vector<Chain> chains_;
    std::bitset<shm::MV_COUNT> reached_;
    std::bitset<shm::MV_COUNT> linkedTwice_;
};

ValueChainCheck::ValueChainCheck(Image const& image, FindingList& findings)
    : image_(image),
      findings_(findings) {}

void ValueChainCheck::run(std::vector<PlacedPoint> const& points) {
    for (auto const& point : points) {
        follow(point.pos);
    }
    for (auto const& chain : chains_) {
        for (auto i = chain.begin; i < chain.end; ++i) {
            checkValue(values_[i], chain.point);
        }
        checkKeys(chain);
    }
}

void ValueChainCheck::follow(std::uint32_t point) {
    Chain chain{point, values_.size(), 0};
    Link link{field::mvs, point, image_.region().points[point].mvs};
    while (isFollowed(link, point)) {
        reached_.set(link.target);
        values_.push_back(link.target);
        link = {field::valueNext, link.target, image_.region().values[link.target].next};
    }
    chain.end = values_.size();
    chains_.push_back(chain);
}

bool ValueChainCheck::isFollowed(Link const& link, std::uint32_t point) {
    if (link.target == shm::NO_POSITION) {
        return false;
    }
    auto const report = [&](FindingCode code, char const* expected) {
        findings_.add(code, link.field, link.pos, point, FieldValue::position(link.target),
                      FieldValue::words(expected));
        return false;
    };
    auto const* const value = image_.value(link.target);
    if (value == nullptr) {
        return report(FindingCode::LinkOutOfRange, "0 to 8799, or none");
    }
    if (isUnused(*value)) {
        return report(FindingCode::LinkToUnusedSlot, "a value of the point, or none");
    }
    if (reached_[link.target]) {
        linkedTwice_.set(link.target);
        return report(FindingCode::ValueLinkedTwice, "a value that no other link leads to, or none");
    }
    return true;
}

void ValueChainCheck::checkKeys(Chain const& chain) {
    // With their index, so that of equal keys the first one stays in front.
    std::vector<std::pair<std::uint16_t, std::size_t>> keys;
    keys.reserve(chain.end - chain.begin);
    for (auto i = chain.begin; i < chain.end; ++i) {
        if (linkedTwice_[values_[i]]) {
            return;
        }
        keys.emplace_back(image_.region().values[values_[i]].key, i);
    }
    std::sort(keys.begin(), keys.end());
    for (std::size_t i = 1; i < keys.size(); ++i) {
        if (keys[i - 1].first == keys[i].first && keys[i].first != shm::NO_KEY) {
            findings_.addToValue(FindingCode::KeyNotUnique, field::key, values_[keys[i].second], chain.point,
                                 FieldValue::key(keys[i].first),
                                 FieldValue::words("a key that no other value of the point has"));
        }
    }
}

void ValueChainCheck::checkValue(std::uint32_t pos, std::uint32_t point) {
    auto const& value = image_.region().values[pos];
    if (value.key == shm::NO_KEY) {
        findings_.addToValue(FindingCode::KeyMissing, field::key, pos, point, FieldValue::key(value.key),
                             FieldValue::words("0x0000 to 0xfffe"));
        return; // a slot without a value: what else it holds is not a value's
    }
    if (!std::isfinite(value.value)) {
        findings_.addToValue(FindingCode::NumberNotFinite, field::number, pos, point,
                             FieldValue::number(value.value), FieldValue::words("a finite number"));
    }
    findings_.addUnknownState(field::valueState, pos, point, value.state);
    findings_.addChangedReserved(field::valueReserved, pos, point, value.reserved);
}

} // namespace

void checkValueChains(Image const& image, std::vector<PlacedPoint> const& points, FindingList& findings) {
    ValueChainCheck(image, findings).run(points);
}

} // namespace qel::inspect
