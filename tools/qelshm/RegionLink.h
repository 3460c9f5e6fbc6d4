/// @file
/// Waits for the region and keeps an eye on its writer.
#pragma once

#include "tools/common/GLib.h"

#include "reader/QelSharedMemoryReader.h"

#include <chrono>
#include <functional>
#include <memory>
#include <string>

namespace qel::tools {

/// A reader whose region is mapped and active.
///
/// Threads: bound to the thread that runs the default main context.
class RegionLink {
public:
    /// Waits until there is a bus, a hardware manager on it, and an active region. Runs the default main
    /// context.
    /// @param seconds the longest wait, at least 1
    /// @param tell called with what it waits for, when that takes more than a moment
    /// @throws std::runtime_error saying what is missing when the time is up
    RegionLink(unsigned seconds, std::function<void(std::string const&)> const& tell);
    ~RegionLink();
    RegionLink(RegionLink const&) = delete;
    RegionLink& operator=(RegionLink const&) = delete;

    shm::QelSharedMemoryReader& reader() { return *reader_; }

    /// False once the hardware manager has left the bus: nothing in the region will change any more.
    bool hasManager() const { return hasManager_; }

private:
    using Clock = std::chrono::steady_clock;

    bool isReady() const;
    std::string missing() const;
    void tryToConnect(Clock::time_point deadline);
    static void onNameAppeared(GDBusConnection* connection, gchar const* name, gchar const* owner,
                               gpointer self);
    static void onNameVanished(GDBusConnection* connection, gchar const* name, gpointer self);

    GObjectPtr<GDBusConnection> connection_;
    std::unique_ptr<shm::QelSharedMemoryReader> reader_; // null while there is no bus
    std::string busProblem_;
    guint watch_ = 0;
    bool hasManager_ = false;
};

} // namespace qel::tools
