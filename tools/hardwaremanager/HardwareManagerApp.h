// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// Serves the hardware manager's interface for a region.
#pragma once

#include "tools/hardwaremanager/HardwareManagerOptions.h"
#include "tools/hardwaremanager/HardwareManagerService.h"
#include "tools/hardwaremanager/RegionObserver.h"
#include "tools/hardwaremanager/SignalSource.h"

#include <glib.h>

#include <iosfwd>
#include <list>
#include <optional>
#include <string>

namespace qel::tools {

/// Answers readers while the region is active, and announces changes.
///
/// Threads: thread-bound to the main thread.
class HardwareManagerApp {
public:
    /// @param out receives the lines that the help describes; null for none; must outlive the object
    /// @throws std::runtime_error if there is no system bus
    HardwareManagerApp(HardwareManagerOptions const& options, std::ostream* out);
    ~HardwareManagerApp();
    HardwareManagerApp(HardwareManagerApp const&) = delete;
    HardwareManagerApp& operator=(HardwareManagerApp const&) = delete;

    /// Returns when a signal has arrived.
    /// @throws std::runtime_error if another process owns the name, the policy of the bus refuses it, the bus is lost, or
    ///         the region cannot be read
    void run();

private:
    void look();
    void observe();
    void announce();
    void tell(std::string const& line) const;
    void fail(std::string const& reason);

    HardwareManagerOptions options_;
    std::ostream* out_;
    RegionObserver region_;
    bool isOver_ = false;
    std::optional<std::string> failure_;
    HardwareManagerService service_;
    std::list<SignalSource> signals_;
    guint timer_ = 0; // 0: none
};

} // namespace qel::tools
