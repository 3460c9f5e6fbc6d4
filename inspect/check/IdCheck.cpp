// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "inspect/check/IdCheck.h"

#include "domain/SensorIdentifier.h"
#include "region/SvidParts.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>

namespace qel::inspect {

namespace {

class IdCheck {
public:
    IdCheck(Image const& image, std::vector<PlacedPoint> const& points, FindingList& findings)
        : image_(image),
          points_(points),
          findings_(findings) {}

    void run() {
        checkEach();
        checkUnique();
        checkOrder();
    }

private:
    void checkEach();
    void checkUnique();
    void checkOrder();

    long long svidOf(std::uint32_t pos) const { return image_.region().points[pos].guid; }

    void addWrong(FindingCode code, std::uint32_t pos, FieldValue expected) {
        findings_.addToPoint(code, field::guid, pos, FieldValue::svid(svidOf(pos)), expected);
        wrong_.set(pos);
    }

    Image const& image_;
    std::vector<PlacedPoint> const& points_;
    FindingList& findings_;
    PointSet wrong_; ///< points whose rank does not count, since their id is wrong
};

void IdCheck::checkEach() {
    for (auto const& point : points_) {
        auto const svid = svidOf(point.pos);
        if (svid != shm::pointSvid(svid)) {
            addWrong(FindingCode::IdHasKey, point.pos, FieldValue::svid(shm::pointSvid(svid)));
        } else if (svid == shm::ROOT_SVID) {
            addWrong(FindingCode::IdOfRoot, point.pos, FieldValue::words("an id of a point"));
        } else if (point.list.kind && SensorIdentifier::extractSensorType(svid) != *point.list.kind) {
            addWrong(FindingCode::KindNotOfList, point.pos,
                     FieldValue::words(*point.list.kind == SensorType::Electrical
                                           ? "an id of sensor type 0"
                                           : "an id of sensor type 2"));
        }
    }
}

void IdCheck::checkUnique() {
    std::vector<std::uint32_t> byId;
    byId.reserve(points_.size());
    for (auto const& point : points_) {
        if (!wrong_[point.pos]) {
            byId.push_back(point.pos);
        }
    }
    // Stable: of equal ids the first one reached is right.
    std::stable_sort(byId.begin(), byId.end(),
                     [&](auto left, auto right) { return svidOf(left) < svidOf(right); });
    for (std::size_t i = 1; i < byId.size(); ++i) {
        if (svidOf(byId[i - 1]) == svidOf(byId[i])) {
            addWrong(FindingCode::IdNotUnique, byId[i], FieldValue::words("an id that no other point has"));
        }
    }
}

void IdCheck::checkOrder() {
    PointSet unordered; // parents of a child without a rank
    for (auto const& point : points_) {
        if (point.list.parent != shm::NO_POSITION && !siblingRank(svidOf(point.pos))) {
            unordered.set(point.list.parent);
        }
    }
    for (auto const& point : points_) {
        if (point.previous == shm::NO_POSITION || wrong_[point.pos] || wrong_[point.previous] ||
            (point.list.parent != shm::NO_POSITION && unordered[point.list.parent])) {
            continue;
        }
        // Either has no rank: nothing to compare.
        auto const rank = siblingRank(svidOf(point.pos));
        auto const previous = siblingRank(svidOf(point.previous));
        if (rank && previous && *rank < *previous) {
            findings_.addToPoint(FindingCode::OrderBroken, field::guid, point.pos,
                                 FieldValue::svid(svidOf(point.pos)),
                                 FieldValue::words("an id that belongs behind that of its prev"));
        }
    }
}

} // namespace

std::optional<SiblingRank> siblingRank(long long svid) {
    auto const parts = SensorIdentifier::getSensorIdParts(svid);
    switch (SensorIdentifier::extractSensorType(svid)) {
    case SensorType::Electrical:
        return SiblingRank(0, svid, 0);
    case SensorType::RCM:
        return SiblingRank(1, svid, 0);
    case SensorType::I2C:
        return SiblingRank(2, parts[SensorIdentifier::Phase], parts[SensorIdentifier::Circuit]);
    case SensorType::SocketGroup:
        return SiblingRank(3, svid, 0);
    default:
        return std::nullopt;
    }
}

void checkIds(Image const& image, std::vector<PlacedPoint> const& points, FindingList& findings) {
    IdCheck(image, points, findings).run();
}

} // namespace qel::inspect
