// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tools/qelshm/plot/BrailleCanvas.h"

#include <algorithm>
#include <array>
#include <cstdlib>

namespace qel::plot {

BrailleCanvas::BrailleCanvas(std::size_t width, std::size_t height)
    : width_(width),
      height_(height),
      cells_(width * height) {}

void BrailleCanvas::line(std::size_t curve, std::size_t fromX, std::size_t fromY, std::size_t toX,
                         std::size_t toY) {
    auto const difference = [](std::size_t from, std::size_t to) {
        return static_cast<std::ptrdiff_t>(to) - static_cast<std::ptrdiff_t>(from);
    };
    auto const across = difference(fromX, toX);
    auto const down = difference(fromY, toY);
    auto const steps = std::max(std::abs(across), std::abs(down));
    for (std::ptrdiff_t step = 0; step <= steps; ++step) {
        auto const part = [&](std::ptrdiff_t length) { // rounded
            return steps == 0 ? 0 : (2 * length * step + (length < 0 ? -steps : steps)) / (2 * steps);
        };
        dot(curve, static_cast<std::size_t>(static_cast<std::ptrdiff_t>(fromX) + part(across)),
            static_cast<std::size_t>(static_cast<std::ptrdiff_t>(fromY) + part(down)));
    }
}

void BrailleCanvas::mark(std::size_t curve, std::size_t x, std::size_t y, char letter) {
    auto& cell = cellAt(x, y);
    cell.letter = letter;
    cell.curve = curve;
}

BrailleCanvas::Glyph BrailleCanvas::glyph(std::size_t column, std::size_t row) const {
    auto const& cell = cells_.at(row * width_ + column);
    if (cell.letter != '\0') {
        return {std::string(1, cell.letter), cell.curve};
    }
    return {cell.dots == 0 ? " " : brailleText(cell.dots), cell.curve};
}

BrailleCanvas::Glyph BrailleCanvas::asciiGlyph(std::size_t column, std::size_t row,
                                               std::string const& letters) const {
    auto const& cell = cells_.at(row * width_ + column);
    auto const letter = cell.curve < letters.size() ? letters[cell.curve] : '*';
    return {std::string(1, cell.curve == noCurve ? ' ' : letter), cell.curve};
}

BrailleCanvas::Cell& BrailleCanvas::cellAt(std::size_t x, std::size_t y) {
    return cells_.at(y / dotsDown * width_ + x / dotsAcross);
}

void BrailleCanvas::dot(std::size_t curve, std::size_t x, std::size_t y) {
    auto& cell = cellAt(x, y);
    cell.dots = static_cast<std::uint8_t>(cell.dots | brailleDot(y % dotsDown, x % dotsAcross));
    cell.curve = curve;
}

} // namespace qel::plot
