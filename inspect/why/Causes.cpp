// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "inspect/why/Causes.h"

#include "inspect/naming/PointPath.h"
#include "inspect/why/FoldedStates.h"

#include "domain/SensorIdentifier.h"
#include "domain/SensorType.h"
#include "format/ValueFormatter.h"
#include "region/QelShmMVal.h"
#include "states/StateRules.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <utility>

namespace qel::inspect {

namespace {

struct RuleName {
    char const* code;
    char const* text;
};

/// By rule.
constexpr std::array<RuleName, 7> ruleNames{{
    {"value-alarm", "alarm of a value"},
    {"value-warning", "warning of a value"},
    {"own-state", "its own state"},
    {"switched-off-circuit", "switched off, counts as an alarm for its parent"},
    {"child-alarm", "alarm of a child"},
    {"child-warning", "warning of a child"},
    {"child-update", "update of a child's device"},
}};
static_assert(ruleNames.size() == static_cast<std::size_t>(CauseRule::ChildUpdate) + 1);

constexpr char const* globalPath = "global";

std::optional<CauseRule> valueRule(eStatus_Bits state) {
    if (shm::valueAlarms.has(state)) {
        return CauseRule::ValueAlarm;
    }
    return shm::valueWarnings.has(state) ? std::optional(CauseRule::ValueWarning) : std::nullopt;
}

std::optional<CauseRule> childRule(eStatus_Bits state) {
    if (shm::deviceUpdates.has(state)) {
        return CauseRule::ChildUpdate;
    }
    if (shm::childAlarms.has(state)) {
        return CauseRule::ChildAlarm;
    }
    return shm::childWarnings.has(state) ? std::optional(CauseRule::ChildWarning) : std::nullopt;
}

/// Whether a level's state is one that this rule leads to. Not for own states, see findIn().
bool shows(eStatus_Bits state, CauseRule rule) {
    auto const isAny = [state](eStatus_Bits shm::Escalation::*code) {
        return std::any_of(shm::escalations.begin(), shm::escalations.end(),
                           [&](shm::Escalation const& escalation) { return escalation.*code == state; });
    };
    switch (rule) {
    case CauseRule::ValueAlarm:
        return isAny(&shm::Escalation::alarm);
    case CauseRule::ValueWarning:
        return isAny(&shm::Escalation::warning);
    case CauseRule::ChildAlarm:
        return state == eStatus_ChildAlarm || state == eStatus_OffChildAlarm;
    case CauseRule::ChildWarning:
        return state == eStatus_ChildWarning || state == eStatus_OffChildWarning;
    case CauseRule::ChildUpdate:
        return shm::deviceUpdates.has(state);
    case CauseRule::OwnState:
    case CauseRule::SwitchedOffCircuit:
        break;
    }
    return false;
}

class CauseFinder {
public:
    CauseFinder(Image const& image, PointTree const& tree, std::uint64_t now)
        : image_(image),
          tree_(tree),
          now_(now),
          folded_(image, tree) {}

    Causes ofAll() {
        auto const state = folded_.global();
        findBelow(NO_NODE, {shm::NO_POSITION, shm::ROOT_SVID, globalPath, state, {}, false});
        return {image_.root().state, state, std::move(causes_)};
    }

    Causes of(std::uint32_t node) {
        isPointAsked_ = true;
        findIn(node);
        return {pointAt(node).state, folded(node).state, std::move(causes_)};
    }

private:
    shm::QelShmMP const& pointAt(std::uint32_t node) const {
        return image_.region().points[tree_.nodes().at(node).pos];
    }

    FoldedState const& folded(std::uint32_t node) const { return folded_.nodes().at(node); }

    CauseStep stepAt(std::uint32_t node) const {
        auto const& point = pointAt(node);
        return {tree_.nodes()[node].pos, point.guid, pointPath(point.guid), folded(node).state, {}, false};
    }

    /// The rule by which a point's own state is a cause, if it is one.
    std::optional<CauseRule> ownRule(std::uint32_t node, eStatus_Bits own) const {
        if (above_.empty() && isPointAsked_) {
            return own == eStatus_On ? std::nullopt : std::optional(CauseRule::OwnState);
        }
        if (childRule(own)) {
            return CauseRule::OwnState;
        }
        bool const isOff = own == eStatus_Off && shm::isCircuit(pointAt(node).guid);
        return isOff ? std::optional(CauseRule::SwitchedOffCircuit) : std::nullopt;
    }

    void findIn(std::uint32_t node) {
        auto const& point = pointAt(node);
        auto step = stepAt(node);
        auto const own = shm::ownPart(point.state);
        if (auto const rule = ownRule(node, own)) {
            step.rule = *rule;
            // A circuit whose state is more than "Off" reports that state instead.
            step.isShown =
                *rule == CauseRule::SwitchedOffCircuit ? step.state == own : shm::ownPart(step.state) == own;
            add(step, {}, {}, own, point.at);
        }
        for (auto const pos : tree_.valuesOf(tree_.nodes()[node])) {
            auto const& value = image_.region().values[pos];
            if (auto const rule = valueRule(value.state)) {
                step.rule = *rule;
                step.isShown = shows(step.state, *rule);
                add(step, value.key, tav::ValueFormatter::str(shm::QelShmMVal(&value)), value.state,
                    value.at);
            }
        }
        findBelow(node, std::move(step));
    }

    /// There are causes in a child if and only if it reports trouble.
    void findBelow(std::uint32_t node, CauseStep step) {
        for (auto const child : tree_.childrenOf(node)) {
            if (auto const rule = childRule(folded(child).reported)) {
                step.rule = *rule;
                step.isShown = shows(step.state, *rule);
                above_.push_back(step);
                findIn(child);
                above_.pop_back();
            }
        }
    }

    void add(CauseStep const& step, std::optional<unsigned short> key, std::string valueText,
             eStatus_Bits state, std::uint64_t at) {
        std::optional<std::chrono::milliseconds> age;
        if (at != 0) {
            // The difference of unsigned times wraps and does not overflow.
            age = std::chrono::milliseconds(static_cast<std::int64_t>(now_ - at));
        }
        std::vector<CauseStep> chain{step};
        chain.insert(chain.end(), above_.rbegin(), above_.rend());
        causes_.push_back(
            {step.svid, step.path, key, std::move(valueText), state, at, age, std::move(chain)});
    }

    Image const& image_;
    PointTree const& tree_;
    std::uint64_t now_;
    FoldedStates folded_;
    bool isPointAsked_ = false;    // the question is about a point, not about the root
    std::vector<CauseStep> above_; // the levels above the current point, highest first
    std::vector<Cause> causes_;
};

RuleName const& nameOf(CauseRule rule) {
    return ruleNames.at(static_cast<std::size_t>(rule));
}

} // namespace

char const* ruleCode(CauseRule rule) {
    return nameOf(rule).code;
}

char const* ruleText(CauseRule rule) {
    return nameOf(rule).text;
}

Causes globalCauses(Image const& image, PointTree const& tree, std::uint64_t now) {
    return CauseFinder(image, tree, now).ofAll();
}

Causes pointCauses(Image const& image, PointTree const& tree, std::uint32_t node, std::uint64_t now) {
    return CauseFinder(image, tree, now).of(node);
}

} // namespace qel::inspect
