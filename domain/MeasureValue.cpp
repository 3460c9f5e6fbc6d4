// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "domain/MeasureValue.h"

#include <array>

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
