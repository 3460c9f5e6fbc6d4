// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "inspect/check/RegionCheck.h"

#include "inspect/check/IdCheck.h"
#include "inspect/check/LinkCheck.h"
#include "inspect/image/PointTree.h"
#include "inspect/image/RecordBytes.h"
#include "inspect/image/RegionStatus.h"
#include "inspect/why/FoldedStates.h"

#include <algorithm>
#include <bitset>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace qel::inspect {

namespace {

void checkSize(Image const& image, FindingList& findings) {
    if (image.size() != shm::REGION_SIZE) {
        auto const code = image.isWhole() ? FindingCode::RegionTooLong : FindingCode::RegionTooShort;
        findings.add(code, field::size, FieldValue::count(image.size()), FieldValue::count(shm::REGION_SIZE));
    }
}

void checkRoot(Image const& image, FindingList& findings) {
    auto const& root = image.root();
    if (!image.isActive() && root.version != shm::WIPE_BYTE) {
        findings.add(FindingCode::VersionUnknown, field::version, FieldValue::byte(root.version),
                     FieldValue::words("0x20 (active) or 0xff (inactive)"));
    }
    if (image.isActive() && root.guid != shm::ROOT_SVID) {
        findings.add(FindingCode::RootIdWrong, field::rootGuid, FieldValue::svid(root.guid),
                     FieldValue::svid(shm::ROOT_SVID));
    }
    if (image.isActive() && root.unused != 0) {
        findings.add(FindingCode::RootUnusedSet, field::rootUnused, FieldValue::count(root.unused),
                     FieldValue::count(0));
    }
    findings.checkState(field::rootState, 0, shm::NO_POSITION, root.state);
    findings.checkReserved(field::rootReserved, 0, shm::NO_POSITION, root.reserved);
}

/// Checks times of delivery.
class TimeCheck {
public:
    TimeCheck(std::optional<std::uint64_t> now, FindingList& findings) : now_(now), findings_(findings) {}

    /// @param pos, point see Finding
    void run(RegionField const& field, std::uint32_t pos, std::uint32_t point, std::uint64_t at) const {
        constexpr std::uint64_t firstOfYear10000 = 253402300800000;
        if (at >= firstOfYear10000) {
            findings_.addToSlot(FindingCode::TimeOutOfRange, field, pos, point, FieldValue::count(at),
                                FieldValue::words("ms since 1970, or 0 for never"));
        } else if (now_ && isAhead(at, *now_)) {
            findings_.addToSlot(FindingCode::TimeAhead, field, pos, point, FieldValue::count(at),
                                FieldValue::words("ms since 1970 up to now, or 0 for never"));
        }
    }

private:
    std::optional<std::uint64_t> now_;
    FindingList& findings_;
};

void checkSlot(Image const& image, std::uint32_t pos, TimeCheck const& times, FindingList& findings) {
    auto const& point = image.region().points[pos];
    if (point.pos != pos) {
        findings.addToPoint(FindingCode::PosMismatch, field::pos, pos, FieldValue::position(point.pos),
                            FieldValue::position(pos));
    }
    times.run(field::pointAt, pos, pos, point.at);
    findings.checkState(field::pointState, pos, pos, point.state);
    findings.checkReserved(field::pointReserved, pos, pos, point.reserved);
}

/// Follows the value chains of points, through each value once, and checks the values. If chains share values, the link
/// that meets them later is reported. The keys of the chain that has them are not compared then, since the owner of the
/// shared values is unknown.
class ValueChainCheck {
public:
    ValueChainCheck(Image const& image, TimeCheck const& times, FindingList& findings)
        : image_(image),
          times_(times),
          findings_(findings) {}

    void run(std::vector<PlacedPoint> const& points);

private:
    using Positions = std::vector<std::uint32_t>;

    /// A field that leads to a value: a point's mvs or a value's next.
    struct Link {
        RegionField field;
        std::uint32_t pos = 0;
        std::uint32_t target = shm::NO_POSITION;
    };

    Positions chainOf(std::uint32_t point);
    bool leadsToValue(Link const& link, std::uint32_t point);
    void checkKeys(std::uint32_t point, Positions const& chain);
    void checkValue(std::uint32_t point, std::uint32_t pos);

    Image const& image_;
    TimeCheck const& times_;
    FindingList& findings_;
    std::bitset<shm::MV_COUNT> reached_;
    std::bitset<shm::MV_COUNT> linkedTwice_;
};

void ValueChainCheck::run(std::vector<PlacedPoint> const& points) {
    std::vector<Positions> chains;
    chains.reserve(points.size());
    for (auto const& point : points) {
        chains.push_back(chainOf(point.pos));
    }
    for (std::size_t i = 0; i < points.size(); ++i) {
        for (auto const pos : chains[i]) {
            checkValue(points[i].pos, pos);
        }
        checkKeys(points[i].pos, chains[i]);
    }
}

ValueChainCheck::Positions ValueChainCheck::chainOf(std::uint32_t point) {
    Positions chain;
    Link link{field::mvs, point, image_.region().points[point].mvs};
    while (leadsToValue(link, point)) {
        reached_.set(link.target);
        chain.push_back(link.target);
        link = {field::valueNext, link.target, image_.region().values[link.target].next};
    }
    return chain;
}

bool ValueChainCheck::leadsToValue(Link const& link, std::uint32_t point) {
    if (link.target == shm::NO_POSITION) {
        return false;
    }
    auto const addBroken = [&](FindingCode code, char const* expected) {
        findings_.addToSlot(code, link.field, link.pos, point, FieldValue::position(link.target),
                            FieldValue::words(expected));
        return false;
    };
    auto const* const value = image_.value(link.target);
    if (value == nullptr) {
        return addBroken(FindingCode::LinkOutOfRange, "0 to 8799, or none");
    }
    if (isUnused(*value)) {
        return addBroken(FindingCode::LinkToUnusedSlot, "a value of the point, or none");
    }
    if (reached_[link.target]) {
        linkedTwice_.set(link.target);
        return addBroken(FindingCode::ValueLinkedTwice, "a value that no other link leads to, or none");
    }
    return true;
}

void ValueChainCheck::checkKeys(std::uint32_t point, Positions const& chain) {
    if (std::any_of(chain.begin(), chain.end(), [&](auto pos) { return linkedTwice_[pos]; })) {
        return;
    }
    auto const keyOf = [&](std::uint32_t pos) {
        return image_.region().values[pos].key;
    };
    auto byKey = chain;
    // Stable: of equal keys the first one in the chain is right.
    std::stable_sort(byKey.begin(), byKey.end(),
                     [&](auto left, auto right) { return keyOf(left) < keyOf(right); });
    for (std::size_t i = 1; i < byKey.size(); ++i) {
        auto const key = keyOf(byKey[i]);
        if (key == keyOf(byKey[i - 1]) && key != shm::NO_KEY) {
            findings_.addToSlot(FindingCode::KeyNotUnique, field::key, byKey[i], point, FieldValue::key(key),
                                FieldValue::words("a key that no other value of the point has"));
        }
    }
}

void ValueChainCheck::checkValue(std::uint32_t point, std::uint32_t pos) {
    auto const& value = image_.region().values[pos];
    if (value.key == shm::NO_KEY) {
        findings_.addToSlot(FindingCode::KeyMissing, field::key, pos, point, FieldValue::key(value.key),
                            FieldValue::words("0x0000 to 0xfffe"));
        return; // the slot holds no value
    }
    if (!std::isfinite(value.value)) {
        findings_.addToSlot(FindingCode::NumberNotFinite, field::number, pos, point,
                            FieldValue::number(value.value), FieldValue::words("a finite number"));
    }
    times_.run(field::valueAt, pos, point, value.at);
    findings_.checkState(field::valueState, pos, point, value.state);
    findings_.checkReserved(field::valueReserved, pos, point, value.reserved);
}

void checkStates(Image const& image, PointTree const& tree, FindingList& findings) {
    FoldedStates const states(image, tree);
    for (std::size_t i = 0; i < tree.nodes().size(); ++i) {
        auto const pos = tree.nodes()[i].pos;
        auto const stored = image.region().points[pos].state;
        auto const folded = states.nodes()[i].state;
        if (stored != folded) {
            findings.addToPoint(FindingCode::StateNotFolded, field::pointState, pos,
                                FieldValue::state(stored), FieldValue::state(folded));
        }
    }
    if (image.root().state != states.global()) {
        findings.add(FindingCode::GlobalStateNotFolded, field::rootState,
                     FieldValue::state(image.root().state), FieldValue::state(states.global()));
    }
}

} // namespace

Findings checkRegion(Image const& image, std::optional<std::uint64_t> now) {
    FindingList findings;
    TimeCheck const times(now, findings);
    checkSize(image, findings);
    if (!image.isWhole()) {
        return findings.take(); // the root is at the end, and everything is reached from it
    }
    checkRoot(image, findings);
    PointTree const tree(image);
    LinkCheck const links(image, tree, findings);
    for (auto const& point : links.points()) {
        checkSlot(image, point.pos, times, findings);
    }
    checkIds(image, links.points(), findings);
    ValueChainCheck(image, times, findings).run(links.points());
    if (image.isActive() && !hasDamage(findings.findings())) {
        checkStates(image, tree, findings);
    }
    return findings.take();
}

Findings confirmedFindings(Image const& first, std::function<Image()> const& secondCopy,
                           std::optional<std::uint64_t> now) {
    auto const found = checkRegion(first, now);
    return found.empty() ? found : findingsInBoth(found, checkRegion(secondCopy(), now));
}

} // namespace qel::inspect
