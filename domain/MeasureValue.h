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

/// Measured values as the hardware side delivers them.
namespace measval {

/// What a MeasureValue holds.
enum MeasureValueType : std::uint8_t {
    Undefined = 0, ///< nothing; no MeasureValue has this type
    Bool = 1,      ///< true or false
    Integer = 2,   ///< a signed 64-bit number
    Double = 3,    ///< an IEEE 754 double
    String = 4,    ///< text
};

/// Names a type.
///
/// Threads: reentrant.
/// @param type any number
/// @return "Undefined", "Bool", "Integer", "Double" or "String"; "Unknown" for any other number
std::string mvtToStr(MeasureValueType type);

/// A number or text, with its time and its state. Immutable.
///
/// The timestamp is stored and passed on unchanged. This system uses ms since 1970 UTC.
///
/// Threads: thread-safe.
class MeasureValue {
public:
    /// Result of a conversion.
    struct DoubleResult {
        MeasureValueType type; ///< Double, or the value's own type when it does not convert
        double value;          ///< the number, 0 when it does not convert
    };

    /// @param value     the number
    /// @param timestamp when it was measured
    /// @param state     any state
    MeasureValue(double value, std::uint64_t timestamp, eStatus_Bits state)
        : value_(value),
          timestamp_(timestamp),
          state_(state) {}

    /// @copydoc MeasureValue(double,std::uint64_t,eStatus_Bits)
    MeasureValue(long long value, std::uint64_t timestamp, eStatus_Bits state)
        : value_(value),
          timestamp_(timestamp),
          state_(state) {}

    /// @param value     converts to 1 or 0
    /// @param timestamp when it was measured
    /// @param state     any state
    MeasureValue(bool value, std::uint64_t timestamp, eStatus_Bits state)
        : value_(value),
          timestamp_(timestamp),
          state_(state) {}

    /// @param value     text, which does not convert to a number
    /// @param timestamp when it was measured
    /// @param state     any state
    MeasureValue(std::string value, std::uint64_t timestamp, eStatus_Bits state)
        : value_(std::move(value)),
          timestamp_(timestamp),
          state_(state) {}

    /// A literal is text. Without this overload it would convert to bool.
    /// @param value     text that ends with a zero byte; copied
    /// @param timestamp when it was measured
    /// @param state     any state
    MeasureValue(char const* value, std::uint64_t timestamp, eStatus_Bits state)
        : MeasureValue(std::string(value), timestamp, state) {}

    /// @return the time as it was given
    std::uint64_t timestamp() const { return timestamp_; }

    /// @return the state as it was given
    eStatus_Bits state() const { return state_; }

    /// @return what the value holds, never Undefined
    MeasureValueType type() const;

    /// Converts to a number: true is 1, an integer becomes the nearest double. Text does not convert.
    /// @return the number, or the type that does not convert
    DoubleResult toDouble() const;

private:
    std::variant<double, long long, bool, std::string> value_;
    std::uint64_t timestamp_;
    eStatus_Bits state_;
};

} // namespace measval
