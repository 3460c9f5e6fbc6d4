// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// The region that a verb works on, and what is wrong with it.
#pragma once

#include "tools/qelshm/app/QelshmOptions.h"

#include "inspect/check/Finding.h"
#include "inspect/image/Image.h"
#include "inspect/image/LiveRegion.h"
#include "inspect/image/PointTree.h"
#include "inspect/image/RegionStatus.h"

#include <cstdint>
#include <functional>
#include <stdexcept>
#include <string>
#include <vector>

namespace qel::tools {

/// There is no region to read; what() is one line for the user.
class NothingThereError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// A copy of a region and its origin. Reentrant.
struct RegionInput {
    inspect::Image image;
    inspect::RegionSource source;
    std::string file;      ///< "" for the live object
    std::uint64_t now = 0; ///< ms since 1970 UTC
};

/// Reads an image file. Reentrant.
/// @throws inspect::ImageFileError
RegionInput fileInput(std::string const& file);

/// Copies the live object. The source says if it cannot be opened or read. Reentrant.
RegionInput liveInput();

/// Reads the image file or the live object that the options name. Waits for an active live object as long as the
/// options allow, then takes what is there. Reentrant.
/// @param tell called with a line when the wait lasts longer than a moment
/// @throws inspect::ImageFileError
RegionInput openInput(QelshmOptions const& options, std::function<void(std::string const&)> const& tell);

/// Checks who owns the live object and who may change it. Asks the bus for the hardware manager's user, but only if
/// root does not own the object. Reentrant.
/// @return findings; none for an image file or an absent object
inspect::Findings objectFindings(RegionInput const& input);

/// Requires an image file or a live object that could be opened. Reentrant.
/// @throws NothingThereError
void requireOpened(RegionInput const& input);

/// Says why a region as a whole is not reliable. Reentrant.
/// @return the problem without a full stop; "" for an active or silent region
std::string conditionProblem(inspect::RegionStatus const& status);

/// The same for an input. Reentrant.
std::string conditionProblem(RegionInput const& input);

/// Lists links that were ignored and points whose own position is wrong. Reentrant.
/// @return a line for each, the last one a count when there are many
std::vector<std::string> treeProblems(inspect::Image const& image, inspect::PointTree const& tree);

} // namespace qel::tools
