// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#pragma once

#include "domain/eStatus_Bits.h"

#include <cstdint>
#include <string>
#include <utility>

namespace measval {

enum MeasureValueType { Bool = 1, Integer, Double, String };

std::string mvtToStr(MeasureValueType type);

// Every number is a double. The order and the sizes of the members are not those of the stand-in.
class MeasureValue {
public:
    struct Number {
        double value;
        MeasureValueType type;
    };

    MeasureValue(double number, std::uint64_t time, eStatus_Bits state)
        : state_(state),
          time_(time),
          number_(number) {}
    MeasureValue(long long number, std::uint64_t time, eStatus_Bits state)
        : MeasureValue(static_cast<double>(number), time, state) {}
    MeasureValue(bool flag, std::uint64_t time, eStatus_Bits state)
        : MeasureValue(flag ? 1.0 : 0.0, time, state) {}
    MeasureValue(std::string text, std::uint64_t time, eStatus_Bits state)
        : state_(state),
          time_(time),
          text_(std::move(text)),
          type_(String) {}
    virtual ~MeasureValue() = default;

    std::uint64_t timestamp() const { return time_; }
    eStatus_Bits state() const { return state_; }
    virtual Number toDouble() const { return {number_, type_}; }

private:
    eStatus_Bits state_;
    std::uint64_t time_;
    double number_ = 0;
    std::string text_;
    MeasureValueType type_ = Double;
};

} // namespace measval
