// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// Names with wildcards that select points and values.
///
/// | pattern                            | selects                                                          |
/// |------------------------------------|------------------------------------------------------------------|
/// | `unit1/inlet1`                     | the point, with all its values                                   |
/// | `unit1/inlet1:active-power`        | one value                                                        |
/// | `unit1/inlet1:0x13`, `...:19`      | the same value                                                   |
/// | `unit1/inlet1:*power`              | the point's values whose key's name ends so                      |
/// | `unit1/inlet*:current`             | a value of each inlet                                            |
/// | `unit1/*`                          | all points one level below                                       |
/// | `unit1/**`                         | `unit1` and all points below, at any level                       |
/// | `**:active-power`                  | a value of each point                                            |
/// | `0x0100FFFFFFFF0000`               | a point by its sensor id, with all its values                    |
/// | `0x0100FFFFFFFF0013`               | a value by its sensor id                                         |
///
/// A level or key takes the wildcards of glob(7): `*`, `?` and `[...]`. Upper and lower case are the same.
#pragma once

#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace qel::inspect {

/// A text is no pattern. what() is one line for the user.
class PatternError : public std::invalid_argument {
public:
    using std::invalid_argument::invalid_argument;
};

/// A pattern, read once.
///
/// Threads: thread-safe.
class ValuePattern {
public:
    /// @throws PatternError if no point or value can have such a name
    explicit ValuePattern(std::string_view text);

    /// Whether the pattern has no wildcards, so it selects one point or one value at most.
    bool isLiteral() const { return levels_.empty() && keyPattern_.empty(); }

    /// Whether the pattern speaks of values, not of whole points.
    bool hasKey() const { return key_.has_value() || !keyPattern_.empty(); }

    /// Whether a point is selected, or may have a value that is.
    /// @param point its id; a key in it is ignored
    bool matchesPoint(long long point) const;

    /// Whether a value is selected, by itself or with its point.
    /// @param point id of the value's point; a key in it is ignored
    bool matches(long long point, unsigned short key) const;

private:
    std::optional<long long> point_;    ///< without wildcards
    std::vector<std::string> levels_;   ///< with wildcards; empty if point_ is set
    std::optional<unsigned short> key_; ///< without wildcards
    std::string keyPattern_;            ///< with wildcards; "" if there is none
};

/// Several patterns. Without any, everything is selected.
using ValuePatterns = std::vector<ValuePattern>;

/// Whether a value is selected, by itself or with its point. Reentrant.
/// @param point id of the value's point; a key in it is ignored
bool selectsValue(ValuePatterns const& patterns, long long point, unsigned short key);

/// Whether a point is selected as a whole. Reentrant.
/// @param point its id; a key in it is ignored
bool selectsPoint(ValuePatterns const& patterns, long long point);

/// What is wrong with a text as a pattern: one line for the user, "" for nothing. Reentrant.
std::string patternProblem(std::string const& text);

} // namespace qel::inspect
