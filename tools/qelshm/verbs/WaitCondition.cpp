// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tools/qelshm/verbs/WaitCondition.h"

#include "tools/common/Numbers.h"
#include "tools/qelshm/verbs/NameSelection.h"

#include "inspect/naming/StateClass.h"
#include "inspect/naming/StateWord.h"

#include <algorithm>
#include <array>
#include <string_view>
#include <utility>

namespace qel::tools {

namespace {

constexpr std::string_view active = "active";
constexpr std::string_view structure = "structure";
constexpr std::string_view stateKey = "state";
constexpr std::string_view alarmClass = "alarm";
constexpr std::string_view warningClass = "warning";
constexpr std::string_view operators = "=!<>";

std::string inQuotes(std::string_view text) {
    return '"' + std::string(text) + '"';
}

} // namespace

WaitCondition::WaitCondition(std::string text) : text_(std::move(text)) {
    if (text_ == active || text_ == structure) {
        kind_ = text_ == active ? Kind::Active : Kind::Structure;
        return;
    }
    // A "!" may stand in a wildcard, so the operator is the last one.
    auto const last = text_.find_last_of(operators);
    if (last == std::string::npos || last == 0) {
        throw ConditionError(inQuotes(text_) + " is no condition; conditions are like unit1:state=alarm, "
                                               "unit1/inlet1:active-power>100, active, structure");
    }
    auto const before = operators.find(text_[last - 1]);
    auto const first = before == std::string_view::npos ? last : last - 1;
    struct Operator {
        std::string_view text;
        Comparison comparison;
    };
    constexpr std::array<Operator, 7> known{{{"=", Comparison::Equal},
                                             {"==", Comparison::Equal},
                                             {"!=", Comparison::NotEqual},
                                             {"<", Comparison::Less},
                                             {"<=", Comparison::LessOrEqual},
                                             {">", Comparison::Greater},
                                             {">=", Comparison::GreaterOrEqual}}};
    auto const typed = std::string_view(text_).substr(first, last - first + 1);
    auto const* found = known.begin();
    while (found != known.end() && found->text != typed) {
        ++found;
    }
    if (found == known.end()) {
        throw ConditionError(inQuotes(typed) + " is no comparison; there are = != < <= > >=");
    }
    comparison_ = found->comparison;
    readName(text_.substr(0, first));
    readWanted(text_.substr(last + 1));
}

void WaitCondition::readName(std::string const& name) {
    auto const parts = partsOf(name);
    if (parts.key && inspect::nameWord(*parts.key) == stateKey) {
        kind_ = Kind::PointState;
        pattern_.emplace(parts.point);
        if (pattern_->hasKey()) {
            throw ConditionError(inQuotes(parts.point) +
                                 " is the sensor id of a value; give that of a point");
        }
        return;
    }
    kind_ = Kind::Value;
    pattern_.emplace(name);
    if (!pattern_->hasKey()) {
        throw ConditionError(inQuotes(name) + " names no value; write " + name + ":state, or " + name +
                             ":voltage for example");
    }
}

void WaitCondition::readWanted(std::string const& text) {
    auto const number = kind_ == Kind::Value ? parseNumber(text) : std::nullopt;
    if (number) {
        wanted_ = *number;
        return;
    }
    auto const word = inspect::nameWord(text);
    auto const state = inspect::parseState(text);
    if (word == alarmClass || word == warningClass) {
        wanted_ = word == alarmClass ? StateGroup::Alarm : StateGroup::Warning;
    } else if (state) {
        wanted_ = *state;
    } else {
        throw ConditionError(inQuotes(text) + " is no state" +
                             (kind_ == Kind::Value ? " and no number" : "") +
                             "; states are like alarm, warning, on, high-alarm, lost");
    }
    if (comparison_ != Comparison::Equal && comparison_ != Comparison::NotEqual) {
        throw ConditionError("states have no order: compare " + inQuotes(text) + " by = or !=");
    }
}

bool WaitCondition::isState(eStatus_Bits state) const {
    bool isSame = false;
    if (auto const* const group = std::get_if<StateGroup>(&wanted_)) {
        isSame = inspect::classOf(state) ==
                 (*group == StateGroup::Alarm ? inspect::StateClass::Alarm : inspect::StateClass::Warning);
    } else if (auto const* const wanted = std::get_if<eStatus_Bits>(&wanted_)) {
        isSame = state == *wanted;
    }
    return isSame == (comparison_ == Comparison::Equal);
}

bool WaitCondition::isNumber(double number) const {
    auto const wanted = std::get<double>(wanted_);
    switch (comparison_) {
    case Comparison::Equal:
        return number == wanted;
    case Comparison::NotEqual:
        return number != wanted;
    case Comparison::Less:
        return number < wanted;
    case Comparison::LessOrEqual:
        return number <= wanted;
    case Comparison::Greater:
        return number > wanted;
    case Comparison::GreaterOrEqual:
        return number >= wanted;
    }
    return false;
}

bool WaitCondition::holds(ValueFacts const& value) const {
    if (!std::holds_alternative<double>(wanted_)) {
        return isState(value.state);
    }
    return value.number && isNumber(*value.number);
}

std::optional<WaitCondition::Met> WaitCondition::metBy(inspect::Image const& image,
                                                       inspect::PointTree const& tree) const {
    if (!pattern_) {
        return std::nullopt;
    }
    for (auto const& node : tree.nodes()) {
        auto const& point = image.region().points[node.pos];
        if (!pattern_->matchesPoint(point.guid)) {
            continue;
        }
        if (kind_ == Kind::PointState) {
            if (isState(point.state)) {
                return Met{pointFacts(image, tree, node), std::nullopt};
            }
            continue;
        }
        for (auto const pos : tree.valuesOf(node)) {
            if (!pattern_->matches(point.guid, image.region().values[pos].key)) {
                continue;
            }
            if (auto const value = valueFacts(image, node, pos); holds(value)) {
                return Met{pointFacts(image, tree, node), value};
            }
        }
    }
    return std::nullopt;
}

bool WaitCondition::isOfNothing(inspect::Image const& image, inspect::PointTree const& tree) const {
    auto const& region = image.region();
    return pattern_ && std::none_of(tree.nodes().begin(), tree.nodes().end(), [&](auto const& node) {
               auto const point = region.points[node.pos].guid;
               auto const values = tree.valuesOf(node);
               return pattern_->matchesPoint(point) &&
                      (kind_ == Kind::PointState || std::any_of(values.begin(), values.end(), [&](auto pos) {
                           return pattern_->matches(point, region.values[pos].key);
                       }));
           });
}

} // namespace qel::tools
