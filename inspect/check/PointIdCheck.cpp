// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "inspect/check/PointIdCheck.h"

#include "inspect/check/LinkClaims.h"
#include "inspect/check/SiblingOrder.h"
#include "inspect/naming/Svid.h"

#include "domain/SensorIdentifier.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>

namespace qel::inspect {

namespace {

class PointIdCheck {
public:
    PointIdCheck(Image const& image, std::vector<PlacedPoint> const& points, FindingList& findings);

    void run();

private:
    void checkEach();
    void checkUnique();
    void checkOrder();

    long long svidOf(std::uint32_t pos) const { return image_.region().points[pos].guid; }
    void report(FindingCode code, std::uint32_t pos, char const* expected);

    Image const& image_;
    std::vector<PlacedPoint> const& points_;
    FindingList& findings_;
    PointSet wrong_; ///< what an id that is wrong says about order counts for nothing
};

PointIdCheck::PointIdCheck(Image const& image, std::vector<PlacedPoint> const& points, FindingList& findings)
    : image_(image),
      points_(points),
      findings_(findings) {}

void PointIdCheck::run() {
    checkEach();
    checkUnique();
    checkOrder();
}

void PointIdCheck::report(FindingCode code, std::uint32_t pos, char const* expected) {
    findings_.addToPoint(code, field::guid, pos, FieldValue::svid(svidOf(pos)), FieldValue::words(expected));
    wrong_.set(pos);
}

void PointIdCheck::checkEach() {
    for (auto const& point : points_) {
        auto const svid = svidOf(point.pos);
        if (svid != pointOf(svid)) {
            findings_.addToPoint(FindingCode::IdHasKey, field::guid, point.pos, FieldValue::svid(svid),
                                 FieldValue::svid(pointOf(svid)));
            wrong_.set(point.pos);
        } else if (svid == shm::ROOT_SVID) {
            report(FindingCode::IdOfRoot, point.pos, "an id of a point");
        } else if (point.list.kind && SensorIdentifier::extractSensorType(svid) != *point.list.kind) {
            report(FindingCode::KindNotOfList, point.pos,
                   *point.list.kind == SensorType::Electrical ? "an id of sensor type 0"
                                                              : "an id of sensor type 2");
        }
    }
}

void PointIdCheck::checkUnique() {
    std::vector<std::uint32_t> byId;
    byId.reserve(points_.size());
    for (auto const& point : points_) {
        if (!wrong_[point.pos]) {
            byId.push_back(point.pos);
        }
    }
    // Of equal ids the first one reached stays in front.
    std::stable_sort(byId.begin(), byId.end(),
                     [&](auto left, auto right) { return svidOf(left) < svidOf(right); });
    for (std::size_t i = 1; i < byId.size(); ++i) {
        if (svidOf(byId[i - 1]) == svidOf(byId[i])) {
            report(FindingCode::IdNotUnique, byId[i], "an id that no other point has");
        }
    }
}

void PointIdCheck::checkOrder() {
    PointSet unordered; // parents of lists with a point of another kind
    for (auto const& point : points_) {
        if (point.list.parent != shm::NO_POSITION && !isOrdered(svidOf(point.pos))) {
            unordered.set(point.list.parent);
        }
    }
    for (auto const& point : points_) {
        bool const counts = point.previous != shm::NO_POSITION && !wrong_[point.pos] &&
                            !wrong_[point.previous] &&
                            (point.list.parent == shm::NO_POSITION || !unordered[point.list.parent]);
        if (counts && belongsBefore(svidOf(point.pos), svidOf(point.previous))) {
            findings_.addToPoint(FindingCode::OrderBroken, field::guid, point.pos,
                                 FieldValue::svid(svidOf(point.pos)),
                                 FieldValue::words("an id that belongs behind that of its prev"));
        }
    }
}

} // namespace

void checkPointIds(Image const& image, std::vector<PlacedPoint> const& points, FindingList& findings) {
    PointIdCheck(image, points, findings).run();
}

} // namespace qel::inspect
