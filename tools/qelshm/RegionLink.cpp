#include "tools/qelshm/RegionLink.h"

#include "region/QelShmRecords.h"

#include <atomic>
#include <exception>
#include <stdexcept>

namespace qel::tools {

namespace {

constexpr char busName[] = "org.qel.HardwareManager";

/// Runs the default main context for a moment.
void dispatch(std::chrono::milliseconds duration) {
    bool isOver = false;
    auto const timer = Source::everyMs(static_cast<unsigned>(duration.count()), [&] { isOver = true; });
    while (!isOver) {
        g_main_context_iteration(nullptr, TRUE);
    }
}

} // namespace

RegionLink::RegionLink(unsigned seconds, std::function<void(std::string const&)> const& tell) {
    constexpr std::chrono::milliseconds interval(50);
    constexpr std::chrono::milliseconds patience(500); // nothing is told about waits that are shorter
    auto const start = Clock::now();
    auto const deadline = start + std::chrono::seconds(seconds);
    std::string told;
    for (tryToConnect(deadline); !isReady(); tryToConnect(deadline)) {
        auto const now = Clock::now();
        if (now >= deadline) {
            throw std::runtime_error("nothing to read after " + std::to_string(seconds) + " s: " + missing());
        }
        if (now - start >= patience && told != missing()) {
            told = missing();
            tell(told);
        }
        dispatch(interval);
    }
    // The index is built now, so that a modification counter that rises means a change of structure.
    reader_->syncPositions(true);
}

RegionLink::~RegionLink() {
    if (watch_ != 0) {
        g_bus_unwatch_name(watch_);
    }
}

void RegionLink::tryToConnect(Clock::time_point deadline) {
    if (reader_) {
        return;
    }
    GError* failure = nullptr;
    connection_.reset(g_bus_get_sync(G_BUS_TYPE_SYSTEM, nullptr, &failure));
    if (GErrorPtr const error{failure}) {
        busProblem_ = error->message;
        return;
    }
    // A bus that goes away shall end the program in order, not by the signal that GLib would raise.
    g_dbus_connection_set_exit_on_close(connection_.get(), FALSE);
    try {
        auto const left =
            std::chrono::duration_cast<std::chrono::seconds>(deadline - Clock::now()).count() + 1;
        reader_ = std::make_unique<shm::QelSharedMemoryReader>(static_cast<unsigned>(left), false);
        watch_ = g_bus_watch_name_on_connection(connection_.get(), busName, G_BUS_NAME_WATCHER_FLAGS_NONE,
                                                onNameAppeared, onNameVanished, this, nullptr);
    } catch (std::exception const& error) {
        busProblem_ = error.what();
    }
}

bool RegionLink::isReady() const {
    if (!reader_ || !hasManager_) {
        return false;
    }
    auto const root = reader_->root();
    if (!root || root->version != shm::ACTIVE_VERSION) {
        return false;
    }
    std::atomic_thread_fence(
        std::memory_order_acquire); // the version was written last, so all else is read after it
    return true;
}

std::string RegionLink::missing() const {
    if (!reader_) {
        return "no system bus (" + busProblem_ + ')';
    }
    if (!hasManager_) {
        return std::string("no hardware manager (") + busName + ") on the system bus";
    }
    return reader_->root() ? "the region is not active" : "the hardware manager is not initialised";
}

void RegionLink::onNameAppeared(GDBusConnection* /*connection*/, gchar const* /*name*/,
                                gchar const* /*owner*/, gpointer self) {
    static_cast<RegionLink*>(self)->hasManager_ = true;
}

void RegionLink::onNameVanished(GDBusConnection* /*connection*/, gchar const* /*name*/, gpointer self) {
    static_cast<RegionLink*>(self)->hasManager_ = false;
}

} // namespace qel::tools
