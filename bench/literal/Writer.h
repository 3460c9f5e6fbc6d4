// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// The writing side, the straightforward way.
#pragma once

#include "bench/literal/MPDef.h"
#include "bench/support/SharedObject.h"
#include "domain/MeasureValue.h"
#include "domain/eStatus_Bits.h"
#include "region/QelShmRecords.h"

#include <deque>
#include <list>
#include <memory>
#include <mutex>
#include <optional>

namespace bench::literal {

constexpr char objectName[] = "bench-literal";

/// Makes the same region as the library's writer, store by store, and logs the same lines, with ordered maps, lists and
/// locks alone: the measure that the library's shortcuts are held against. No status LED, no removal. Tests hold its
/// bytes, its stores and its log lines.
class Writer {
public:
    Writer();

    /// Maps and wipes a fresh region.
    void openShm();

    bool addStructure(Definitions const& definitions);
    void setActive();
    bool updateMV(long long svid, std::unique_ptr<measval::MeasureValue> value);
    void propagateStates();

    /// Null before openShm().
    shm::record::Region const* region() const { return region_; }

private:
    bool isMapped(char const* operation) const;
    unsigned int addMP(long long svid, Keys const& mvs, unsigned int ppos);
    void addMVs(shm::QelShmMP& mp, MPDef& definition, Keys const& mvs);
    shm::QelShmMP& initMP(unsigned int pos, long long svid, unsigned int ppos);
    shm::record::QelShmMVal& initMV(unsigned int pos, unsigned short key);
    void connectMP(shm::QelShmMP& mp);
    void insertBefore(shm::QelShmMP& mp, shm::QelShmMP& current);
    void setListHead(shm::QelShmMP const& mp);
    unsigned int parentOf(long long svid) const;
    void defineState(shm::QelShmMP& mp, std::list<eStatus_Bits>& out);

    std::optional<SharedObject> object_;
    shm::record::Region* region_ = nullptr;
    std::recursive_mutex mutex_;
    std::deque<unsigned int> freeMVs_;
    std::deque<unsigned int> freeMPs_;
    Definitions points_;
};

} // namespace bench::literal
