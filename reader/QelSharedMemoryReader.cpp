#include "reader/QelSharedMemoryReader.h"

#include "hardwaremanager/hardwaremanager.h"
#include "reader/GLibPtr.h"
#include "reader/MPntPosVisitor.h"
#include "reader/ModificationCounter.h"
#include "reader/QelShmInitWaitThread.h"
#include "reader/Reachability.h"
#include "reader/VisitsOfThread.h"
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

/// Whether the slots of a value that was found still hold it. True is sure; false may be wrong for an instant while the
/// writer links.
bool isStillThere(record::Region const& region, QelShmMP const& point, record::QelShmMVal const& value,
                  long long svid) {
    return point.guid == pointSvid(svid) && value.key == valueKey(svid) &&
           isReferred(region, static_cast<std::uint32_t>(&point - region.points)) &&
           isInChain(region, loadLink(point.mvs), static_cast<std::uint32_t>(&value - region.values));
}

void logModifications(char const* operation) {
    LogLine(readerLog(), log4cpp::Priority::DEBUG, operation)
        << "modifications = " << modificationCounter.current();
}

} // namespace

/// Puts the visitor that builds the index into the place of the client's, and the client's back when it goes out of scope.
/// A visitor that is installed meanwhile stays instead.
class QelSharedMemoryReader::VisitorOnLeave {
public:
    VisitorOnLeave(QelSharedMemoryReader& reader, std::unique_ptr<IQelSharedMemoryVisitor> indexing)
        : reader_(reader),
          indexing_(indexing.get()),
          outer_(reader.indexing_),
          client_(std::make_unique<RetiredVisitor>()) {
        client_->visitor = std::move(reader.visitor_);
        reader.visitor(std::move(indexing));
        reader.indexing_ = indexing_;
    }
    ~VisitorOnLeave() {
        if (indexes()) {
            reader_.visitor_ = std::move(client_->visitor);
            reader_.indexing_ = outer_;
        } else {
            reader_.indexing_ = nullptr;
            VisitsOfThread::get().retire(std::move(client_));
        }
    }
    VisitorOnLeave(VisitorOnLeave const&) = delete;
    VisitorOnLeave& operator=(VisitorOnLeave const&) = delete;

    /// Whether the visitor that builds the index is the installed one still.
    bool indexes() const { return reader_.indexing_ == indexing_; }

private:
    QelSharedMemoryReader& reader_;
    IQelSharedMemoryVisitor const* indexing_;
    IQelSharedMemoryVisitor const* outer_; // of the rebuild that this one runs in, if any
    std::unique_ptr<RetiredVisitor> client_;
};

QelSharedMemoryReader::QelSharedMemoryReader(unsigned int seconds, bool waitForRegion)
    : QelSharedMemoryAccess(ShmAccess::Read),
      IQelShmInitCallback(seconds),
      positions_(indexBuckets) {
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
    modificationCounter.raise();
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
    modificationCounter.raise();
    logModifications("onInitialized");
    initialized_ = true;
}

unsigned int QelSharedMemoryReader::modifications() const {
    return modificationCounter.current();
}

void QelSharedMemoryReader::syncPositions(bool force) {
    if (!force && modificationCounter.current() == 0) {
        return;
    }
    std::lock_guard<std::recursive_mutex> const lock(mutex_);
    auto const before = modificationCounter.snapshot();
    bool isWhole = false;
    try {
        isWhole = buildIndex();
    } catch (...) {
        modificationCounter.keepPending();
        throw;
    }
    if (isWhole) {
        // Deliberate: one less, not zero, if the structure changed meanwhile, so that the next look-up rebuilds.
        modificationCounter.settle(before);
    } else {
        modificationCounter.keepPending();
    }
    logModifications("syncPositions");
}

/// Gives false when some of the points may be missing. The caller holds the mutex.
bool QelSharedMemoryReader::buildIndex() {
    auto indexing = std::make_unique<MPntPosVisitor>(positions_);
    auto result = std::make_shared<IQelVisitorResult>();
    auto const cuts = cuts_.load();
    ++rebuilds_;
    VisitorOnLeave const client(*this, std::move(indexing));
    positions_.clear();
    visit(result);
    return client.indexes() && cuts_ == cuts;
}

/// The slot of a point, null when the index does not know it. The caller holds the mutex.
QelShmMP const* QelSharedMemoryReader::pointOf(long long svid) const {
    auto const known = positions_.find(svid);
    auto const pos = known == positions_.end() ? NO_POSITION : known->second;
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
    // In this order: who reads the 0 that a rebuild left reads that rebuild's number, too.
    if (kept.region_ != nullptr && kept.region_ == region() && modificationCounter.current() == 0 &&
        kept.rebuild_ == rebuilds_.load(std::memory_order_relaxed) &&
        isStillThere(*kept.region_, *kept.point_, *kept.value_, kept.svid_)) {
        return QelShmMVal(kept.value_);
    }
    syncPositions(false);
    return lookUp(kept);
}

QelShmMVal QelSharedMemoryReader::lookUp(QelShmKeptMVal& kept) {
    std::lock_guard<std::recursive_mutex> const lock(mutex_);
    kept.region_ = nullptr;
    kept.rebuild_ = rebuilds_;
    kept.point_ = pointOf(pointSvid(kept.svid_));
    if (kept.point_ == nullptr || kept.point_->guid != pointSvid(kept.svid_)) {
        return {};
    }
    auto const& mapped = *region();
    auto const pos = static_cast<std::uint32_t>(kept.point_ - mapped.points);
    if (!isReferred(mapped, pos) && !isListed(mapped, pos)) {
        return {};
    }
    auto left = MV_COUNT;
    for (auto value = loadLink(kept.point_->mvs); value < MV_COUNT && left != 0; --left) {
        auto const& slot = mapped.values[value];
        if (slot.key == valueKey(kept.svid_)) {
            kept.region_ = &mapped;
            kept.value_ = &slot;
            return QelShmMVal(&slot);
        }
        value = loadLink(slot.next);
    }
    return {};
}

} // namespace shm
