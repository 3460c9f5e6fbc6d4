// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

// A reader's life and its connection to the hardware manager.

#include "reader/QelSharedMemoryReader.h"

#include "hardwaremanager/hardwaremanager.h"
#include "reader/BusConnection.h"
#include "reader/GLibPtr.h"
#include "reader/HeldRegion.h"
#include "reader/MutedCriticals.h"
#include "reader/QelShmInitWaitThread.h"
#include "reader/callProxy.h"
#include "region/Exceptions.h"
#include "region/LogLine.h"
#include "region/RegionFields.h"

#include <gio/gio.h>

#include <chrono>
#include <optional>
#include <string>
#include <thread>
#include <utility>

namespace shm {

namespace {

/// Both the bus name and the name of the interface.
constexpr char busName[] = "org.qel.HardwareManager";
constexpr char objectPath[] = "/";
constexpr char structureChanged[] = "shmStructureChanged";

constexpr std::size_t indexBuckets = 10;

/// The first index number of a reader. Readers of a process use different ranges, so that a QelShmKeptMVal that
/// remembers an index of a destroyed reader never matches an index of another one.
unsigned int firstRebuild() {
    static std::atomic<unsigned int> readers{0};
    return ++readers << 16U;
}

} // namespace

QelSharedMemoryReader::QelSharedMemoryReader(unsigned int seconds, bool waitForRegion)
    : QelSharedMemoryAccess(ShmAccess::Read),
      IQelShmInitCallback(seconds),
      positions_(indexBuckets),
      rebuilds_(firstRebuild()),
      bus_(std::make_unique<BusConnection>()),
      held_(std::make_unique<HeldRegion>()),
      pollsLeft_(polls()) {
    LogLine(readerLog(), log4cpp::Priority::INFO, "QelSharedMemoryReader") << "start";
    connect();
    try {
        subscribe();
        waitThread_ = std::make_unique<QelShmInitWaitThread>(this);
        waitThread_->start();
    } catch (...) {
        unsubscribe();
        releaseProxy();
        throw;
    }
    if (waitForRegion) {
        waitUntilActive(seconds);
    }
}

QelSharedMemoryReader::~QelSharedMemoryReader() {
    if (waitThread_) {
        waitThread_->join();
        waitThread_.reset();
    }
    // The connection belongs to the parent of a forked child.
    if (bus_->isOwnProcess()) {
        if (unsigned int const id = unsubscribe()) {
            LogLine(readerLog(), log4cpp::Priority::DEBUG, "~QelSharedMemoryReader")
                << "unsubscribed from signal " << structureChanged << ", id = " << id;
        }
        releaseProxy();
    }
    LogLine(readerLog(), log4cpp::Priority::INFO, "~QelSharedMemoryReader") << "done";
}

void QelSharedMemoryReader::connect() {
    GError* failure = nullptr;
    proxy_ = hardwaremanager__proxy_new_for_bus_sync(G_BUS_TYPE_SYSTEM, G_DBUS_PROXY_FLAGS_NONE, busName,
                                                     objectPath, nullptr, &failure);
    GErrorPtr const error(failure);
    {
        // Deliberate: called for a null proxy too. GLib's message adds nothing to the exception.
        std::optional<MutedCriticals> muted;
        if (proxy_ == nullptr) {
            muted.emplace();
        }
        g_dbus_proxy_set_default_timeout(G_DBUS_PROXY(proxy_), PROXY_TIMEOUT);
    }
    if (proxy_ != nullptr && !error) {
        return;
    }
    releaseProxy();
    std::string text =
        std::string("Unable to create a proxy to service ") + busName + " on object path " + objectPath;
    if (error) {
        text += ", code = " + std::to_string(error->code) + ", msg = " + error->message;
    }
    LogLine(readerLog(), log4cpp::Priority::CRIT, "QelSharedMemoryReader") << text;
    throw ex::TAVSimpleException(text);
}

void QelSharedMemoryReader::subscribe() {
    auto* const connection = g_dbus_proxy_get_connection(G_DBUS_PROXY(proxy_));
    if (connection == nullptr) {
        return;
    }
    bus_->hold(connection);
    subscription_ =
        g_dbus_connection_signal_subscribe(connection, nullptr, busName, structureChanged, objectPath,
                                           nullptr, G_DBUS_SIGNAL_FLAGS_NONE, handler, nullptr, nullptr);
    LogLine(readerLog(), log4cpp::Priority::DEBUG, "QelSharedMemoryReader")
        << "subscribed to signal " << structureChanged << ", id = " << subscription_;
}

unsigned int QelSharedMemoryReader::unsubscribe() {
    // If a proxy could not be created again, there is none, but still the connection.
    auto* const connection =
        proxy_ == nullptr ? bus_->held() : g_dbus_proxy_get_connection(G_DBUS_PROXY(proxy_));
    if (connection == nullptr || subscription_ == 0) {
        return 0;
    }
    g_dbus_connection_signal_unsubscribe(connection, subscription_);
    return std::exchange(subscription_, 0);
}

void QelSharedMemoryReader::releaseProxy() {
    if (proxy_ != nullptr) {
        g_object_unref(std::exchange(proxy_, nullptr));
    }
}

void QelSharedMemoryReader::waitUntilActive(unsigned int seconds) const {
    for (unsigned int waited = 0; waited < seconds; ++waited) {
        auto const mapped = root();
        if (mapped && loadVersion(*mapped) == ACTIVE_VERSION) {
            return;
        }
        std::this_thread::sleep_for(std::chrono::seconds(1));
    }
}

void QelSharedMemoryReader::handler(GDBusConnection* connection, char const* /*sender*/, char const* path,
                                    char const* interface, char const* signal, GVariant* parameters,
                                    void* /*userData*/) {
    if (connection == nullptr || g_strcmp0(path, objectPath) != 0 || g_strcmp0(interface, busName) != 0 ||
        parameters == nullptr) {
        LogLine(readerLog(), log4cpp::Priority::DEBUG, "handler") << "strange call";
        return;
    }
    if (g_strcmp0(signal, structureChanged) != 0) {
        return;
    }
    countModification("handler");
}

bool QelSharedMemoryReader::initialized() {
    bool const answer = askManager();
    if (!answer && pollsLeft_ > 0) {
        --pollsLeft_;
    }
    return answer;
}

bool QelSharedMemoryReader::askManager() {
    GError* failure = nullptr;
    int answer = 0;
    bool const called =
        callProxy<false>(busName, objectPath, failure, hardwaremanager__proxy_new_for_bus_sync, &proxy_,
                         hardwaremanager__call_initialized_sync, &answer);
    GErrorPtr const error(failure);
    if (called && !error) {
        return answer == 1;
    }
    if (proxy_ == nullptr && bus_->isClosed()) {
        // Once the closed connection is released, the next proxy gets a new one.
        unsubscribe();
        bus_->giveBack();
    }
    LogLine line(readerLog(), log4cpp::Priority::DEBUG, "initialized");
    line << "failed to query initialization state";
    if (error) {
        line << ", code = " << std::dec << error->code << ", msg = " << error->message;
    }
    return false;
}

void QelSharedMemoryReader::onInitialized() {
    if (initialized_) {
        LogLine(readerLog(), log4cpp::Priority::WARN, "onInitialized") << "don't call this method directly";
        return;
    }
    auto const before = namedObject();
    openShm();
    if (root()) {
        held_->take(before, NamedRegion());
    }
    countModification("onInitialized");
    initialized_ = true;
}

} // namespace shm
