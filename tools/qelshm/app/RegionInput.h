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
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

namespace qel::tools {

/// There is no region to read; what() is one line for the user.
class NothingThereError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// Where in a capture an image was taken from. All times in ms since 1970 UTC. Reentrant.
struct CaptureOrigin {
    std::uint64_t time; ///< of the sample
    std::uint64_t first;
    std::uint64_t last;
    std::uint64_t samples;
    std::string damage; ///< what is wrong with the file behind the last complete sample; "" for nothing
};

/// A copy of a region and its origin. Reentrant.
struct RegionInput {
    inspect::Image image;
    inspect::RegionSource source;
    std::string file;      ///< "" for the live object
    std::uint64_t now = 0; ///< ms since 1970 UTC; of a capture: the time of the sample
    std::optional<CaptureOrigin> capture = std::nullopt; ///< none unless the file is a capture
};

/// Reads an image file, or one sample of a capture. The content decides what the file is, not its name. Reentrant.
/// @param at moment of a capture, see CaptureTime.h; "" for the last sample
/// @throws inspect::ImageFileError, inspect::CaptureError
/// @throws CaptureTimeError if the file has no such moment, or is an image and at is not ""
RegionInput fileInput(std::string const& file, std::string const& at = {});

/// "live object QelSharedMemory", "image FILE", "capture FILE at 2023-11-14T22:13:20Z". Reentrant.
std::string sourceText(RegionInput const& input);

/// Copies the live object. The source says if it cannot be opened or read. Reentrant.
RegionInput liveInput();

/// Reads the image file or the live object that the options name. Waits for an active live object as long as the
/// options allow, then takes what is there. Reentrant.
/// @param tell called with a line when the wait lasts longer than a moment, and for a damaged capture
/// @throws as fileInput()
RegionInput openInput(QelshmOptions const& options, std::function<void(std::string const&)> const& tell);

/// Checks who owns the live object and who may change it. Asks the bus for the hardware manager's user, but only if
/// root does not own the object. Reentrant.
/// @return findings; none for an image file or an absent object
inspect::Findings objectFindings(RegionInput const& input);

/// Requires that an output is not the capture that is read, which would be lost. Reentrant.
/// @throws inspect::ImageFileError
void requireOtherThanCapture(std::string const& capture, std::string const& output);

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
