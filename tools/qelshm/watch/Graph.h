// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// A value's history as text.
#pragma once

#include "tools/qelshm/watch/GraphScale.h"
#include "tools/qelshm/watch/History.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace qel::watch {

/// A bar's top character by its height in eighths, 1 to 8; UTF-8.
using BarGlyphs = std::array<char const*, 8>;

inline constexpr BarGlyphs blockBars{"▁", "▂", "▃", "▄", "▅", "▆", "▇", "█"};
inline constexpr BarGlyphs asciiBars{".", ".", ":", ":", "|", "|", "#", "#"};

/// A drawing of a history. Reentrant.
struct Graph {
    std::vector<std::string> lines; ///< from the top, each as wide as requested
    Bucket range;                   ///< least and greatest number and the last one in it; empty without any
    GraphScale scale;               ///< what bottom and top stand for; see scaleAround()
};

/// Finds the least and greatest number of the newest buckets, and the last one in them. Reentrant.
/// @param newest number of the newest bucket
/// @param count  of buckets
/// @return an empty one if there is no number
Bucket rangeOf(History const& history, std::uint64_t newest, std::size_t count);

/// Draws the last number of each bucket as a bar, the newest at the right. Buckets without a number stay blank.
/// Reentrant.
/// @param newest number of the bucket at the right
/// @param width  columns; at most History::length are filled
/// @param height lines
Graph graphOf(History const& history, std::uint64_t newest, std::size_t width, std::size_t height,
              BarGlyphs const& glyphs);

} // namespace qel::watch
