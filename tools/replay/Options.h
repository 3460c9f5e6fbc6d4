// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// Arguments of qel-replay.
#pragma once

#include "tools/replay/capture/CapturePlayer.h"
#include "tools/replay/unit/Session.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace CLI {
class App;
}

namespace qel::tools {

struct Options {
    std::vector<std::string> files;
    std::string record; ///< a recorded region to play instead of files; empty for none
    double speed = 1.0; ///< recorded seconds per second; 0: as fast as possible
    bool isEndless = false;
    std::vector<std::size_t> from; ///< by file, first row from 1
    std::optional<std::uint64_t> until;
    std::vector<std::string> limits;
    std::vector<std::string> limitFiles;
    std::vector<double> plugAfter; ///< s of replay time, as the next three
    std::vector<double> unplugAfter;
    std::vector<double> groupAfter;
    std::vector<double> ungroupAfter;
    bool isHeld = false;
    bool isQuiet = false;
    std::string logLevel;
};

/// Describes the program and its options to the app.
/// @param options receives the arguments; must outlive app
void defineOptions(CLI::App& app, Options& options);

/// Reads and checks everything that the options name.
/// @throws InputError at the first thing that is wrong
Session::Parts readInput(Options const& options);

/// Checks the recorded region that the options name, to its end or as far as it is to be played.
/// @throws InputError at the first thing that is wrong, be it an option that does not go with a recorded region
CapturePlayer::Parts readRecord(Options const& options);

} // namespace qel::tools
