// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// Arguments of qel-hardware-manager.
#pragma once

namespace CLI {
class App;
}

namespace qel::tools {

struct HardwareManagerOptions {
    double interval = 0.5; ///< s between two looks at the structure; 0: none
    bool isQuiet = false;
};

/// Adds the program's description and options to the app.
/// Threads: reentrant.
/// @param options receives the arguments; must outlive app
void defineOptions(CLI::App& app, HardwareManagerOptions& options);

} // namespace qel::tools
