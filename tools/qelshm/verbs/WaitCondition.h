// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// What a script waits for.
#pragma once

#include "tools/qelshm/verbs/PointFacts.h"

#include "domain/eStatus_Bits.h"
#include "inspect/image/Image.h"
#include "inspect/image/PointTree.h"
#include "inspect/naming/ValuePattern.h"

#include <cstdint>
#include <optional>
#include <stdexcept>
#include <string>
#include <variant>

namespace qel::tools {

/// A text is no condition. what() is one line for the user.
class ConditionError : public std::invalid_argument {
public:
    using std::invalid_argument::invalid_argument;
};

/// A condition on points or values:
///
/// | condition                       | is met by                                                             |
/// |---------------------------------|-----------------------------------------------------------------------|
/// | `unit1:state=alarm`             | a point in any state of the class alarm; `warning` likewise           |
/// | `unit1/**:state!=on`            | any of these points in another state than "On"                        |
/// | `unit1/inlet1:active-power>100` | a number, in the unit that is displayed: = != < <= > >=               |
/// | `unit1/inlet1:voltage=lost`     | the state of a value, by name, number or class                        |
/// | `active`                        | an active region                                                      |
/// | `structure`                     | points or values that have come or gone since the first look          |
///
/// A name may have wildcards: any of what it selects can meet the condition. The key "state" is the state of the point,
/// also if the point has a value of that name. A value without a number meets no comparison of numbers.
///
/// Threads: thread-safe.
class WaitCondition {
public:
    enum class Kind : std::uint8_t { Active, Structure, PointState, Value };

    /// What meets a condition on points or values.
    struct Met {
        PointFacts point;
        std::optional<ValueFacts> value; ///< none if it is the point's state
    };

    /// @throws ConditionError, inspect::PatternError
    explicit WaitCondition(std::string text);

    /// As it was typed.
    std::string const& text() const { return text_; }
    Kind kind() const { return kind_; }

    /// Finds the first point or value that meets the condition.
    /// @return none also for Active and Structure, which the caller has to look after
    std::optional<Met> metBy(inspect::Image const& image, inspect::PointTree const& tree) const;

    /// Whether the condition has a name, and the region has nothing of this name.
    bool isOfNothing(inspect::Image const& image, inspect::PointTree const& tree) const;

private:
    enum class Comparison : std::uint8_t { Equal, NotEqual, Less, LessOrEqual, Greater, GreaterOrEqual };
    enum class StateGroup : std::uint8_t { Alarm, Warning };
    using Wanted = std::variant<double, eStatus_Bits, StateGroup>;

    void readName(std::string const& name);
    void readWanted(std::string const& text);
    bool isState(eStatus_Bits state) const;
    bool isNumber(double number) const;
    bool holds(ValueFacts const& value) const;

    std::string text_;
    Kind kind_ = Kind::Active;
    std::optional<inspect::ValuePattern> pattern_; ///< none for Active and Structure
    Comparison comparison_ = Comparison::Equal;
    Wanted wanted_;
};

} // namespace qel::tools
