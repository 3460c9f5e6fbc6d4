// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tests/cuts/Picture.h"

#include <algorithm>
#include <tuple>

namespace qel::test {

namespace {

auto shown(SeenPoint const& point) {
    return std::tie(point.slot, point.guid, point.depth, point.prev, point.parent, point.at, point.state,
                    point.type);
}

auto shown(SeenValue const& value) {
    return std::tie(value.slot, value.owner, value.key, value.number, value.at, value.state);
}

template <typename Seen>
bool haveTheSame(std::vector<Seen> const& left, std::vector<Seen> const& right) {
    auto const areEqual = [](Seen const& one, Seen const& other) {
        return shown(one) == shown(other);
    };
    return left.size() == right.size() &&
           std::is_permutation(left.begin(), left.end(), right.begin(), areEqual);
}

} // namespace

void Picture::clear() {
    points.clear();
    values.clear();
}

bool Picture::showsTheSameAs(Picture const& other) const {
    return globalState == other.globalState && haveTheSame(points, other.points) &&
           haveTheSame(values, other.values);
}

bool Picture::isInTheOrderOf(Picture const& other) const {
    return std::equal(points.begin(), points.end(), other.points.begin(), other.points.end(),
                      [](auto const& left, auto const& right) {
                          return left.slot == right.slot && left.depth == right.depth;
                      }) &&
           std::equal(values.begin(), values.end(), other.values.begin(), other.values.end(),
                      [](auto const& left, auto const& right) {
                          return left.slot == right.slot && left.owner == right.owner;
                      });
}

} // namespace qel::test
