// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// Samples of a capture, changed before they are published. All functions are reentrant.
#pragma once

#include "inspect/image/Image.h"

#include <cstddef>
#include <cstdint>
#include <functional>

namespace qel::tools {

/// An image without links that lead back. Reentrant.
struct MendedImage {
    inspect::Image image;
    std::size_t cut = 0; ///< number of links that were cut
};

/// Cuts each link whose target was reached before. A reader that follows such links may walk for ever; those of a unit
/// form a tree, but a capture of a damaged region holds them.
/// @return the same image if there is nothing to cut
MendedImage withoutCircles(inspect::Image const& image);

/// Replaces the times of all points and values that can be reached. Times that are none stay: 0, and those behind the
/// year 9999.
/// @param stampOf gives the new time
inspect::Image restamped(inspect::Image const& image,
                         std::function<std::uint64_t(std::uint64_t)> const& stampOf);

} // namespace qel::tools
