// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// One measured value on its way from the hardware side into the data plane.
#pragma once

#include "domain/eStatus_Bits.h"

#include <cstdint>
#include <string>
#include <utility>
#include <variant>

namespace measval {

enum MeasureValueType : std::uint8_t { Undefined = 0, Bool = 1, Integer = 2, Double = 3, String = 4 };

/// The type's name in words, "Unknown" for a number without one. Any thread.
std::string mvtToStr(MeasureValueType type);

/// A number or text with the time it was measured and its state. Immutable; any thread.
class MeasureValue {
public:
    /// Result of a conversion: type Double and the number, or the value's own type and 0 where it has no number.
    struct DoubleResult {
        MeasureValueType type;
        double value;
    };

    /// @param timestamp stored and handed on unchanged; the unit is the caller's (this system uses ms since 1970 UTC)
    MeasureValue(double value, std::uint64_t timestamp, eStatus_Bits state)
        : value_(value),
          timestamp_(timestamp),
          state_(state) {}
    MeasureValue(long long value, std::uint64_t timestamp, eStatus_Bits state)
        : value_(value),
          timestamp_(timestamp),
          state_(state) {}
    MeasureValue(bool value, std::uint64_t timestamp, eStatus_Bits state)
        : value_(value),
          timestamp_(timestamp),
          state_(state) {}
    MeasureValue(std::string value, std::uint64_t timestamp, eStatus_Bits state)
        : value_(std::move(value)),
          timestamp_(timestamp),
          state_(state) {}
    /// A literal is text; without this overload it would convert to bool.
    MeasureValue(char const* value, std::uint64_t timestamp, eStatus_Bits state)
        : MeasureValue(std::string(value), timestamp, state) {}

    std::uint64_t timestamp() const { return timestamp_; }
    eStatus_Bits state() const { return state_; }
    MeasureValueType type() const;

    /// Numbers convert (true is 1, integers round to the nearest double); text does not.
    DoubleResult toDouble() const;

private:
    std::variant<double, long long, bool, std::string> value_;
    std::uint64_t timestamp_;
    eStatus_Bits state_;
};

} // namespace measval
