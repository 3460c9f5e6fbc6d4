// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// How characters look on the screen, without the terminal library.
#pragma once

#include "tools/qelshm/terminal/Style.h"

#include <cstddef>
#include <cstdint>

namespace qel::watch {

/// Attributes of characters; they can be combined. Reentrant.
struct Emphasis {
    bool isBold = false;
    bool isDim = false;
    bool isReverse = false;
    bool isUnderlined = false;
};

inline constexpr Emphasis plain{};
inline constexpr Emphasis bold{true, false, false, false};
inline constexpr Emphasis dim{false, true, false, false};
inline constexpr Emphasis reverse{false, false, true, false};
inline constexpr Emphasis boldReverse{true, false, true, false};
inline constexpr Emphasis underlined{false, false, false, true};

/// Attributes and colour. Reentrant.
struct Ink {
    // NOLINTNEXTLINE(google-explicit-constructor): attributes without a colour are an ink
    constexpr Ink(Emphasis of = plain, tools::Style style = tools::Style::Plain)
        : emphasis(of),
          colour(static_cast<short>(style)) {
        emphasis.isDim = emphasis.isDim || style == tools::Style::Faint;
    }

    /// The colour of a curve in the graph; the colours repeat.
    static constexpr Ink ofCurve(std::size_t index) {
        Ink ink;
        ink.colour = static_cast<short>(firstCurve + static_cast<int>(index % curves));
        return ink;
    }

    static constexpr std::size_t curves = 4;
    static constexpr int firstCurve = static_cast<int>(tools::Style::Busy) + 1;

    Emphasis emphasis;
    short colour; ///< numbered like the styles, then the curves
};

} // namespace qel::watch
