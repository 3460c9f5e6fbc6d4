// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// Where the verbs get their image from.
#pragma once

#include "inspect/check/Finding.h"
#include "inspect/image/Image.h"
#include "inspect/image/LiveRegion.h"
#include "inspect/image/PointTree.h"

#include <chrono>
#include <cstdint>
#include <functional>
#include <stdexcept>
#include <string>
#include <vector>

namespace qel::tools {

/// There is nothing to look at; one line for the user.
class NothingThereError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// A copy of a region and where it is from.
struct RegionInput {
    inspect::Image image;
    inspect::RegionSource source;
    std::string file;      ///< "" for the live object
    std::uint64_t now = 0; ///< ms since 1970 UTC
};

/// Reads a file with an image. Throws inspect::ImageFileError. Any thread.
RegionInput fileInput(std::string const& file);

/// Copies the live object. One that cannot be opened or read is told by source.
RegionInput liveInput();

/// Copies the live object as soon as it is active, or what there is when the time is up.
/// @param tell called with what is waited for, when that takes more than a moment
RegionInput awaitActive(std::chrono::seconds longest, std::function<void(std::string const&)> const& tell);

/// What of the live object tells that somebody else than the rightful writer made it or may change it; empty for an image
/// and when there is no object. Asks the bus for the hardware manager's user, but only when that matters.
inspect::Findings objectFindings(RegionInput const& input);

/// Throws NothingThereError when the live object could not be opened. Any thread.
void requireOpened(RegionInput const& input);

/// Why the region is not to be relied on as a whole, "" when it is active: absent, replaced, too short or inactive. Any
/// thread.
std::string conditionProblem(RegionInput const& input);

/// Links that were not followed, and points that say they are in another slot; a line each, the last one a count when
/// there are many. Any thread.
std::vector<std::string> treeProblems(inspect::Image const& image, inspect::PointTree const& tree);

} // namespace qel::tools
