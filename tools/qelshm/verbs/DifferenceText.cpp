// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tools/qelshm/verbs/DifferenceText.h"

#include "tools/qelshm/terminal/ExactText.h"

#include "format/StateName.h"
#include "format/ValueFormatter.h"

#include <cmath>
#include <cstdint>
#include <type_traits>
#include <variant>

namespace qel::tools {

using inspect::Difference;
using inspect::DifferenceSide;

namespace {

template <typename Side, typename Wanted>
constexpr bool is = std::is_same_v<std::decay_t<Side>, Wanted>;

bool isSlot(inspect::DifferenceKind kind) {
    return kind == inspect::DifferenceKind::PointAdded || kind == inspect::DifferenceKind::PointRemoved ||
           kind == inspect::DifferenceKind::PointSlot;
}

Json sideJson(DifferenceSide const& side) {
    return std::visit(
        [](auto const& content) -> Json {
            using Side = decltype(content);
            if constexpr (is<Side, std::monostate>) {
                return nullptr;
            } else if constexpr (is<Side, double>) {
                return std::isfinite(content) ? Json(content) : Json();
            } else if constexpr (is<Side, eStatus_Bits>) {
                return static_cast<std::int32_t>(content);
            } else {
                return content;
            }
        },
        side);
}

} // namespace

std::string sideText(DifferenceSide const& side, Difference const& difference) {
    return std::visit(
        [&](auto const& content) -> std::string {
            using Side = decltype(content);
            if constexpr (is<Side, std::monostate>) {
                return "-";
            } else if constexpr (is<Side, bool>) {
                return content ? "yes" : "no";
            } else if constexpr (is<Side, double>) {
                return tav::ValueFormatter::str(difference.key.value_or(0), content, " ");
            } else if constexpr (is<Side, eStatus_Bits>) {
                return std::string(shm::stateName(content));
            } else if constexpr (is<Side, std::string>) {
                return content.empty() ? "top level" : content;
            } else {
                return (isSlot(difference.kind) ? "slot " : "") + std::to_string(content);
            }
        },
        side);
}

std::pair<std::string, std::string> sideTexts(Difference const& difference) {
    std::pair<std::string, std::string> texts{sideText(difference.before, difference),
                                              sideText(difference.after, difference)};
    auto const* const before = std::get_if<double>(&difference.before);
    auto const* const after = std::get_if<double>(&difference.after);
    if (before != nullptr && after != nullptr && texts.first == texts.second) {
        texts = {exactText(*before), exactText(*after)};
    }
    return texts;
}

Style sideStyle(DifferenceSide const& side) {
    auto const* const state = std::get_if<eStatus_Bits>(&side);
    return state != nullptr ? stateStyle(*state) : Style::Plain;
}

Json jsonSide(DifferenceSide const& side, Difference const& difference) {
    return {{"value", sideJson(side)}, {"text", sideText(side, difference)}};
}

} // namespace qel::tools
