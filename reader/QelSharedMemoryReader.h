// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// The reading side of the region.
#pragma once

#include "domain/SensorType.h"
#include "reader/IQelSharedMemoryVisitor.h"
#include "reader/IQelShmInitCallback.h"
#include "reader/IQelVisitorResult.h"
#include "reader/MPntPosVisitor.h"
#include "reader/QelShmKeptMVal.h"
#include "reader/QelShmPointRange.h"
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
using GDBusConnection = struct _GDBusConnection; ///< a D-Bus connection (GIO)
using GVariant = struct _GVariant;               ///< a D-Bus value (GLib)
using hardwaremanager = struct _hardwaremanager; ///< generated D-Bus proxy of the hardware manager
// NOLINTEND(bugprone-reserved-identifier)

namespace shm {

class BusConnection;
class FollowedReader;
class HeldRegion;
class NamedRegion;
class PositionList;
class QelShmInitWaitThread;

/// Reads the region in place: finds points and values by sensor id, lists them, and visits the tree.
///
/// @par Life
/// A new reader waits. Its own thread asks the hardware manager (D-Bus, system bus) every 250 ms whether it is
/// initialised. Then it maps the region, which stays mapped for the reader's life. If the wait budget is used up
/// first, the reader never finds anything.
///
/// @par Structure changes
/// The hardware manager announces them by the signal "shmStructureChanged". The signal only raises a counter; the
/// next look-up visits the region and rebuilds the index. The counter belongs to the process: the subscription of
/// each reader raises it, and the first reader that rebuilds its index sets it back for all. A process with
/// several readers passes force where it must not miss a change. The counter stays raised when a change arrives
/// during a rebuild, or a rebuild does not finish.
///
/// @par Links
/// The reader checks each link against the slot ranges and reads it once. A cyclic list of siblings or values ends
/// after as many slots as its table has. A point must not be its own descendant.
///
/// @par Visits
/// A visit collects the positions of a list before the list's first callback. So no point or value is skipped when
/// the writer adds or removes others between two callbacks. A slot that was removed or reused meanwhile is shown
/// with its content.
///
/// @par Without memory
/// std::bad_alloc. mpnt(), mps() and mvs() have changed nothing then; visits have made some of their callbacks. A
/// rebuild leaves the counter raised, so that the next look-up rebuilds the index, and restores the client's
/// visitor. mval() needs no memory unless it rebuilds the index.
///
/// @par Bus
/// The reader holds the connection on which it subscribed, so the subscription lasts while the hardware manager
/// cannot be reached. When the connection is closed, the reader logs that once at WARN and learns of no change any
/// more; its region stays readable. QelSharedMemoryFollower replaces such a reader.
///
/// @par Signals
/// The signal arrives in the GLib main context that was the thread-default one of the constructing thread. The
/// host must iterate it.
///
/// Logs in "qel.shm.access.reader", and as QelSharedMemoryAccess.
///
/// Threads: thread-safe for mpnt(), mval(), syncPositions(), modifications(), condition() and lastDelivery().
/// Visits and queries take no lock against the writer or against visitor(). Several threads may visit with one
/// reader at once. But mpnt(), mval() and syncPositions() replace the visitor while they rebuild the index: do not
/// call visit() or values() in one thread while another may rebuild, or use one reader per thread. The wait thread
/// calls initialized() and onInitialized() from the constructor on until the destructor of this class has joined
/// it. A derived class that overrides them must be ready for calls during its construction and destruction.
class QEL_EXPORT QelSharedMemoryReader : public QelSharedMemoryAccess, public IQelShmInitCallback {
public:
    /// Connects to the hardware manager, subscribes to its signal and starts the wait thread.
    /// @note Logs at INFO "start", at DEBUG the subscription, at CRIT a failure to connect.
    /// @param seconds       wait budget; the thread waits at most MAX_WAIT; 0 maps no region
    /// @param waitForRegion whether to block until the region is mapped and active, at most that many seconds
    ///                      (without a maximum); returns normally also if the time runs out
    /// @throws ex::TAVSimpleException when there is no proxy for the hardware manager
    /// @throws boost::thread_resource_error when the thread cannot be created
    QelSharedMemoryReader(unsigned int seconds, bool waitForRegion);

    // Virtual operations in the order of their slots (binary interface); new ones go last. openShm() comes between the
    // destructor and the others.

    /// Joins the wait thread, ends the subscription and unmaps the region.
    ///
    /// The join waits for a pause of 250 ms or for the poll under way. While the hardware manager's bus name has
    /// no owner, a poll creates the proxy up to three times, each time a call to the bus and a pause of 123 ms.
    /// Then it calls "initialized", at most 60 s.
    ///
    /// A forked child waits for nothing and leaves the subscription to its parent, whose threads and connection
    /// they are.
    /// @note Logs at DEBUG the end of the subscription, at INFO "done".
    ~QelSharedMemoryReader() override;

    /// Rebuilds the index from sensor id to slot if the structure has changed.
    ///
    /// A rebuild visits the whole region, hooks included, with a visitor of its own in place of the client's.
    /// Afterwards the counter becomes 0 if no change arrived meanwhile; otherwise it falls by one, but not below
    /// 1. After a rebuild that does not finish (something throws, visits are stopped, or a hook installs a
    /// visitor) the counter is at least 1.
    /// @note Logs the counter at DEBUG, unless it throws.
    ///
    /// Threads: thread-safe.
    /// @param force whether to rebuild in any case
    /// @throws std::system_error when the mutex cannot be locked; index and counter do not change then
    /// @throws std::bad_alloc and what a hook throws
    virtual void syncPositions(bool force);

    /// Asks the hardware manager once whether it is initialised.
    /// @note Logs a failure at DEBUG.
    ///
    /// Threads: thread-bound to the wait thread.
    /// @return whether it is; false on any failure
    bool initialized() override;

    /// Maps the region and raises the modification counter. A second call does nothing. Do not call it directly.
    /// @note Logs the counter at DEBUG, a second call at WARN.
    ///
    /// Threads: thread-bound to the wait thread.
    void onInitialized() override;

    /// Visits a point, its values and its children, which are sorted by QelShmMPntCmp.
    /// @param point  must refer to a slot
    /// @param depth  passed to the callbacks; children get one more
    /// @param result passed to the callbacks
    virtual void visit(QelShmMPnt const& point, unsigned int depth,
                       std::shared_ptr<IQelVisitorResult>& result);

    /// Visits a point as above, with an empty result object.
    /// @param point must refer to a slot
    /// @param depth passed to the callbacks; children get one more
    virtual void visit(QelShmMPnt const& point, unsigned int depth);

    /// @name Hooks of visits, for derived readers
    /// What a hook leaves out is missing from the index too. By default the hooks leave out nothing.
    /// @{

    /// Called before each of the two top-level lists.
    /// @param result the visit's result object
    /// @return whether to visit the list; if not, its onUp() is not called either
    virtual bool onDown(std::shared_ptr<IQelVisitorResult>& result);

    /// Called before a point's children.
    /// @param point  the parent
    /// @param depth  of the parent
    /// @param result the visit's result object
    /// @return whether to visit the children; if not, their onUp() is not called either
    virtual bool onDown(QelShmMPnt const& point, unsigned int depth,
                        std::shared_ptr<IQelVisitorResult>& result);

    /// Called after a list of siblings, also after an empty one.
    /// @param result the visit's result object
    virtual void onUp(std::shared_ptr<IQelVisitorResult>& result);

    /// Called before a point's values.
    /// @param svid   sensor id of the point
    /// @param depth  of the point
    /// @param result the visit's result object
    /// @return whether to visit the values; if not, afterValues() is not called either
    virtual bool beforeValues(long long svid, unsigned int depth, std::shared_ptr<IQelVisitorResult>& result);

    /// Called after a point's values.
    /// @param result the visit's result object
    virtual void afterValues(std::shared_ptr<IQelVisitorResult>& result);
    /// @}

    /// Visits the root, the top-level devices and the top-level groups, both in the order of their lists. While no
    /// region is mapped, only onRoot(), onDown() and onUp() are called.
    void visit();

    /// Visits the whole region as above.
    /// @param result passed to the callbacks
    void visit(std::shared_ptr<IQelVisitorResult>& result);

    /// Passes a point's values to the visitor, until its mvFound() returns true or another visitor is installed.
    /// Does nothing without a visitor.
    /// @param point  must refer to a slot
    /// @param depth  passed to the callbacks
    /// @param result passed to the callbacks
    void values(QelShmMPnt const& point, unsigned int depth, std::shared_ptr<IQelVisitorResult>& result);

    /// Installs the visitor of all further visits and destroys the former one. Takes no lock.
    ///
    /// A callback or a hook may call it on the visiting thread. The new visitor then receives the rest of the
    /// visit, but not the rest of the values that were being visited. The former visitor is destroyed when no
    /// callback runs on this thread any more. If a hook calls it during a rebuild, the new visitor stays installed
    /// and the rebuild counts as unfinished.
    /// @param visitor null for none
    /// @throws std::bad_alloc from inside a callback, without memory; the former visitor stays then
    void visitor(std::unique_ptr<IQelSharedMemoryVisitor> visitor);

    /// Scans all points and their values in the order of visit(), without a visitor and without hooks:
    ///
    ///     for (auto const& point : reader.points()) {
    ///         for (auto const& value : point.values()) {
    ///             std::cout << std::string(2 * point.depth(), ' ') << value << '\n';
    ///         }
    ///     }
    ///
    /// stopVisits() does not stop a scan. QelShmPointRange says what it relies on.
    ///
    /// Threads: thread-safe.
    /// @return the points; none if nothing is mapped at this moment. The reader must outlive the range
    QelShmPointRange points() const { return QelShmPointRange(region()); }

    /// Lists points.
    /// @param first position of the first sibling; MP_COUNT (800) and above give an empty list
    /// @param type  only points of this type, or SensorType::Any
    /// @return the point and its following siblings, in their order
    std::list<QelShmMPnt> mps(unsigned int first, SensorType::SensorType type) const;

    /// Lists values.
    /// @param first position of the first value; MV_COUNT (8800) and above give an empty list
    /// @return the value and those that follow it in its chain, in their order
    std::forward_list<QelShmMVal> mvs(unsigned int first) const;

    /// Finds a point by its sensor id, after syncPositions(force).
    ///
    /// Threads: thread-safe.
    /// @param svid  sensor id of the point
    /// @param force whether to rebuild the index first
    /// @return the point, null when there is none. If the writer reuses the slot later, the handle shows the new
    ///         content
    std::unique_ptr<QelShmMPnt> mpnt(long long svid, bool force);

    /// Finds a value by its sensor id, after syncPositions(force). It never returns another point's value, not
    /// even after an unannounced change: the slot in the index must hold the point's id, a list of the tree must
    /// contain the slot, and the value is searched in the point's chain.
    ///
    /// Threads: thread-safe.
    /// @param svid  sensor id of the value
    /// @param force whether to rebuild the index first
    /// @return the first value of the chain with this key, a null handle when there is none. If the writer removes
    ///         the point later, or during this call, the handle may show the slot's next content
    QelShmMVal mval(long long svid, bool force);

    /// Finds a value that is read repeatedly. While no change is announced it takes no lock and searches no index.
    /// It only checks that the slots still hold the point's id and the key, that the point's predecessor leads to
    /// it, and that the point's chain leads to the value. If not, it looks the value up again.
    ///
    /// Threads: thread-safe. Each thread needs a QelShmKeptMVal of its own.
    /// @param kept names the value and remembers its place
    /// @return the value, a null handle when there is none
    QelShmMVal mval(QelShmKeptMVal& kept);

    /// Tells whether the region is current, as conditionOf() decides. Examines the object under the region's name
    /// and, for Active and Silent, the times of all points and values: some ten microseconds. Logs, throws and
    /// allocates nothing.
    ///
    /// A writer locks its object from its start to its end. Once this reader has seen its object locked, an
    /// unlocked one is Gone: its writer has ended or was killed. A writer of a version that locks nothing is
    /// judged by the name and by its silence.
    ///
    /// The answer describes one moment: the writer may end before the next look-up.
    ///
    /// Threads: thread-safe.
    /// @param maxAge age up to which the newest value is current, by the system clock. A value from the future is
    ///               current; 0 or less allows only a value of the present millisecond; with ANY_AGE no region is
    ///               silent
    /// @return the condition
    QelShmCondition condition(std::chrono::milliseconds maxAge) const;

    /// Finds the newest time of all points and values that can be reached. Visits each slot at most once.
    ///
    /// Threads: thread-safe.
    /// @return ms since 1970 UTC; 0 for never and while nothing is mapped
    std::uint64_t lastDelivery() const;

    /// Reads the modification counter of the process: the announced changes that no index contains yet. With one
    /// reader in the process, 0 means that its index contains all of them.
    ///
    /// Threads: thread-safe.
    /// @return the counter
    unsigned int modifications() const;

    /// Receives "shmStructureChanged" from GLib and raises the modification counter.
    /// @note Logs at DEBUG the counter, or "strange call" for arguments that are not of the hardware manager.
    ///
    /// Threads: thread-safe.
    /// @param connection not null
    /// @param sender     not used
    /// @param path       "/"
    /// @param interface  "org.qel.HardwareManager"
    /// @param signal     other signals than "shmStructureChanged" are ignored
    /// @param parameters not null
    /// @param userData   not used
    static void handler(GDBusConnection* connection, char const* sender, char const* path,
                        char const* interface, char const* signal, GVariant* parameters, void* userData);

protected:
    /// Stops visits: while set, the visit of a point returns at once. A rebuild then misses points and leaves the
    /// process's counter raised, so each look-up rebuilds the index until a rebuild is complete.
    ///
    /// Threads: thread-safe.
    /// @param stop whether to stop
    void stopVisits(bool stop) { stop_ = stop; }

private:
    class ScopedIndexVisitor;

    /// Creates the proxy, or throws what the constructor throws.
    void connect();
    /// Subscribes to the hardware manager's signal.
    void subscribe();
    /// Returns the id of the ended subscription, 0 when there was none.
    unsigned int unsubscribe();
    /// Gives up the proxy, if there is one.
    void releaseProxy();
    /// Sleeps until the region is mapped and active, at most that many seconds.
    void waitUntilActive(unsigned int seconds) const;
    /// Raises the modification counter and logs it as this operation.
    static void countModification(char const* operation);
    friend class FollowedReader;
    /// Calls "initialized"; false on any failure.
    bool askManager();
    /// Whether the bus connection was closed.
    bool hasLostItsBus() const;
    /// Whether there is no region and the wait is over.
    bool willMapNothing() const;
    /// condition() for an object that was examined just now.
    QelShmCondition conditionAt(NamedRegion const& named, std::chrono::milliseconds maxAge) const;
    /// Visits one of the two top-level lists.
    void visitTopLevel(std::uint32_t record::QelShmRoot::*head, std::shared_ptr<IQelVisitorResult>& result);
    /// Visits the points of a list.
    void visitList(PositionList const& list, unsigned int depth, std::shared_ptr<IQelVisitorResult>& result);
    /// values() within a VisitsOfThread::Callback.
    void valuesTo(QelShmMPnt const& point, unsigned int depth, std::shared_ptr<IQelVisitorResult>& result);
    /// valuesTo() for values that do not lie side by side.
    void scatteredValuesTo(QelShmMPnt const& point, unsigned int depth,
                           std::shared_ptr<IQelVisitorResult>& result);
    /// Returns false when the point's other values are to be skipped.
    bool tell(IQelSharedMemoryVisitor& visitor, QelShmMVal const& value, long long svid, unsigned int depth,
              std::shared_ptr<IQelVisitorResult>& result);
    /// Collects siblings and sorts them.
    void collectSorted(PositionList& list, unsigned int head) const;
    /// Returns false if points may be missing. The caller holds the mutex.
    bool buildIndex();
    /// Returns the slot of a point, null when the index does not know it. The caller holds the mutex.
    QelShmMP const* pointOf(long long svid) const;
    /// Searches the index and the point's chain, and notes the place.
    QelShmMVal lookUp(QelShmKeptMVal& kept);

    // The order of the members down to visitor_ is part of the binary interface.
    std::unique_ptr<QelShmInitWaitThread> waitThread_;
    std::atomic<bool> initialized_{false};
    hardwaremanager* proxy_ = nullptr; // one reference; initialized() may replace it
    unsigned int subscription_ = 0;
    std::atomic<bool> stop_{false};
    PositionIndex positions_;
    std::recursive_mutex mutex_; // guards positions_ and visitor_ while the index is built or looked up
    std::unique_ptr<IQelSharedMemoryVisitor> visitor_;
    // Members that came later.
    std::atomic<unsigned int> rebuilds_{0}; // number of the newest index
    std::atomic<unsigned int> cuts_{0};     // counts points that were not visited because of stop_
    IQelSharedMemoryVisitor const* indexing_ = nullptr; // the visitor of the rebuild under way
    std::unique_ptr<BusConnection> bus_;                // the subscription is made on it
    std::unique_ptr<HeldRegion> held_;                  // the mapped object
    std::atomic<unsigned int> pollsLeft_; // of the wait thread, which maps nothing after the last one
};

} // namespace shm
