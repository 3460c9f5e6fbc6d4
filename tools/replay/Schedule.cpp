// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tools/replay/Schedule.h"

#include "tools/replay/csv/InputError.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <string>

namespace qel::tools {

namespace {

void append(std::vector<Change>& changes, PointId const& point, std::vector<double> const& times,
            bool comes) {
    constexpr double msPerSecond = 1000.0;
    for (double const seconds : times) {
        changes.push_back({static_cast<std::uint64_t>(std::llround(seconds * msPerSecond)), point, comes});
    }
}

bool isEarlier(Change const& left, Change const& right) {
    return left.due < right.due;
}

void requireAlternation(std::vector<Change> const& changes, Appearances const& appearances) {
    for (std::size_t index = 1; index < changes.size(); ++index) {
        auto const& change = changes[index];
        auto const& before = changes[index - 1];
        if (change.comes == before.comes || change.due == before.due) {
            auto const option = change.comes ? appearances.comeOption : appearances.goOption;
            auto const other = before.comes ? appearances.comeOption : appearances.goOption;
            throw InputError({option},
                             "the change at " + std::to_string(change.due) + " ms follows " +
                                 std::string(other) + " at " + std::to_string(before.due) + " ms",
                             std::string(appearances.comeOption) + " and " +
                                 std::string(appearances.goOption) + " to alternate, at different times");
        }
    }
}

} // namespace

void Schedule::add(Appearances const& appearances) {
    std::vector<Change> changes;
    append(changes, appearances.point, appearances.comes, true);
    append(changes, appearances.point, appearances.goes, false);
    std::stable_sort(changes.begin(), changes.end(), isEarlier);
    requireAlternation(changes, appearances);
    changes_.insert(changes_.end(), changes.begin(), changes.end());
    std::stable_sort(changes_.begin(), changes_.end(), isEarlier);
}

bool Schedule::isNext(PointId const& point, bool comes) const {
    auto const first = std::find_if(changes_.begin() + static_cast<std::ptrdiff_t>(next_), changes_.end(),
                                    [&](Change const& change) { return change.point == point; });
    return first != changes_.end() && first->comes == comes;
}

std::optional<std::uint64_t> Schedule::due() const {
    return next_ < changes_.size() ? std::optional<std::uint64_t>(changes_[next_].due) : std::nullopt;
}

} // namespace qel::tools
