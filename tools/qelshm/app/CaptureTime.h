// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// Moments of a capture on the command line:
///
/// | text                   | moment                                            |
/// |------------------------|---------------------------------------------------|
/// | `2023-11-14T22:13:20Z` | that time, UTC                                    |
/// | `+5m`                  | five minutes after the first sample               |
/// | `-30s`, `-10m`, `-2h`  | 30 s, 10 min, 2 h before the last sample; `d`: days |
#pragma once

#include "inspect/capture/CaptureTimeline.h"

#include <cstdint>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>

namespace qel::tools {

/// A file does not have the moment that was asked for; what() is one line for the user.
class CaptureTimeError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// Reads a moment. Reentrant.
/// @return none for any other text
std::optional<inspect::CaptureMoment> parseCaptureTime(std::string_view text);

/// Checks the argument of an option. Reentrant.
/// @return what is wrong with it, "" for nothing
std::string captureTimeProblem(std::string const& text);

/// What is wrong with a capture that can be read only once. Reentrant.
std::string inPipeText(std::string const& file);

/// What is wrong with a moment that a capture does not have; it names the first and the last time. Reentrant.
std::string outsideText(inspect::CaptureTimeline const& timeline, std::string const& text);

/// The moment in a capture, in ms since 1970 UTC. Reentrant.
/// @throws CaptureTimeError if it lies outside, with outsideText()
std::uint64_t captureTime(inspect::CaptureTimeline const& timeline, std::string const& text);

} // namespace qel::tools
