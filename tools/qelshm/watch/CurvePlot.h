// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// Several histories in one graph.
#pragma once

#include "tools/qelshm/watch/GraphScale.h"
#include "tools/qelshm/watch/History.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace qel::watch {

/// A history to draw. Reentrant.
struct Curve {
    History const* history; ///< not null
    unsigned short key;     ///< curves of the same key have one scale
};

/// A character of a plot. Reentrant.
struct PlotCell {
    std::string glyph; ///< " " if no curve passes
    std::size_t curve; ///< index of the curve that passes; the first one if there are several
};

/// A drawing of several histories. Reentrant.
struct CurvePlot {
    std::vector<std::vector<PlotCell>> lines; ///< from the top, each as wide as requested
    std::vector<GraphScale> scales;           ///< of each curve; see scaleAround()
};

/// How a plot tells its curves from each other.
enum class PlotGlyphs : std::uint8_t {
    Dots,    ///< braille patterns, for colours; UTF-8
    Letters, ///< "a" for the first curve, "b" for the second
};

/// Draws each curve through the last numbers of its buckets, the newest at the right. Reentrant.
/// @param newest number of the bucket at the right
CurvePlot plotOf(std::vector<Curve> const& curves, std::uint64_t newest, std::size_t width,
                 std::size_t height, PlotGlyphs glyphs);

} // namespace qel::watch
