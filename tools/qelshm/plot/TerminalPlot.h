// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// Plots in characters.
#pragma once

#include "tools/qelshm/plot/PlotData.h"

#include <cstddef>
#include <string>

namespace qel::plot {

/// Where a plot is shown. Reentrant.
struct TerminalSize {
    std::size_t width;  ///< columns
    std::size_t height; ///< lines
    bool isColoured;
    bool isAscii; ///< shows only ASCII
};

constexpr std::size_t leastPlotWidth = 40;
constexpr std::size_t leastPlotHeight = 10;

/// The columns of dots that a terminal of this width has for curves, or more. Reentrant.
std::size_t dotColumns(std::size_t terminalWidth);

/// Draws curves as lines of dots with axes, times, a row of warnings (~) and alarms (!) for each curve that has some,
/// and a legend. Several curves have a letter each. Reentrant.
/// @param terminal a smaller one than leastPlotWidth and leastPlotHeight counts as that large
/// @return lines with their ends; more of them than the terminal has if there are many curves
std::string terminalPlot(PlotData const& data, TerminalSize const& terminal);

} // namespace qel::plot
