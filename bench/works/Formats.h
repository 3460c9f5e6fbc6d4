// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// Ways to turn a value into text.
#pragma once

#include "bench/contenders/Contender.h"
#include "bench/contenders/Floor.h"
#include "bench/contenders/Library.h"
#include "bench/contenders/Literal.h"
#include "bench/literal/Format.h"
#include "bench/support/Plan.h"
#include "bench/works/Work.h"
#include "format/ValueFormatter.h"
#include "region/QelShmMVal.h"
#include "region/QelShmRecords.h"

#include <array>
#include <charconv>
#include <cstring>
#include <string>
#include <string_view>
#include <vector>

namespace bench {

/// Values to format; a side as the sweeps know it.
class FormatSide {
public:
    explicit FormatSide(Plan const& plan) {
        for (auto const& access : plan.valueAccesses()) {
            values_.push_back({access.number, 0, eStatus_NoError, shm::NO_POSITION, keyOf(access.svid), {}});
        }
    }
    std::vector<shm::record::QelShmMVal> const& operator*() const { return values_; }

private:
    std::vector<shm::record::QelShmMVal> values_;
};

/// What the formats of the keys come to, by the index of the key.
struct KeyText {
    int decimals;
    std::string_view unit;
};
constexpr std::array<KeyText, valueKeys.size()> keyTexts{{{1, " V"},
                                                          {2, " A"},
                                                          {2, " A"},
                                                          {3, ""},
                                                          {1, " VA"},
                                                          {1, " W"},
                                                          {1, " VAR"},
                                                          {2, " Hz"},
                                                          {1, " kVAh"},
                                                          {1, " kVARh"},
                                                          {1, " kWh"}}};

/// All three give texts of the same length; it is what a sweep adds up.
template <typename Way>
struct Format {
    using Sum = double;
    static constexpr auto accesses = &Order::values;

    static double run(std::vector<shm::record::QelShmMVal> const& values, Access const& access) {
        return static_cast<double>(Way::text(values[access.value], access).size());
    }

    static double expected(Access const& access) {
        return static_cast<double>(literal::str(keyOf(access.svid), access.number, " ").size());
    }
};

/// Digits by std::to_chars and a unit that is known beforehand.
struct FloorFormat : Floor, Format<FloorFormat> {
    static std::string text(shm::record::QelShmMVal const& value, Access const& access) {
        constexpr std::size_t unitRoom = 8;
        auto const& key = keyTexts[access.value % keyTexts.size()];
        std::array<char, 32> digits; // NOLINT(cppcoreguidelines-pro-type-member-init): written by to_chars
        auto* const end = std::to_chars(digits.data(), digits.data() + digits.size() - unitRoom, value.value,
                                        std::chars_format::fixed, key.decimals)
                              .ptr;
        std::memcpy(end, key.unit.data(), key.unit.size());
        return {digits.data(), end + key.unit.size()};
    }
};

struct LibraryFormat : Library, Format<LibraryFormat> {
    static std::string text(shm::record::QelShmMVal const& value, Access const& /*access*/) {
        return tav::ValueFormatter::str(shm::QelShmMVal(&value));
    }
};

struct LiteralFormat : Literal, Format<LiteralFormat> {
    static std::string text(shm::record::QelShmMVal const& value, Access const& /*access*/) {
        return literal::str(value.key, value.value, " ");
    }
};

} // namespace bench
