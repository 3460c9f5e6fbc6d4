// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// The data plane as a consumer process sees it.
#pragma once

#include "domain/SensorType.h"
#include "reader/IQelSharedMemoryVisitor.h"
#include "reader/IQelShmInitCallback.h"
#include "reader/IQelVisitorResult.h"
#include "reader/MPntPosVisitor.h"
#include "reader/QelShmKeptMVal.h"
#include "region/QelExport.h"
#include "region/QelSharedMemoryAccess.h"
#include "region/QelShmCondition.h"
#include "region/QelShmMPnt.h"
#include "region/QelShmMVal.h"
#include "region/QelShmRecords.h"

#include <atomic>
#include <chrono>
#include <cstdint>
#include <forward_list>
#include <list>
#include <memory>
#include <mutex>

// NOLINTBEGIN(bugprone-reserved-identifier): the names that GLib and its generated client declare.
using GDBusConnection = struct _GDBusConnection;
using GVariant = struct _GVariant;
using hardwaremanager = struct _hardwaremanager;
// NOLINTEND(bugprone-reserved-identifier)

namespace shm {

class BusConnection;
class FollowedReader;
class HeldRegion;
class NamedRegion;
class PositionList;
class QelShmInitWaitThread;

/// Reads the region in place: finds points by sensor id, lists points and values, takes visitors round.
///
/// Life: a reader starts out waiting. A thread of its own asks the hardware manager (D-Bus, system bus) every
/// 250 ms whether it is initialised; once it is, the region is mapped and stays mapped for the reader's life.
/// When the wait budget runs out first, the reader finds nothing for all its life.
///
/// Structure changes: the hardware manager announces them by the signal "shmStructureChanged", which only
/// raises a counter. The next look-up that finds the counter raised walks the region and builds its index
/// anew. The counter is one per process: each reader's subscription raises it for each signal, and whichever
/// reader rebuilds its index first brings it down for all. A process with several readers passes force where
/// it must not miss a change. A change that comes during a rebuild leaves the counter raised, and so does a
/// rebuild that does not finish.
///
/// Links in the region are followed only inside the slot ranges, each is read once. A circular list of siblings
/// or values ends after as many slots as its table has; points that are their own descendants must not occur.
///
/// A visit collects the positions of each list before its first callback, so what callbacks let the writer
/// remove or add takes away none of the points and values that stay. A slot that was removed or used anew
/// meanwhile is shown with what it holds.
///
/// Memory that ends is a std::bad_alloc. mpnt(), mps() and mvs() change nothing then, nor do visits, beyond the
/// callbacks that were made. A rebuild leaves the counter raised, so that the next look-up builds the index
/// again, and the client's visitor in its place. mval() needs no memory unless it builds the index.
///
/// The bus: the reader holds the connection that it subscribed on, so a hardware manager that cannot be reached does not
/// end the subscription. When the connection is closed, the reader says so once at WARN and hears no change any more; what
/// it has mapped stays readable. QelSharedMemoryFollower makes another one then.
///
/// Whether what it shows is current: condition().
///
/// Logs in "qel.shm.access.reader", beside what QelSharedMemoryAccess logs.
///
/// Threads: mpnt(), mval(), syncPositions() and modifications() are thread-safe. Visits and queries take no lock
/// against the writer, which may change slots under them, nor against visitor(). The look-ups that may build
/// the index anew (mpnt(), mval(), syncPositions()) exchange the visitor meanwhile: a client keeps its visits and
/// values() apart from those of other threads, or gives each thread a reader of its own. Several threads may
/// visit by one reader at once; each thread keeps the memory of its lists until it ends. The signal arrives in the
/// GLib main context that was the thread-default one of the constructing thread; the host must run it. The
/// wait thread calls initialized() and onInitialized() from construction on until the destructor of this
/// class has joined it, so a derived class that overrides these two must be ready for calls while it is built
/// or destroyed.
class QEL_EXPORT QelSharedMemoryReader : public QelSharedMemoryAccess, public IQelShmInitCallback {
public:
    /// Connects to the hardware manager, subscribes to its signal and starts the wait thread. Logs at INFO
    /// "start", at DEBUG the subscription, at CRIT the failure that it throws.
    /// @param seconds wait budget, for the thread cut to MAX_WAIT; 0 maps no region
    /// @param waitForRegion blocks until the region is mapped and active, for up to that many seconds (not
    ///        cut), and returns normally when it is not in time
    /// @throws ex::TAVSimpleException when there is no proxy for the hardware manager
    /// @throws boost::thread_resource_error when the thread cannot be created
    QelSharedMemoryReader(unsigned int seconds, bool waitForRegion);

    // Virtual operations in slot order, part of the binary contract; new ones go last. openShm() stands
    // between the destructor and the others.

    /// Joins the wait thread, ends the subscription and unmaps the region. Logs at DEBUG that end, at INFO "done".
    /// The join may take a pause of 250 ms, or a poll under way: while nobody owns the hardware manager's bus
    /// name, three creations of the proxy, each of them a call to the bus with a pause of 123 ms after it; then
    /// the call "initialized" (60 s at most).
    ///
    /// In a forked child, which has none of the threads, nothing is waited for and nothing ended on the bus: both stay
    /// the parent's.
    ~QelSharedMemoryReader() override;

    /// Builds the index from sensor id to slot anew if the structure has changed, or always with force.
    /// Visits the whole region with a visitor of its own, hooks included, in the place of the client's.
    /// Brings the counter to 0 if it stands as it did at the beginning. If it was raised meanwhile, it is
    /// lowered by one, but not below 1. A rebuild that does not finish, since something throws, visits are
    /// stopped or a hook installs a visitor, leaves it at 1 at least. Logs the counter at DEBUG, unless it throws.
    /// @throws std::system_error when the mutex cannot be locked; the index and the counter stay then
    /// @throws std::bad_alloc and whatever a hook throws
    virtual void syncPositions(bool force);

    /// Asks the hardware manager once whether it is initialised; false on any failure (logged at DEBUG).
    /// For the wait thread.
    bool initialized() override;

    /// Maps the region and raises the modification counter (logged at DEBUG). A second call only logs at
    /// WARN. For the wait thread, not to be called directly.
    void onInitialized() override;

    /// Visits a point, its values and its children, which are sorted by QelShmMPntCmp.
    /// @param point must refer to a slot
    virtual void visit(QelShmMPnt const& point, unsigned int depth,
                       std::shared_ptr<IQelVisitorResult>& result);

    /// The same with a plain result object that is dropped afterwards.
    virtual void visit(QelShmMPnt const& point, unsigned int depth);

    // Hooks of the visits for derived readers; what they leave out is left out of the index too. The
    // questions answer true by default, the rest does nothing.

    /// Shall the next of the two top-level lists be walked? A false leaves out its onUp too.
    virtual bool onDown(std::shared_ptr<IQelVisitorResult>& result);

    /// Shall the point's children be walked? A false leaves out their onUp too.
    virtual bool onDown(QelShmMPnt const& point, unsigned int depth,
                        std::shared_ptr<IQelVisitorResult>& result);

    /// A list of siblings has been walked, also an empty one.
    virtual void onUp(std::shared_ptr<IQelVisitorResult>& result);

    /// Shall the values of the point be walked? A false leaves out afterValues too.
    virtual bool beforeValues(long long svid, unsigned int depth, std::shared_ptr<IQelVisitorResult>& result);

    /// The values of a point have been walked.
    virtual void afterValues(std::shared_ptr<IQelVisitorResult>& result);

    /// Visits the root, the top-level devices and the top-level groups, both in the order of their lists.
    /// While no region is mapped only onRoot, onDown and onUp are called.
    void visit();
    void visit(std::shared_ptr<IQelVisitorResult>& result);

    /// Passes the values of a point to the visitor, if there is one, until its mvFound() gives true or another
    /// visitor is installed.
    void values(QelShmMPnt const& point, unsigned int depth, std::shared_ptr<IQelVisitorResult>& result);

    /// Installs the visitor of all further visits and destroys the former one; null for none. Takes no lock.
    ///
    /// From inside a callback or a hook of a visit, by the thread that visits: the new visitor is told what comes
    /// next, but nothing more of the values that were being told; the former one is destroyed when no callback
    /// runs in this thread any more. From inside a hook of a rebuild: the new visitor stays after it, and the
    /// rebuild counts as unfinished.
    /// @throws std::bad_alloc from inside a callback, when there is no memory; the former visitor stays then
    void visitor(std::unique_ptr<IQelSharedMemoryVisitor> visitor);

    /// The points of a sibling chain, in its order.
    /// @param first position to start at; 800 and above give an empty list
    /// @param type only points of this type, or SensorType::Any
    std::list<QelShmMPnt> mps(unsigned int first, SensorType::SensorType type) const;

    /// The values of a value chain, in its order.
    /// @param first position to start at; 8800 and above give an empty list
    std::forward_list<QelShmMVal> mvs(unsigned int first) const;

    /// Finds a point by its sensor id, after syncPositions(force). Null when there is none. The handle is not
    /// kept up to date: when the writer reuses the slot, it shows the new content.
    std::unique_ptr<QelShmMPnt> mpnt(long long svid, bool force);

    /// Finds a value by its sensor id, after syncPositions(force): of several values with the same key the
    /// first one of the point's chain. A null handle when there is none. Never another point's value, announced
    /// or not: the slot that the index names must hold the point's id, a list of the tree must hold the slot, and
    /// the value is looked for in the point's chain. The handle is not kept up to date: when the writer removes
    /// the point afterwards, or while this operation looks, it may show what the slot serves next.
    QelShmMVal mval(long long svid, bool force);

    /// The same for a value that is read over and over. While no change is announced, nothing is looked up or
    /// locked: it is only told that the slots still hold the point's id and the key, that the link before the
    /// point leads to it, and that the point's chain leads to the value. Whatever does not hold any more is
    /// looked up anew by itself.
    /// @return a null handle when there is no such value, or no longer
    QelShmMVal mval(QelShmKeptMVal& kept);

    /// Whether what this reader shows is current; see conditionOf() for how that is decided. Looks at the object under
    /// the region's name and, for Active and Silent, at the times of all points and values: some ten microseconds.
    ///
    /// A writer locks its object from its start to its end. Once this reader has seen its object locked, when it mapped
    /// it or in an earlier call, the object counts as Gone while it is not: its writer has ended or was killed. An older
    /// writer, which locks nothing, is found out by the name alone, or by its silence.
    ///
    /// The answer is one moment old. Take look-ups after it for current as far as the writer may end in between.
    /// @param maxAge age up to which the newest delivery is current, by the system clock; one from the future is current.
    ///        0 or below allows only one of this very millisecond; ANY_AGE never calls a region silent
    /// Any thread. Logs nothing, throws nothing, allocates nothing.
    QelShmCondition condition(std::chrono::milliseconds maxAge) const;

    /// The newest time of all points and values that can be reached, in ms since 1970 UTC; 0 for never and while
    /// nothing is mapped. Any thread. Visits each slot at most once.
    std::uint64_t lastDelivery() const;

    /// The modification counter of the process: announced changes that no rebuild has settled yet. With one reader
    /// in the process, 0 says that its index follows all of them. Any thread.
    unsigned int modifications() const;

    /// Receives "shmStructureChanged" from GLib and raises the modification counter. Logs at DEBUG the
    /// counter, or "strange call" for a signal that is not the hardware manager's.
    static void handler(GDBusConnection* connection, char const* sender, char const* path,
                        char const* interface, char const* signal, GVariant* parameters, void* userData);

protected:
    /// While set, the visit of a point returns at once. Only derived readers set it, from any thread. A rebuild that
    /// meets it leaves an index without the points that were not visited, and the counter of the process raised:
    /// each look-up builds the index again until one is whole.
    void stopVisits(bool stop) { stop_ = stop; }

private:
    class VisitorOnLeave;

    void connect();
    void subscribe();
    unsigned int unsubscribe();
    void releaseProxy();
    void waitUntilActive(unsigned int seconds) const;
    static void countModification(char const* operation);
    friend class FollowedReader;
    bool askManager();
    bool hasLostItsBus() const;
    bool willMapNothing() const;
    QelShmCondition conditionAt(NamedRegion const& named, std::chrono::milliseconds maxAge) const;
    void visitTopLevel(std::uint32_t record::QelShmRoot::*head, std::shared_ptr<IQelVisitorResult>& result);
    void visitList(PositionList const& list, unsigned int depth, std::shared_ptr<IQelVisitorResult>& result);
    void valuesTo(QelShmMPnt const& point, unsigned int depth, std::shared_ptr<IQelVisitorResult>& result);
    void scatteredValuesTo(QelShmMPnt const& point, unsigned int depth,
                           std::shared_ptr<IQelVisitorResult>& result);
    bool tell(IQelSharedMemoryVisitor& visitor, QelShmMVal const& value, long long svid, unsigned int depth,
              std::shared_ptr<IQelVisitorResult>& result);
    void collectSorted(PositionList& list, unsigned int head) const;
    bool buildIndex();
    QelShmMP const* pointOf(long long svid) const;
    QelShmMVal lookUp(QelShmKeptMVal& kept);

    // In the order of the binary contract.
    std::unique_ptr<QelShmInitWaitThread> waitThread_;
    std::atomic<bool> initialized_{false};
    hardwaremanager* proxy_ = nullptr; // one reference; initialized() may replace it
    unsigned int subscription_ = 0;
    std::atomic<bool> stop_{false};
    PositionIndex positions_;
    std::recursive_mutex mutex_; // guards positions_ and visitor_ while the index is built or looked up
    std::unique_ptr<IQelSharedMemoryVisitor> visitor_;
    // Not part of it, so behind all others.
    std::atomic<unsigned int> rebuilds_{0};             // counts the indexes that were begun
    std::atomic<unsigned int> cuts_{0};                 // counts the points that were not visited for stop_
    IQelSharedMemoryVisitor const* indexing_ = nullptr; // the visitor of the rebuild under way
    std::unique_ptr<BusConnection> bus_;                // that subscription_ stands on
    std::unique_ptr<HeldRegion> held_;                  // which object is mapped
    std::atomic<unsigned int> pollsLeft_; // of the wait thread; it maps nothing after the last one
};

} // namespace shm
