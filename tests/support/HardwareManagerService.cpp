// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tests/support/HardwareManagerService.h"

#include "hardwaremanager/hardwaremanager.h"

#include <cstdlib>
#include <stdexcept>
#include <utility>

namespace qel::test {

namespace {

constexpr char busName[] = "org.qel.HardwareManager";
constexpr char objectPath[] = "/";

// D-Bus specification, "Message bus messages".
constexpr unsigned int doNotQueue = 4;
constexpr unsigned int primaryOwner = 1;
constexpr unsigned int released = 1;

void throwIf(GError* failure) {
    if (shm::GErrorPtr const error{failure}) {
        throw std::runtime_error(std::string("hardware manager of the test: ") + error->message);
    }
}

} // namespace

HardwareManagerService::HardwareManagerService(bool present) : answer_([](unsigned int) { return 1; }) {
    char const* const address = std::getenv("DBUS_SYSTEM_BUS_ADDRESS");
    if (address == nullptr) {
        throw std::runtime_error("hardware manager of the test: DBUS_SYSTEM_BUS_ADDRESS is not set");
    }
    GError* failure = nullptr;
    // Calls are dispatched in the context that is the thread's default while the skeleton is exported.
    auto* const context = g_main_context_new();
    g_main_context_push_thread_default(context);
    connection_.reset(g_dbus_connection_new_for_address_sync(
        address,
        static_cast<GDBusConnectionFlags>(G_DBUS_CONNECTION_FLAGS_AUTHENTICATION_CLIENT |
                                          G_DBUS_CONNECTION_FLAGS_MESSAGE_BUS_CONNECTION),
        nullptr, nullptr, &failure));
    if (connection_) {
        skeleton_.reset(hardwaremanager__skeleton_new());
        g_signal_connect(skeleton_.get(), "handle-initialized", G_CALLBACK(onInitialized), this);
        g_dbus_interface_skeleton_export(G_DBUS_INTERFACE_SKELETON(skeleton_.get()), connection_.get(),
                                         objectPath, &failure);
    }
    g_main_context_pop_thread_default(context);
    loop_ = std::make_unique<MainLoopThread>(context);
    g_main_context_unref(context);
    throwIf(failure);
    if (present) {
        ownName();
    }
}

HardwareManagerService::~HardwareManagerService() {
    {
        std::lock_guard<std::mutex> const lock(mutex_);
        closing_ = true;
    }
    changed_.notify_all();
    loop_.reset();
    if (connection_) {
        g_dbus_interface_skeleton_unexport(G_DBUS_INTERFACE_SKELETON(skeleton_.get()));
        g_dbus_connection_close_sync(connection_.get(), nullptr, nullptr);
    }
}

void HardwareManagerService::ownName() {
    callBus("RequestName", g_variant_new("(su)", busName, doNotQueue), primaryOwner);
}

void HardwareManagerService::releaseName() {
    callBus("ReleaseName", g_variant_new("(s)", busName), released);
}

void HardwareManagerService::callBus(char const* method, GVariant* arguments, unsigned int expected) {
    GError* failure = nullptr;
    GVariant* const reply = g_dbus_connection_call_sync(
        connection_.get(), "org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus", method,
        arguments, G_VARIANT_TYPE("(u)"), G_DBUS_CALL_FLAGS_NONE, -1, nullptr, &failure);
    throwIf(failure);
    unsigned int result = 0;
    g_variant_get(reply, "(u)", &result);
    g_variant_unref(reply);
    if (result != expected) {
        throw std::runtime_error(std::string("hardware manager of the test: ") + method + " gave " +
                                 std::to_string(result));
    }
}

void HardwareManagerService::setAnswer(int state) {
    setAnswer([state](unsigned int) { return state; });
}

void HardwareManagerService::setAnswer(std::function<int(unsigned int call)> answer) {
    std::lock_guard<std::mutex> const lock(mutex_);
    answer_ = std::move(answer);
}

void HardwareManagerService::setError(std::string message) {
    std::lock_guard<std::mutex> const lock(mutex_);
    error_ = std::move(message);
}

void HardwareManagerService::setDelay(std::chrono::milliseconds delay) {
    std::lock_guard<std::mutex> const lock(mutex_);
    delay_ = delay;
}

unsigned int HardwareManagerService::calls() const {
    std::lock_guard<std::mutex> const lock(mutex_);
    return calls_;
}

bool HardwareManagerService::waitForCalls(unsigned int calls, std::chrono::milliseconds timeout) const {
    std::unique_lock<std::mutex> lock(mutex_);
    return changed_.wait_for(lock, timeout, [&] { return calls_ >= calls; });
}

void HardwareManagerService::emitStructureChanged() {
    hardwaremanager__emit_shm_structure_changed(skeleton_.get());
    g_dbus_connection_flush_sync(connection_.get(), nullptr, nullptr);
}

void HardwareManagerService::emitSignal(std::string const& path, std::string const& interface,
                                        std::string const& name) {
    GError* failure = nullptr;
    g_dbus_connection_emit_signal(connection_.get(), nullptr, path.c_str(), interface.c_str(), name.c_str(),
                                  nullptr, &failure);
    throwIf(failure);
    g_dbus_connection_flush_sync(connection_.get(), nullptr, nullptr);
}

int HardwareManagerService::onInitialized(hardwaremanager* skeleton, GDBusMethodInvocation* invocation,
                                          void* service) {
    auto& self = *static_cast<HardwareManagerService*>(service);
    std::unique_lock<std::mutex> lock(self.mutex_);
    unsigned int const call = ++self.calls_;
    self.changed_.notify_all();
    self.changed_.wait_for(lock, self.delay_, [&] { return self.closing_; });
    if (!self.error_.empty()) {
        g_dbus_method_invocation_return_dbus_error(invocation, "org.qel.Error", self.error_.c_str());
    } else {
        hardwaremanager__complete_initialized(skeleton, invocation, self.answer_(call));
    }
    return TRUE;
}

} // namespace qel::test
