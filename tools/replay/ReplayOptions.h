// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// Arguments of qel-replay.
#pragma once

#include "tools/replay/CapturePlayer.h"
#include "tools/replay/RecordingPlayer.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace CLI {
class App;
}

namespace qel::tools {

/// What the arguments say. Reentrant.
struct ReplayOptions {
    std::vector<std::string> files;
    std::string capture; ///< file to play instead; empty for none
    double speed = 1.0;  ///< recorded seconds per second; 0: as fast as possible
    bool isEndless = false;
    std::vector<std::size_t> from; ///< by file: first row, from 1
    std::optional<std::uint64_t> until;
    std::vector<std::string> limits;
    std::vector<std::string> limitFiles;
    std::vector<double> plugAfter; ///< s of replay time, as the next three
    std::vector<double> unplugAfter;
    std::vector<double> groupAfter;
    std::vector<double> ungroupAfter;
    bool isHeld = false;
    bool isNow = false;                ///< times of the present
    std::string control;               ///< path of the socket for commands; empty for none
    std::vector<std::string> commands; ///< for a running replay, instead of a replay: "set ...", "unset ..."
    bool isQuiet = false;
    std::string logLevel;
};

/// Adds the program's description and options to the app.
/// @param options receives the arguments; must outlive app
void defineOptions(CLI::App& app, ReplayOptions& options);

/// Checks the commands for a running replay, before one is sent.
/// @throws InputError if a command is wrong, there is no control socket, or an option is not allowed with commands
void checkCommands(ReplayOptions const& options);

/// Reads and checks the recordings, limits and times that the options name.
/// @throws InputError for the first thing that is wrong
RecordingPlayer::Parts readRecordings(ReplayOptions const& options);

/// Checks the capture that the options name, as far as it will be played.
/// @throws InputError if the capture is damaged, or an option is not allowed with a capture
CapturePlayer::Parts readCapture(ReplayOptions const& options);

} // namespace qel::tools
