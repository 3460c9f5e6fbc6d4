#include "reader/QelSharedMemoryReader.h"

#include "hardwaremanager/hardwaremanager.h"
#include "reader/GLibPtr.h"
#include "reader/MPntPosRefill.h"
#include "reader/PositionTable.h"
#include "reader/QelShmInitWaitThread.h"
#include "reader/callProxy.h"
#include "region/Exceptions.h"
#include "region/LogLine.h"
#include "region/RegionFields.h"
#include "region/SvidParts.h"

#include <gio/gio.h>

#include <chrono>
#include <string>
#include <thread>
#include <utility>

namespace shm {

namespace {

/// Serves as the bus name and as the name of the interface.
constexpr char busName[] = "org.qel.HardwareManager";
constexpr char objectPath[] = "/";
constexpr char structureChanged[] = "shmStructureChanged";

constexpr std::size_t indexBuckets = 10;

/// Structure changes that no index follows yet. One for the whole process, because the signal handler is
/// given nothing that names the reader it serves.
std::atomic<unsigned int> modificationCount{0};

void logModifications(char const* operation) {
    LogLine(readerLog(), log4cpp::Priority::DEBUG, operation)
        << "modifications = " << modificationCount.load();
}

/// Takes the visitor out of its slot, and puts it back when it goes out of scope.
class VisitorOnLeave {
public:
    explicit VisitorOnLeave(std::unique_ptr<IQelSharedMemoryVisitor>& slot)
        : slot_(slot),
          visitor_(std::move(slot)) {}
    ~VisitorOnLeave() { slot_ = std::move(visitor_); }
    VisitorOnLeave(VisitorOnLeave const&) = delete;
    VisitorOnLeave& operator=(VisitorOnLeave const&) = delete;

private:
    std::unique_ptr<IQelSharedMemoryVisitor>& slot_;
    std::unique_ptr<IQelSharedMemoryVisitor> visitor_;
};

} // namespace

QelSharedMemoryReader::QelSharedMemoryReader(unsigned int seconds, bool waitForRegion)
    : QelSharedMemoryAccess(ShmAccess::Read),
      IQelShmInitCallback(seconds),
      positions_(indexBuckets),
      positionTable_(std::make_unique<PositionTable>(positions_)) {
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
    if (unsigned int const id = unsubscribe()) {
        LogLine(readerLog(), log4cpp::Priority::DEBUG, "~QelSharedMemoryReader")
            << "unsubscribed from signal " << structureChanged << ", id = " << id;
    }
    releaseProxy();
    LogLine(readerLog(), log4cpp::Priority::INFO, "~QelSharedMemoryReader") << "done";
}

void QelSharedMemoryReader::connect() {
    GError* failure = nullptr;
    proxy_ = hardwaremanager__proxy_new_for_bus_sync(G_BUS_TYPE_SYSTEM, G_DBUS_PROXY_FLAGS_NONE, busName,
                                                     objectPath, nullptr, &failure);
    GErrorPtr const error(failure);
    // Deliberate: called for a null proxy too, of which GLib then tells on standard error.
    g_dbus_proxy_set_default_timeout(G_DBUS_PROXY(proxy_), PROXY_TIMEOUT);
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
    subscription_ =
        g_dbus_connection_signal_subscribe(connection, nullptr, busName, structureChanged, objectPath,
                                           nullptr, G_DBUS_SIGNAL_FLAGS_NONE, handler, nullptr, nullptr);
    LogLine(readerLog(), log4cpp::Priority::DEBUG, "QelSharedMemoryReader")
        << "subscribed to signal " << structureChanged << ", id = " << subscription_;
}

/// Gives the id of the ended subscription, 0 when there was none to end.
unsigned int QelSharedMemoryReader::unsubscribe() {
    auto* const connection = proxy_ == nullptr ? nullptr : g_dbus_proxy_get_connection(G_DBUS_PROXY(proxy_));
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
    ++modificationCount;
    logModifications("handler");
}

bool QelSharedMemoryReader::initialized() {
    GError* failure = nullptr;
    int answer = 0;
    bool const called =
        callProxy<false>(busName, objectPath, failure, hardwaremanager__proxy_new_for_bus_sync, &proxy_,
                         hardwaremanager__call_initialized_sync, &answer);
    GErrorPtr const error(failure);
    if (called && !error) {
        return answer == 1;
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
    openShm();
    ++modificationCount;
    logModifications("onInitialized");
    initialized_ = true;
}

unsigned int QelSharedMemoryReader::modifications() const {
    return modificationCount.load();
}

void QelSharedMemoryReader::syncPositions(bool force) {
    if (!force && modificationCount == 0) {
        return;
    }
    unsigned int const before = modificationCount;
    std::lock_guard<std::recursive_mutex> const lock(mutex_);
    {
        VisitorOnLeave const client(visitor_);
        positionTable_->invalidate();
        visitor(std::make_unique<MPntPosRefill>(positions_));
        visit();
    }
    positionTable_->takeOver();
    ++rebuilds_;
    // Deliberate: one less, not zero, if the structure changed meanwhile, so that the next look-up rebuilds.
    if (modificationCount == before) {
        modificationCount = 0;
    } else {
        --modificationCount;
    }
    logModifications("syncPositions");
}

/// The slot of a point, null when the index does not know it. The caller holds the mutex.
QelShmMP const* QelSharedMemoryReader::pointOf(long long svid) const {
    auto const pos = positionTable_->find(svid);
    auto const* const mapped = region();
    return pos < MP_COUNT && mapped != nullptr ? &mapped->points[pos] : nullptr;
}

std::unique_ptr<QelShmMPnt> QelSharedMemoryReader::mpnt(long long svid, bool force) {
    syncPositions(force);
    std::lock_guard<std::recursive_mutex> const lock(mutex_);
    auto const* const point = pointOf(svid);
    return point == nullptr ? nullptr : std::make_unique<QelShmMPnt>(point);
}

QelShmMVal QelSharedMemoryReader::mval(long long svid, bool force) {
    syncPositions(force);
    QelShmKeptMVal once(svid);
    return lookUp(once);
}

QelShmMVal QelSharedMemoryReader::mval(QelShmKeptMVal& kept) {
    // A change of structure shows in the counter until an index follows it, then in that index's number.
    if (kept.region_ != nullptr && kept.region_ == region() &&
        modificationCount.load(std::memory_order_relaxed) == 0 &&
        kept.rebuild_ == rebuilds_.load(std::memory_order_relaxed) &&
        kept.point_->guid == pointSvid(kept.svid_) && kept.value_->key == valueKey(kept.svid_)) {
        return QelShmMVal(kept.value_);
    }
    syncPositions(false);
    return lookUp(kept);
}

QelShmMVal QelSharedMemoryReader::lookUp(QelShmKeptMVal& kept) {
    std::lock_guard<std::recursive_mutex> const lock(mutex_);
    auto const key = valueKey(kept.svid_);
    kept.region_ = nullptr;
    kept.rebuild_ = rebuilds_;
    kept.point_ = pointOf(pointSvid(kept.svid_));
    auto const first = kept.point_ == nullptr ? NO_POSITION : kept.point_->mvs;
    for (auto pos = first; pos < MV_COUNT; pos = region()->values[pos].next) {
        auto const& slot = region()->values[pos];
        if (slot.key == key) {
            kept.region_ = region();
            kept.value_ = &slot;
            return QelShmMVal(&slot);
        }
    }
    return {};
}

} // namespace shm
