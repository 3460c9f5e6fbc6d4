/// @file
/// Arguments of qel-replay.
#pragma once

#include "tools/replay/Session.h"

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

} // namespace qel::tools
