// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// The writing side of the region: builds the tree of points, keeps values and states current.
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

class PointIndex;
class QelStateLedThread;
class WriterLock;

/// Owns the region, in one process at a time. Order of use: construct, addStructure(), setActive() (readers
/// start now), then updateMV() for every measured value and propagateStates() after each batch of them;
/// modifyStructure() when sensors come or go. Readers learn of a changed structure from the process that
/// drives the writer, not from here.
///
/// A sensor id (svid) names a point when its low 16 bits are zero; a value's svid carries the value's key
/// there.
///
/// Points and values are taken from queues of free slots, lowest first; a freed slot is used again after all
/// that were free before it. Nothing grows: there are MP_COUNT points and MV_COUNT values.
///
/// Without a region (it could not be created, or was closed) no operation touches memory: addMP() finds no
/// slot, updateMV() gives false, injectTypes() applies nothing, setActive(), propagateStates() and
/// removeStructure() do nothing; addMP(), setActive() and propagateStates() log this at ERROR.
///
/// Logs in "qel.shm.access.writer". A failing mutex surfaces as std::system_error except from updateMV() and
/// propagateStates().
///
/// When memory ends (std::bad_alloc), no slot is ever freed twice or in use twice, each point that the region shows is
/// known, and each value that it shows can be updated. Strong below means that a failed call has changed nothing that
/// can be seen, basic that a part of it is done and that the same call, made again, does the rest.
///
/// Threads: whoever adds or removes points is alone with the writer meanwhile, and one thread at a time changes the
/// structure. Values may be added to a known point while other threads call updateMV(), for the same point too.
/// updateMV() may run in several threads for different points, but not while propagateStates() runs.
class QEL_EXPORT QelSharedMemoryWriter : public QelSharedMemoryAccess, public QelSharedMemoryStates {
public:
    /// Point svid to definition, parents before their children.
    using Definitions = std::map<long long, MPDef, SvidCmp>;

    /// Creates or reuses the shared-memory object and wipes it; readers see it inactive until setActive().
    /// Makes the status LED green and starts its thread. Logs at INFO "start", what fails as openShm() does,
    /// and at WARN another writer that is alive and writes into the same object. Throws
    /// boost::thread_resource_error when the LED thread cannot be created.
    QelSharedMemoryWriter();

    QelSharedMemoryWriter(QelSharedMemoryWriter const&) = delete;
    QelSharedMemoryWriter& operator=(QelSharedMemoryWriter const&) = delete;

    // Virtual operations in slot order, part of the binary contract; new ones go last. openShm() is
    // inherited.

    /// Stops the status LED, closes the region and removes its name. Logs at INFO "done".
    ~QelSharedMemoryWriter() override;

    // Structure

    /// Adds every point and value that is not in the region yet. What was added before an exception stays.
    /// @param definitions keys are point svids; the root's svid is skipped, with a key in it too
    /// @return whether a point or a value had to be added
    /// Throws ex::InvalidSensorIdException when a parent is not known or no slot is free for a point, after
    /// an ERROR line. Logs each new point at DEBUG, and as addMP(). Memory: basic, point by point as addMP().
    bool addStructure(Definitions const& definitions);

    /// Adds one point, or the missing values of a known one.
    /// @param svid the point; a key in it is ignored
    /// @param mvs  its keys are the values to have, what they map to is ignored
    /// @param ppos the parent's position, NO_POSITION for a top-level point; ignored for a known point
    /// @return the point's position, NO_POSITION when no slot is free, and for the root's id
    /// Memory: strong as to the point, which is linked and known or is neither; basic as to its values, each of which
    /// is linked and known or neither. A value's slot that was taken in vain is filled anew and stays free.
    /// Logs at INFO; at WARN when no slot is free, for each value that the point has already, for each value
    /// beyond MV_COUNT (it is left out), and for a top-level point of a sensor type that has no list in the
    /// root.
    unsigned int addMP(long long svid, std::map<unsigned short, unsigned int> const& mvs, unsigned int ppos);

    /// Stores sub-type codes into points. Logs each at DEBUG.
    /// @param types svid (of a point or any of its values) to code; the low 8 bits count
    /// @return the svids whose points are known, as they were handed in
    /// Memory: basic; codes that are stored stay.
    std::unordered_set<long long> injectTypes(std::unordered_map<long long, int> const& types);

    /// Brings the region in line with the sensors that exist now: adds what is new, then removes what has
    /// gone.
    /// @param svids every point and value that exists; the point-level state keys need no value slot
    /// @return whether anything was added or removed
    /// Throws and logs as addStructure() and removeStructure(); logs the number of svids at DEBUG. Memory: basic; when
    /// an addition fails nothing has been removed.
    bool modifyStructure(std::unordered_set<long long> const& svids);

    /// Takes every known point that has no definition out of the tree and frees its slots; values are not
    /// compared. Points are removed one by one: one that stays keeps its links even if its parent goes.
    /// @return whether a point was removed
    /// Memory: basic; each point is removed and forgotten, its slots free, or stays as it was. Logs each removed point
    /// at INFO.
    bool removeStructure(Definitions const& definitions);

    // Values and states

    /// Stamps the root, its version last, so that readers may begin; the LED shows "On" as the root does. Logs at INFO.
    /// Takes the LED thread's mutex when the root's state was another one before.
    void setActive();

    /// Stores one value's time, state and number; the number of an energy is divided by 1000. A point-level
    /// state key sets time and state of the point itself. Does not propagate states.
    /// @param svid  the value
    /// @param value released when the call ends
    /// @return false when the value is null, when its point or key is unknown, when it is no number (time and
    ///         state are stored nevertheless), or when something failed
    /// Logs nothing, but at ERROR an exception that is no std::exception. Throws nothing and needs no memory. Takes the
    /// mutex of the point's definition for the look-up of the key.
    bool updateMV(long long svid, std::unique_ptr<measval::MeasureValue> value) noexcept;

    /// Combines the states of all points, children before their parents, and from them the global state,
    /// which goes to the root and, when it changed, to the status LED. A std::exception ends it early and is
    /// swallowed, any other one ends the process. Needs no memory.
    void propagateStates() noexcept;

protected:
    /// Where a point belongs.
    struct Parent {
        long long svid = -1;            ///< -1 for none
        unsigned int pos = NO_POSITION; ///< NO_POSITION for none
    };

    // References to slots are references into the mapped region.

    /// Appends the values that the point does not have yet to its chain, keys ascending. Memory: basic as addMP().
    void addMVs(QelShmMP& mp, MPDef& definition, std::map<unsigned short, unsigned int> const& mvs);

    /// Initialises a slot that nothing refers to. The region must be mapped and pos below MP_COUNT
    /// (MV_COUNT). Logs at DEBUG.
    QelShmMP& initMP(unsigned int pos, long long svid, unsigned int ppos);
    record::QelShmMVal& initMV(unsigned int pos, unsigned short key);

    /// Links an initialised point among its siblings. Their order is decided here and never changes.
    /// Logs at DEBUG, at INFO in front of which sibling it goes.
    void connectMP(QelShmMP& mp);

    /// The parent by the levels of an svid; none for a top-level point. Throws as bailout() when it is not
    /// known.
    Parent parentOf(long long svid) const;

    /// Logs at ERROR and throws ex::InvalidSensorIdException for svid.
    [[noreturn]] void bailout(long long svid) const;
    [[noreturn]] void bailout(long long svid, long long parentSvid) const;

    /// Frees a point and its values; the slots keep their content until they are used again.
    /// @param topnode true: just this point, taken out of its sibling list; false: its following siblings and
    ///                everything below them as well, links untouched
    /// @param removed collects the svids of freed points
    /// A slot that is free already is not freed again. Memory: strong for each point. Logs at INFO, at WARN a point that
    /// is not known.
    void unlinkMP(unsigned int pos, bool topnode, std::unordered_set<long long>& removed);

    /// Takes a point out of its sibling list; its children stay linked to it.
    void disconnectMP(QelShmMP& mp);

    /// Combines the states of a point, all points below it, and its following siblings.
    /// @param out takes what each of the siblings reports to its parent
    /// Memory: basic; what is combined stays.
    void defineState(QelShmMP& mp, std::list<eStatus_Bits>& out);

private:
    /// The slot at a position, null for none.
    QelShmMP* pointAt(unsigned int pos) const;
    record::QelShmMVal* valueAt(unsigned int pos) const;

    /// initMV() without the log line.
    record::QelShmMVal& wipeMV(unsigned int pos, unsigned short key);

    /// False, after an ERROR line, while no region is mapped.
    bool isMapped(char const* operation) const;

    /// The root's list for top-level points of the svid's sensor type, null when there is none.
    std::uint32_t* listHead(long long svid) const;

    /// Makes a point the first of that list; logs at WARN a sensor type that has none.
    void setListHead(long long svid, unsigned int pos);

    void insertBefore(QelShmMP& mp, unsigned int curpos);

    /// Gives the slots of a point and of its values back and enters its svid into removed; strong. Logs at WARN a
    /// point that is not known.
    void freeSlotsOf(QelShmMP const& mp, unsigned int pos, std::unordered_set<long long>& removed);

    // In the order of the binary contract.
    std::unique_ptr<QelStateLedThread> ledThread_;
    std::recursive_mutex structureMutex_; // guards the adding and removing of points
    std::deque<unsigned int> freeMVs_;
    std::deque<unsigned int> freeMPs_;
    Definitions points_; // by point svid
    // Not part of it, so behind all others.
    std::unique_ptr<PointIndex> index_; // the same points, flat
    std::unique_ptr<WriterLock> lock_;  // null without a region
};

} // namespace shm
