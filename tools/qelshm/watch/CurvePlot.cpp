// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tools/qelshm/watch/CurvePlot.h"

#include "tools/qelshm/plot/Braille.h"
#include "tools/qelshm/watch/Graph.h"

#include <algorithm>
#include <cmath>

namespace qel::watch {

namespace {

constexpr std::size_t dotsPerLine = plot::brailleDotsDown;

GraphScale scaleOf(std::vector<Curve> const& curves, unsigned short key, std::uint64_t newest,
                   std::size_t width) {
    Bucket range;
    for (auto const& curve : curves) {
        if (curve.key == key) {
            auto const own = rangeOf(*curve.history, newest, width);
            range = {std::fmin(range.min, own.min), std::fmax(range.max, own.max), own.last};
        }
    }
    return std::isnan(range.min)
               ? GraphScale()
               : scaleAround(static_cast<double>(range.min), static_cast<double>(range.max));
}

/// A grid in which curves leave their dots.
class Drawing {
public:
    Drawing(std::size_t width, std::size_t height) : width_(width), height_(height), cells_(width * height) {}

    /// Draws a vertical stroke; a cell that another curve passes stays as it is.
    void stroke(std::size_t curve, std::size_t column, std::size_t from, std::size_t to, unsigned side) {
        for (auto dot = std::min(from, to); dot <= std::max(from, to); ++dot) {
            auto const line = height_ - 1 - dot / dotsPerLine;
            auto& cell = cells_.at(line * width_ + column);
            if (cell.pattern == 0 || cell.curve == curve) {
                cell.curve = curve;
                cell.pattern = static_cast<std::uint8_t>(
                    cell.pattern | plot::brailleDot(dotsPerLine - 1 - dot % dotsPerLine, side));
            }
        }
    }

    std::vector<std::vector<PlotCell>> lines(PlotGlyphs glyphs) const {
        std::vector<std::vector<PlotCell>> all(height_);
        for (std::size_t index = 0; index < cells_.size(); ++index) {
            auto const& cell = cells_[index];
            auto glyph = std::string(" ");
            if (cell.pattern != 0) {
                glyph = glyphs == PlotGlyphs::Dots ? plot::brailleText(cell.pattern)
                                                   : std::string(1, static_cast<char>('a' + cell.curve));
            }
            all[index / width_].push_back({std::move(glyph), cell.curve});
        }
        return all;
    }

private:
    struct Cell {
        std::uint8_t pattern = 0; ///< bits of brailleDot()
        std::size_t curve = 0;
    };

    std::size_t width_;
    std::size_t height_;
    std::vector<Cell> cells_;
};

} // namespace

CurvePlot plotOf(std::vector<Curve> const& curves, std::uint64_t newest, std::size_t width,
                 std::size_t height, PlotGlyphs glyphs) {
    CurvePlot plot;
    Drawing drawing(width, height);
    for (std::size_t index = 0; index < curves.size(); ++index) {
        auto const& curve = curves[index];
        auto const scale = scaleOf(curves, curve.key, newest, width);
        std::size_t before = 0;
        bool hasBefore = false;
        for (std::size_t column = 0; column < width; ++column) {
            auto const back = width - 1 - column;
            auto const bucket = back <= newest ? curve.history->at(newest - back) : Bucket();
            if (bucket.isEmpty()) {
                hasBefore = false;
                continue;
            }
            auto const part = scale.partOf(static_cast<double>(bucket.last));
            auto const dot =
                static_cast<std::size_t>(std::lround(part * static_cast<double>(height * dotsPerLine - 1)));
            drawing.stroke(index, column, hasBefore ? before : dot, dot, 0);
            drawing.stroke(index, column, dot, dot, 1);
            before = dot;
            hasBefore = true;
        }
        plot.scales.push_back(scale);
    }
    plot.lines = drawing.lines(glyphs);
    return plot;
}

} // namespace qel::watch
