// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tools/qelshm/watch/Graph.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace qel::watch {

namespace {

constexpr std::size_t stepsPerLine = std::tuple_size_v<BarGlyphs>;

/// Height of a bar in eighths of a line, at least 1.
std::size_t stepsOf(float number, GraphScale const& scale, std::size_t height) {
    auto const most = static_cast<double>(height * stepsPerLine - 1);
    constexpr double slack = 1e-6; // a half goes up, in spite of what divisions round
    return 1 +
           static_cast<std::size_t>(std::lround(scale.partOf(static_cast<double>(number)) * most + slack));
}

Bucket bucketAt(History const& history, std::uint64_t newest, std::size_t back) {
    return back <= newest ? history.at(newest - back) : Bucket();
}

} // namespace

Bucket rangeOf(History const& history, std::uint64_t newest, std::size_t count) {
    Bucket range;
    for (auto back = count; back-- > 0;) {
        auto const bucket = bucketAt(history, newest, back);
        if (!bucket.isEmpty()) {
            range = {std::fmin(range.min, bucket.min), std::fmax(range.max, bucket.max), bucket.last};
        }
    }
    return range;
}

Graph graphOf(History const& history, std::uint64_t newest, std::size_t width, std::size_t height,
              BarGlyphs const& glyphs) {
    Graph graph;
    graph.range = rangeOf(history, newest, width);
    if (!graph.range.isEmpty()) {
        graph.scale = scaleAround(static_cast<double>(graph.range.min), static_cast<double>(graph.range.max));
    }
    for (std::size_t line = height; line-- > 0;) {
        auto const floor = line * stepsPerLine;
        std::string text;
        for (auto back = width; back-- > 0;) {
            auto const bucket = bucketAt(history, newest, back);
            auto const steps = bucket.isEmpty() ? 0 : stepsOf(bucket.last, graph.scale, height);
            text += steps <= floor ? " " : glyphs.at(std::min(steps - floor, stepsPerLine) - 1);
        }
        graph.lines.push_back(std::move(text));
    }
    return graph;
}

} // namespace qel::watch
