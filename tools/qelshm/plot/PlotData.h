// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// What a plot shows.
#pragma once

#include "tools/qelshm/plot/Series.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>
#include <utility>
#include <vector>

namespace qel::plot {

/// A value in a plot. Reentrant.
struct Curve {
    std::string name; ///< "unit1/inlet1:active-power"
    std::string unit; ///< "" for none
    unsigned short key;
    Series series;
};

/// A line across the plot. Reentrant.
struct Limit {
    double number;
    std::string label; ///< any text; "" for none
};

/// Curves over one time; those of a unit share an axis. Reentrant.
struct PlotData {
    std::string title;   ///< any text
    std::uint64_t from;  ///< ms since 1970 UTC
    std::uint64_t until; ///< ms since 1970 UTC
    std::vector<Curve> curves;
    std::vector<Limit> limits; ///< in the unit of all curves
};

/// The curves of one unit. Reentrant.
struct Panel {
    std::string unit;
    std::vector<std::size_t> curves; ///< indexes into PlotData::curves
};

/// In the order of the curves. Reentrant.
inline std::vector<Panel> panelsOf(PlotData const& data) {
    std::vector<Panel> panels;
    for (std::size_t index = 0; index < data.curves.size(); ++index) {
        auto const& unit = data.curves[index].unit;
        auto found = std::find_if(panels.begin(), panels.end(),
                                  [&](Panel const& panel) { return panel.unit == unit; });
        if (found == panels.end()) {
            found = panels.insert(panels.end(), {unit, {}});
        }
        found->curves.push_back(index);
    }
    return panels;
}

/// The least and the greatest number that a panel shows, its limits included; 0 and 1 without any. Reentrant.
inline std::pair<double, double> rangeOf(PlotData const& data, Panel const& panel) {
    std::vector<double> numbers;
    for (auto const index : panel.curves) {
        auto const& series = data.curves[index].series;
        if (!series.isEmpty()) {
            numbers.insert(numbers.end(), {series.least(), series.greatest()});
        }
    }
    for (auto const& limit : data.limits) {
        numbers.push_back(limit.number);
    }
    if (numbers.empty()) {
        return {0.0, 1.0};
    }
    auto const [least, greatest] = std::minmax_element(numbers.begin(), numbers.end());
    return {*least, *greatest};
}

} // namespace qel::plot
