// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// Arguments that are durations.
#pragma once

#include <chrono>
#include <optional>
#include <string>
#include <string_view>

namespace CLI {
class Validator;
}

namespace qel::tools {

/// Reads a duration: seconds without a unit or with "s", minutes with "m", hours with "h", days with "d", milliseconds
/// with "ms"; "10", "1.5", "10s", "5m", "2h", "500ms". Reentrant.
/// @return rounded down; none for other texts, and for durations that are negative or longer than a thousand years
std::optional<std::chrono::milliseconds> parseDuration(std::string_view text);

/// "300 s"; rounded down. Reentrant.
std::string secondsText(std::chrono::milliseconds time);

/// Accepts what parseDuration() reads.
///
/// Threads: reentrant.
/// @param longest the longest duration that is accepted
CLI::Validator durationUpTo(std::chrono::milliseconds longest);

} // namespace qel::tools
