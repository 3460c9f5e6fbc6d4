// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// Plots as commands for gnuplot.
#pragma once

#include "tools/qelshm/plot/PlotData.h"

#include <cstddef>
#include <string>
#include <string_view>

namespace qel::plot {

/// The picture in pixels. Reentrant.
struct PictureSize {
    std::size_t width;
    std::size_t height;
};

/// The commands that draw a plot as SVG on standard output, with its data. Alarms are shaded red, warnings yellow;
/// limits are dashed lines. Reentrant.
std::string gnuplotScript(PlotData const& data, PictureSize const& size);

/// A text as gnuplot reads it: no command, whatever it holds. Reentrant.
std::string gnuplotText(std::string_view text);

} // namespace qel::plot
