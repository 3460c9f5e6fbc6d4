#include "tools/qelshm/ManagerUser.h"

#include "tools/common/GLib.h"

#include <chrono>
#include <future>
#include <memory>
#include <thread>

namespace qel::tools {

namespace {

constexpr std::chrono::milliseconds patience(2000);

struct StringRelease {
    void operator()(char* text) const { g_free(text); }
};
struct VariantRelease {
    void operator()(GVariant* variant) const { g_variant_unref(variant); }
};
using VariantPtr = std::unique_ptr<GVariant, VariantRelease>;

/// Cancels what takes too long. GLib's own time-out holds for calls alone, not for reaching the bus.
class Deadline {
public:
    Deadline()
        : cancellable_(g_cancellable_new()),
          watch_([this, over = over_.get_future()] {
              if (over.wait_for(patience) == std::future_status::timeout) {
                  g_cancellable_cancel(cancellable_.get());
              }
          }) {}
    ~Deadline() {
        over_.set_value();
        watch_.join();
    }
    Deadline(Deadline const&) = delete;
    Deadline& operator=(Deadline const&) = delete;

    GCancellable* cancellable() const { return cancellable_.get(); }

private:
    GObjectPtr<GCancellable> cancellable_;
    std::promise<void> over_;
    std::thread watch_; // last: uses the others
};

GObjectPtr<GDBusConnection> connect(GCancellable* cancellable) {
    std::unique_ptr<char, StringRelease> const address(
        g_dbus_address_get_for_bus_sync(G_BUS_TYPE_SYSTEM, cancellable, nullptr));
    if (!address) {
        return nullptr;
    }
    // Not the shared connection: that one would stay, and end the process with the bus.
    constexpr auto flags = static_cast<GDBusConnectionFlags>(G_DBUS_CONNECTION_FLAGS_AUTHENTICATION_CLIENT |
                                                             G_DBUS_CONNECTION_FLAGS_MESSAGE_BUS_CONNECTION);
    return GObjectPtr<GDBusConnection>(
        g_dbus_connection_new_for_address_sync(address.get(), flags, nullptr, cancellable, nullptr));
}

} // namespace

std::optional<uid_t> managerUser() {
    Deadline const deadline;
    auto const bus = connect(deadline.cancellable());
    if (!bus) {
        return std::nullopt;
    }
    VariantPtr const answer(g_dbus_connection_call_sync(
        bus.get(), "org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus",
        "GetConnectionUnixUser", g_variant_new("(s)", "org.qel.HardwareManager"), G_VARIANT_TYPE("(u)"),
        G_DBUS_CALL_FLAGS_NONE, static_cast<int>(patience.count()), deadline.cancellable(), nullptr));
    if (!answer) {
        return std::nullopt;
    }
    guint32 user = 0;
    g_variant_get(answer.get(), "(u)", &user);
    return user;
}

} // namespace qel::tools
