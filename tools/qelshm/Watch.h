/// @file
/// Runs a view on the main loop.
#pragma once

#include "tools/common/GLib.h"
#include "tools/qelshm/IWatchView.h"
#include "tools/qelshm/RegionLink.h"
#include "tools/qelshm/WatchFilter.h"

#include <chrono>

namespace qel::tools {

/// Looks at the region in intervals and shows what it sees.
///
/// Threads: bound to the main thread.
class Watch {
public:
    /// @param link,view must outlive the object
    Watch(RegionLink& link, IWatchView& view, WatchFilter filter, std::chrono::milliseconds interval);

    /// Returns when the view is done or a signal (SIGINT, SIGTERM, SIGHUP) has come.
    /// @throws std::runtime_error when the hardware manager has left the bus
    void run();

private:
    void look();

    RegionLink& link_;
    IWatchView& view_;
    WatchFilter filter_;
    std::chrono::milliseconds interval_;
    GMainLoopPtr loop_;
    unsigned structureChanges_ = 0;
};

} // namespace qel::tools
