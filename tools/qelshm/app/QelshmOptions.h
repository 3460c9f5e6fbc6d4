// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// Options that the verbs have in common.
#pragma once

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>

namespace CLI {
class App;
class Option;
} // namespace CLI

namespace qel::tools {

/// What the command line says before it comes to a verb's own options. Reentrant.
struct QelshmOptions {
    std::string image;            ///< file to read instead of the live object; "" for none
    std::string at;               ///< moment of a capture, see CaptureTime.h; "" for its last sample
    std::optional<unsigned> wait; ///< s
    bool isJson = false;
    std::string color = "auto";       ///< "auto", "always" or "never"
    std::optional<std::uint64_t> now; ///< ms since 1970 UTC: reference time of ages instead of the clock
};

/// The options that not every verb takes. Reentrant.
struct OptionalOptions {
    CLI::Option* image;
    CLI::Option* wait;
    CLI::Option* json;
};

/// Describes the program and the common options to the app. Reentrant.
/// @param options receives the arguments; must outlive app
OptionalOptions defineQelshmOptions(CLI::App& app, QelshmOptions& options);

/// Converts the argument of an option, rounded towards zero. Reentrant.
template <typename Duration = std::chrono::steady_clock::duration>
Duration secondsAs(double seconds) {
    return std::chrono::duration_cast<Duration>(std::chrono::duration<double>(seconds));
}

} // namespace qel::tools
