// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// The writing side of the region: builds the tree of points and keeps values and states current.
#pragma once

#include "domain/MeasureValue.h"
#include "region/QelExport.h"
#include "region/QelSharedMemoryAccess.h"
#include "region/QelShmRecords.h"
#include "states/QelSharedMemoryStates.h"
#include "writer/MPDef.h"
#include "writer/SvidCmp.h"

#include <cstdint>
#include <deque>
#include <list>
#include <map>
#include <memory>
#include <mutex>
#include <unordered_map>
#include <unordered_set>

namespace shm {

class QelStateLedThread;
class QelShmKeptUpdate;
class WriterLock;
struct WriterRecords;

/// Owns the region. Only one process at a time may have a writer.
///
/// @par Use
/// Construct, addStructure(), setActive() (readers start now). Then updateMV() for every measured value and
/// propagateStates() after each batch of values; modifyStructure() when sensors were connected or removed. The
/// process that runs the writer announces a changed structure to readers; the writer does not.
///
/// @par Sensor ids
/// A sensor id (svid) names a point when its low 16 bits are zero. A value's svid has the value's key there.
///
/// @par Slots
/// Points and values come from queues of free slots, lowest position first. A freed slot is reused after all slots
/// that were free before it. There are MP_COUNT points and MV_COUNT values; nothing grows.
///
/// @par Without a region
/// If the region could not be created, or was closed: addMP() finds no slot, updateMV() returns false,
/// injectTypes() stores nothing, and setActive(), propagateStates() and removeStructure() do nothing. addMP(),
/// setActive() and propagateStates() log this at ERROR.
///
/// @par Errors
/// A failing mutex throws std::system_error, except in updateMV() and propagateStates(). After std::bad_alloc no
/// slot is freed twice or used twice, every point in the region is known, and every value in the region can be
/// updated. *Strong guarantee* below means that a failed call has changed nothing visible. *Basic guarantee* means
/// that a failed call has done a part, and the same call does the rest.
///
/// Logs in "qel.shm.access.writer".
///
/// Threads: thread-bound to one thread at a time, which changes the structure. Adding or removing points requires
/// exclusive access. Adding values to a known point does not: other threads may call updateMV() meanwhile, also
/// for that point. updateMV() may run in several threads for different points, but not while propagateStates()
/// runs.
class QEL_EXPORT QelSharedMemoryWriter : public QelSharedMemoryAccess, public QelSharedMemoryStates {
public:
    /// Definition by point svid, parents before their children.
    using Definitions = std::map<long long, MPDef, SvidCmp>;

    /// Creates or reuses the shared-memory object and wipes it: readers see it inactive until setActive(). Makes
    /// the status LED green and starts its thread.
    /// @note Logs at INFO "start", at WARN another living writer of the same object, and as openShm().
    /// @throws boost::thread_resource_error when the LED thread cannot be created
    QelSharedMemoryWriter();

    QelSharedMemoryWriter(QelSharedMemoryWriter const&) = delete;
    QelSharedMemoryWriter& operator=(QelSharedMemoryWriter const&) = delete;

    // Virtual operations in the order of their slots (binary interface); new ones go last. openShm() is inherited.

    /// Ends the LED thread, closes the region and removes its name.
    /// @note Logs at INFO "done".
    ~QelSharedMemoryWriter() override;

    /// @name Structure
    /// @{

    /// Adds every point and value that is not in the region yet. What was added before an exception stays (basic
    /// guarantee, point by point as addMP()).
    /// @note Logs each new point at DEBUG, what it throws at ERROR, and as addMP().
    /// @param definitions by point svid; the root's svid is skipped, also with a key in it
    /// @return whether a point or a value was missing; true again for a value that found no free slot before
    /// @throws ex::InvalidSensorIdException when a parent is unknown or no slot is free for a point
    bool addStructure(Definitions const& definitions);

    /// Adds one point, or the missing values of a known point. A value without a free slot is left out.
    ///
    /// Strong guarantee for the point, basic for its values: each of them is linked and known, or neither. The
    /// slot of a value that could not be entered has a new content and stays free.
    /// @note Logs at INFO; at WARN when no slot is free, for each value that the point has already, for each value
    ///       that finds no slot, and for a top-level point whose sensor type has no list in the root.
    /// @param svid the point; its low 16 bits are ignored
    /// @param mvs  the keys are the point's values; what they map to is ignored
    /// @param ppos position of the parent, NO_POSITION for a top-level point; ignored for a known point
    /// @return position of the point; NO_POSITION when no slot is free, and for the root's svid
    unsigned int addMP(long long svid, std::map<unsigned short, unsigned int> const& mvs, unsigned int ppos);

    /// Stores type codes into points. Basic guarantee.
    /// @note Logs each code at DEBUG.
    /// @param types code by svid of the point or one of its values; only the low 8 bits are used
    /// @return those svids whose points are known, unchanged
    std::unordered_set<long long> injectTypes(std::unordered_map<long long, int> const& types);

    /// Adapts the region to the sensors that exist: first adds what is missing, then removes the rest. Basic
    /// guarantee; when an addition fails, nothing has been removed.
    /// @note Logs the number of svids at DEBUG, and as addStructure() and removeStructure().
    /// @param svids every existing point and value; the keys of point states take no value slot
    /// @return whether anything was added or removed
    /// @throws ex::InvalidSensorIdException as addStructure()
    bool modifyStructure(std::unordered_set<long long> const& svids);

    /// Removes every known point that has no definition from the tree and frees its slots. Does not compare
    /// values. Points are removed one by one: a child that stays keeps its links even if its parent is removed.
    /// Basic guarantee: each point is removed completely or not at all.
    /// @note Logs each removed point at INFO.
    /// @param definitions the points that stay, by point svid
    /// @return whether a point was removed
    bool removeStructure(Definitions const& definitions);
    /// @}

    /// @name Values and states
    /// @{

    /// Activates the region: writes the root, its version last. Root and LED show "On". Takes the LED thread's
    /// mutex if the root had another state before.
    /// @note Logs at INFO.
    void setActive();

    /// Stores one value's time, state and number. Energies arrive in Wh, VAh or VARh and are stored in kWh, kVAh
    /// or kVARh. The key of a point state sets time and state of the point itself; the number is ignored. Does not
    /// propagate states.
    ///
    /// Throws nothing and needs no memory. Locks the mutex of the point's definition to look the key up.
    /// @note Logs only an exception that is no std::exception, at ERROR.
    ///
    /// Threads: thread-safe for different points, but not while propagateStates() runs.
    /// @param svid  sensor id of the value
    /// @param value time in ms since 1970 UTC, state and number; destroyed at the end of the call
    /// @return false if the value is null, the point or key is unknown, the value is no number (time and state are
    ///         stored nevertheless), or something failed
    bool updateMV(long long svid, std::unique_ptr<measval::MeasureValue> value) noexcept;

    /// Combines the states of all points, children before their parents, and from them the global state. Stores a
    /// changed global state in the root and shows it on the LED. Needs no memory. A std::exception ends it early
    /// and is swallowed; any other exception ends the process.
    ///
    /// Returns at once if nothing has changed since the last time: no state and no list of points or values through
    /// this writer, and the root still holds the global state. A process that stores states into the region by itself
    /// says so by statesChanged().
    void propagateStates() noexcept;

    /// Stores one value as the other updateMV() does, for a caller that stores the same value repeatedly: the slot is
    /// remembered in `kept`. Only the first call, and the first one after points were removed, looks it up and locks
    /// the mutex of the point's definition. Throws nothing and needs no memory.
    /// @note Logs only an exception that is no std::exception, at ERROR.
    ///
    /// Threads: thread-safe for different points, but not while propagateStates() runs.
    /// @param kept      names the value
    /// @param number    any number, also NaN, of which a signalling one is stored as a quiet one; ignored for the key
    ///                  of a point state
    /// @param timestamp time in ms since 1970 UTC
    /// @param state     state
    /// @return false if the point or key is unknown, or something failed; nothing is stored then
    bool updateMV(QelShmKeptUpdate& kept, double number, std::uint64_t timestamp,
                  eStatus_Bits state) noexcept;
    /// @}

protected:
    /// The parent of a point.
    struct Parent {
        long long svid = -1;            ///< -1 for none
        unsigned int pos = NO_POSITION; ///< NO_POSITION for none
    };

    /// @name Steps of the operations above
    /// References to slots refer to the mapped region.
    /// @{

    /// Appends the missing values to a point's chain, keys ascending. Basic guarantee as addMP().
    /// @param mp         the point's slot
    /// @param definition the point's record
    /// @param mvs        the keys are the point's values
    void addMVs(QelShmMP& mp, MPDef& definition, std::map<unsigned short, unsigned int> const& mvs);

    /// Initialises a point's slot that no link leads to. The region must be mapped.
    /// @note Logs at DEBUG.
    /// @param pos  position of the slot, below MP_COUNT
    /// @param svid sensor id of the point
    /// @param ppos position of the parent, NO_POSITION for none
    /// @return the slot
    QelShmMP& initMP(unsigned int pos, long long svid, unsigned int ppos);

    /// Initialises a value's slot that no link leads to. The region must be mapped.
    /// @note Logs at DEBUG.
    /// @param pos position of the slot, below MV_COUNT
    /// @param key value key
    /// @return the slot
    record::QelShmMVal& initMV(unsigned int pos, unsigned short key);

    /// Links an initialised point among its siblings, at its final place in their order.
    /// @note Logs at DEBUG, and at INFO the sibling before which the point is inserted.
    /// @param mp the point's slot
    void connectMP(QelShmMP& mp);

    /// Finds the parent by the levels of a svid.
    /// @param svid sensor id of the point
    /// @return the parent, none for a top-level point
    /// @throws ex::InvalidSensorIdException by bailout() when the parent is unknown
    Parent parentOf(long long svid) const;

    /// Logs at ERROR that a point cannot be handled, and throws.
    /// @param svid sensor id of the point
    /// @throws ex::InvalidSensorIdException always
    [[noreturn]] void bailout(long long svid) const;

    /// Logs at ERROR that a point's parent is unknown, and throws.
    /// @param svid       sensor id of the point
    /// @param parentSvid sensor id of the parent
    /// @throws ex::InvalidSensorIdException always, for svid
    [[noreturn]] void bailout(long long svid, long long parentSvid) const;

    /// Frees the slots of a point and of its values. The slots keep their content until they are reused. A free
    /// slot is not freed again. Strong guarantee for each point.
    /// @note Logs at INFO, at WARN an unknown point.
    /// @param pos     position of the point
    /// @param topnode true: only this point, which leaves its list of siblings; false: also its following siblings and
    ///                everything below, without changing links
    /// @param removed receives the svids of freed points
    void unlinkMP(unsigned int pos, bool topnode, std::unordered_set<long long>& removed);

    /// Removes a point from its list of siblings. Its children stay linked to it.
    /// @param mp the point's slot
    void disconnectMP(QelShmMP& mp);

    /// Combines the states of a point, all points below it, and its following siblings. Basic guarantee.
    /// @param mp  the point's slot
    /// @param out receives the state that each of the siblings reports to its parent
    void defineState(QelShmMP& mp, std::list<eStatus_Bits>& out);

    /// Tells propagateStates() that states or links in the region were stored otherwise than by the operations of
    /// this class, all of which tell it themselves. The next propagation combines all states.
    ///
    /// Threads: thread-safe.
    void statesChanged() noexcept;
    /// @}

private:
    /// The point's slot at a position, null for none.
    QelShmMP* pointAt(unsigned int pos) const;
    /// The value's slot at a position, null for none.
    record::QelShmMVal* valueAt(unsigned int pos) const;

    /// initMV() without the log line.
    record::QelShmMVal& wipeMV(unsigned int pos, unsigned short key);

    /// updateMV() for a kept value that has to be looked up, or is a point's state.
    bool updateOtherwise(QelShmKeptUpdate& kept, double number, std::uint64_t timestamp,
                         eStatus_Bits state) noexcept;

    /// Looks a kept value up; false when it is gone.
    bool findSlot(QelShmKeptUpdate& kept) const noexcept;

    /// propagateStates() when something has changed.
    void propagateChanges() noexcept;

    /// Logs at ERROR and returns false while no region is mapped.
    bool isMapped(char const* operation) const;

    /// The root's list head for top-level points of the svid's sensor type, null when there is none.
    std::uint32_t* listHead(long long svid) const;

    /// Makes a point the first of that list. Logs at WARN a sensor type without a list.
    void setListHead(long long svid, unsigned int pos);

    /// Links a point before a sibling.
    void insertBefore(QelShmMP& mp, unsigned int curpos);

    /// Frees the slots of a point and of its values, and enters its svid into removed. Strong guarantee. Logs at
    /// WARN an unknown point.
    void freeSlotsOf(QelShmMP const& mp, unsigned int pos, std::unordered_set<long long>& removed);

    // The order of the members down to points_ is part of the binary interface.
    std::unique_ptr<QelStateLedThread> ledThread_;
    std::recursive_mutex structureMutex_; // guards the adding and removing of points
    std::deque<unsigned int> freeMVs_;
    std::deque<unsigned int> freeMPs_;
    Definitions points_; // by point svid
    // Members that came later.
    std::unique_ptr<WriterRecords> records_;
    std::unique_ptr<WriterLock> lock_; // null without a region
};

} // namespace shm
