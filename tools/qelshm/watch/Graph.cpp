// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tools/qelshm/watch/Graph.h"

#include <algorithm>
#include <cmath>

namespace qel::watch {

namespace {

constexpr std::size_t stepsPerLine = std::tuple_size_v<BarGlyphs>;

/// Height of a bar in eighths of a line, at least 1. A value that never changes stands half-way up.
std::size_t stepsOf(float number, Bucket const& range, std::size_t height) {
    auto const most = height * stepsPerLine;
    auto const span = static_cast<double>(range.max) - static_cast<double>(range.min);
    if (span <= 0.0) {
        return most / 2;
    }
    auto const part = (static_cast<double>(number) - static_cast<double>(range.min)) / span;
    return 1 + static_cast<std::size_t>(std::lround(part * static_cast<double>(most - 1)));
}

} // namespace

Graph graphOf(History const& history, std::uint64_t newest, std::size_t width, std::size_t height,
              BarGlyphs const& glyphs) {
    Graph graph;
    std::vector<Bucket> buckets;
    for (auto back = width; back-- > 0;) {
        buckets.push_back(back <= newest ? history.at(newest - back) : Bucket());
        auto const& bucket = buckets.back();
        if (!bucket.isEmpty()) {
            graph.range = {std::fmin(graph.range.min, bucket.min), std::fmax(graph.range.max, bucket.max),
                           bucket.last};
        }
    }
    for (std::size_t line = height; line-- > 0;) {
        auto const floor = line * stepsPerLine;
        std::string text;
        for (auto const& bucket : buckets) {
            auto const steps = bucket.isEmpty() ? 0 : stepsOf(bucket.last, graph.range, height);
            text += steps <= floor ? " " : glyphs.at(std::min(steps - floor, stepsPerLine) - 1);
        }
        graph.lines.push_back(std::move(text));
    }
    return graph;
}

} // namespace qel::watch
