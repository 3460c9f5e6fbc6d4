// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// A drawing of dots in characters.
#pragma once

#include "tools/qelshm/plot/Braille.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace qel::plot {

/// Characters of two by four dots each. Dots count from the upper left corner.
///
/// Threads: reentrant.
class BrailleCanvas {
public:
    static constexpr std::size_t dotsAcross = brailleDotsAcross; ///< of a character
    static constexpr std::size_t dotsDown = brailleDotsDown;     ///< of a character

    /// A character and the number of the curve that drew on it last.
    struct Glyph {
        std::string text;      ///< UTF-8; " " without a dot
        std::size_t curve = 0; ///< noCurve without a dot
    };
    static constexpr std::size_t noCurve = static_cast<std::size_t>(-1);

    BrailleCanvas(std::size_t width, std::size_t height);

    /// Draws a line between two dots; both must be on the canvas.
    void line(std::size_t curve, std::size_t fromX, std::size_t fromY, std::size_t toX, std::size_t toY);

    /// Writes a character over a dot's character.
    void mark(std::size_t curve, std::size_t x, std::size_t y, char letter);

    /// Draws letters instead of dots, for terminals that show only ASCII.
    /// @param letters by the number of the curve
    Glyph asciiGlyph(std::size_t column, std::size_t row, std::string const& letters) const;
    Glyph glyph(std::size_t column, std::size_t row) const;

    std::size_t width() const { return width_; }
    std::size_t height() const { return height_; }

private:
    struct Cell {
        std::uint8_t dots = 0;
        char letter = '\0';
        std::size_t curve = noCurve;
    };

    Cell& cellAt(std::size_t x, std::size_t y);
    void dot(std::size_t curve, std::size_t x, std::size_t y);

    std::size_t width_;
    std::size_t height_;
    std::vector<Cell> cells_; ///< row by row
};

} // namespace qel::plot
