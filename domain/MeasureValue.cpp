#include "domain/MeasureValue.h"

#include <array>
#include <utility>

namespace measval {

namespace {

// In the order of the variant's alternatives.
constexpr std::array<MeasureValueType, 4> typeOfAlternative{Double, Integer, Bool, String};

} // namespace

std::string mvtToStr(MeasureValueType type) {
    switch (type) {
    case Undefined:
        return "Undefined";
    case Bool:
        return "Bool";
    case Integer:
        return "Integer";
    case Double:
        return "Double";
    case String:
        return "String";
    }
    return "Unknown";
}

MeasureValue::MeasureValue(double value, std::uint64_t timestamp, eStatus_Bits state)
    : value_(value),
      timestamp_(timestamp),
      state_(state) {}

MeasureValue::MeasureValue(long long value, std::uint64_t timestamp, eStatus_Bits state)
    : value_(value),
      timestamp_(timestamp),
      state_(state) {}

MeasureValue::MeasureValue(bool value, std::uint64_t timestamp, eStatus_Bits state)
    : value_(value),
      timestamp_(timestamp),
      state_(state) {}

MeasureValue::MeasureValue(std::string value, std::uint64_t timestamp, eStatus_Bits state)
    : value_(std::move(value)),
      timestamp_(timestamp),
      state_(state) {}

MeasureValue::MeasureValue(char const* value, std::uint64_t timestamp, eStatus_Bits state)
    : MeasureValue(std::string(value), timestamp, state) {}

MeasureValueType MeasureValue::type() const {
    return typeOfAlternative.at(value_.index());
}

MeasureValue::DoubleResult MeasureValue::toDouble() const {
    if (auto const* number = std::get_if<double>(&value_)) {
        return {Double, *number};
    }
    if (auto const* integer = std::get_if<long long>(&value_)) {
        return {Double, static_cast<double>(*integer)};
    }
    if (auto const* flag = std::get_if<bool>(&value_)) {
        return {Double, *flag ? 1.0 : 0.0};
    }
    return {type(), 0.0};
}

} // namespace measval
