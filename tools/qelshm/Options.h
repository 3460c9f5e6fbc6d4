/// @file
/// Arguments of qelshm.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace CLI {
class App;
}

namespace qel::tools {

enum class Command : std::uint8_t { List, Tree, Get, Watch };

struct ReaderOptions {
    Command command = Command::List;
    std::vector<std::string> svids; ///< arguments of get and watch
    std::optional<std::uint64_t> count;
    double interval = 0.25; ///< s between two looks
    unsigned wait = 5;      ///< s
    std::string logLevel;
};

/// Describes the program and its options to the app.
/// @param options receives the arguments; must outlive app
void defineOptions(CLI::App& app, ReaderOptions& options);

} // namespace qel::tools
