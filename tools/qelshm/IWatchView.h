/// @file
/// Shows the region over and over.
#pragma once

#include "tools/qelshm/Snapshot.h"

namespace qel::tools {

/// What a view is shown each time.
struct WatchFrame {
    Snapshot snapshot;             ///< only what is to be watched
    unsigned structureChanges = 0; ///< announced since the watch began
};

class IWatchView {
public:
    IWatchView() = default;
    IWatchView(IWatchView const&) = delete;
    IWatchView& operator=(IWatchView const&) = delete;
    virtual ~IWatchView() = default;

    virtual void show(WatchFrame const& frame) = 0;

    /// There is input on standard input.
    virtual void handleInput() = 0;

    /// Nothing more shall be shown.
    virtual bool isDone() const = 0;
};

} // namespace qel::tools
