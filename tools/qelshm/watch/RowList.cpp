// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tools/qelshm/watch/RowList.h"

#include "format/StateName.h"
#include "inspect/naming/StateClass.h"

#include <algorithm>
#include <array>
#include <limits>
#include <string_view>

namespace qel::watch {

namespace {

constexpr std::array<char const*, 4> sortNames{"tree", "state", "name", "age"};

eStatus_Bits stateOf(RowListInput const& input, UnitValue const& value) {
    return input.image.region().values[value.pos].state;
}

bool matches(RowListInput const& input, UnitValue const& value) {
    auto const& point = input.structure.points()[value.point];
    return input.filter.matches({value.path, point.type, value.name, shm::stateName(stateOf(input, value))});
}

bool matches(RowListInput const& input, UnitPoint const& point) {
    auto const state = input.image.region().points[point.pos].state;
    return input.filter.matches({point.path, point.type, shm::stateName(state)});
}

/// By the attention that a state asks for; several classes rank alike.
inspect::StateClass rankOf(eStatus_Bits state) {
    using inspect::StateClass;
    auto const kind = inspect::classOf(state);
    if (kind >= StateClass::Warning) {
        return kind;
    }
    if (kind >= StateClass::Identify) {
        return StateClass::Identify;
    }
    return kind >= StateClass::Plain ? StateClass::Plain : StateClass::NoValue;
}

/// Texts with numbers in them: "socket2" before "socket10".
bool isBefore(std::string_view left, std::string_view right) {
    auto const isDigit = [](char character) {
        return character >= '0' && character <= '9';
    };
    auto const digitsOf = [&](std::string_view text) {
        return text.substr(
            0, static_cast<std::size_t>(std::find_if_not(text.begin(), text.end(), isDigit) - text.begin()));
    };
    while (!left.empty() && !right.empty()) {
        auto const leftDigits = digitsOf(left);
        auto const rightDigits = digitsOf(right);
        if (!leftDigits.empty() && !rightDigits.empty() && leftDigits != rightDigits) {
            return leftDigits.size() != rightDigits.size() ? leftDigits.size() < rightDigits.size()
                                                           : leftDigits < rightDigits;
        }
        if (left.front() != right.front()) {
            return left.front() < right.front();
        }
        left.remove_prefix(1);
        right.remove_prefix(1);
    }
    return left.size() < right.size();
}

/// Which points and values the filter lets through.
class Matches {
public:
    explicit Matches(RowListInput const& input)
        : points_(input.structure.points().size()),
          values_(input.structure.values().size()) {
        auto const& points = input.structure.points();
        auto const& values = input.structure.values();
        for (std::size_t index = 0; index < values.size(); ++index) {
            values_[index] = matches(input, values[index]);
            points_[values[index].point] = points_[values[index].point] || values_[index];
        }
        for (auto index = points.size(); index-- > 0;) {
            points_[index] = points_[index] || (points[index].isWatched && matches(input, points[index]));
            if (points_[index] && points[index].parent != inspect::NO_NODE) {
                points_[points[index].parent] = true;
            }
        }
    }
    bool hasPoint(std::uint32_t index) const { return points_[index]; }
    bool hasValue(std::uint32_t index) const { return values_[index]; }

private:
    std::vector<bool> points_;
    std::vector<bool> values_;
};

bool hasChildren(UnitStructure const& structure, std::uint32_t point) {
    return structure.points()[point].end > point + 1;
}

std::vector<Row> treeRows(RowListInput const& input) {
    std::vector<Row> rows;
    Matches const shown(input);
    auto const& points = input.structure.points();
    for (std::uint32_t index = 0; index < points.size();) {
        auto const& point = points[index];
        if (!shown.hasPoint(index) || !point.isWatched) {
            ++index;
            continue;
        }
        auto const isParent = hasChildren(input.structure, index);
        auto const isFolded = input.filter.isEmpty() && input.folds.isFolded(point, isParent);
        auto const depth = point.depth - 1;
        rows.push_back({true, index, depth, isParent || point.valueCount != 0, isFolded, point.svid});
        if (isFolded) {
            index = point.end;
            continue;
        }
        for (auto value = point.firstValue; value < point.firstValue + point.valueCount; ++value) {
            if (shown.hasValue(value)) {
                rows.push_back({false, value, depth + 1, false, false, input.structure.values()[value].svid});
            }
        }
        ++index;
    }
    return rows;
}

template <typename IsBefore>
void sortRows(std::vector<Row>& rows, IsBefore const& before) {
    std::stable_sort(rows.begin(), rows.end(),
                     [&](Row const& left, Row const& right) { return before(left.index, right.index); });
}

std::vector<Row> flatRows(RowListInput const& input) {
    std::vector<Row> rows;
    auto const& values = input.structure.values();
    for (std::uint32_t index = 0; index < values.size(); ++index) {
        if (matches(input, values[index])) {
            rows.push_back({false, index, 0, false, false, values[index].svid});
        }
    }
    if (input.order == SortOrder::State) {
        sortRows(rows, [&](std::uint32_t left, std::uint32_t right) {
            return rankOf(stateOf(input, values[left])) > rankOf(stateOf(input, values[right]));
        });
    } else if (input.order == SortOrder::Name) {
        auto const& points = input.structure.points();
        sortRows(rows, [&](std::uint32_t left, std::uint32_t right) {
            auto const& leftPath = points[values[left].point].path;
            auto const& rightPath = points[values[right].point].path;
            return leftPath != rightPath ? isBefore(leftPath, rightPath)
                                         : isBefore(values[left].name, values[right].name);
        });
    } else {
        auto const ageOf = [&](std::uint32_t value) {
            return input.tracker.sinceDelivery(values[value].pos, input.ticks)
                .value_or(std::numeric_limits<std::uint64_t>::max());
        };
        sortRows(rows, [&](std::uint32_t left, std::uint32_t right) { return ageOf(left) > ageOf(right); });
    }
    return rows;
}

} // namespace

char const* sortName(SortOrder order) {
    return sortNames.at(static_cast<std::size_t>(order));
}

bool Folds::isFolded(UnitPoint const& point, bool hasChildren) const {
    auto const set = folds_.find(point.svid);
    return set == folds_.end() ? !hasChildren : set->second;
}

std::vector<Row> rowsOf(RowListInput const& input) {
    return input.order == SortOrder::Tree ? treeRows(input) : flatRows(input);
}

} // namespace qel::watch
