// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// The reading side, the straightforward way.
#pragma once

#include "bench/support/SharedObject.h"
#include "domain/SensorType.h"
#include "reader/IQelSharedMemoryVisitor.h"
#include "reader/IQelVisitorResult.h"
#include "region/QelShmMPnt.h"
#include "region/QelShmMVal.h"
#include "region/QelShmRecords.h"

#include <atomic>
#include <forward_list>
#include <list>
#include <memory>
#include <mutex>
#include <unordered_map>

namespace bench::literal {

/// Shows what the library's reader shows of a region that is mapped already, with lists that are made anew for every
/// visit and a map that is filled by one. No link to the hardware manager. Tests hold what it shows.
class Reader {
public:
    Reader();
    virtual ~Reader();
    Reader(Reader const&) = delete;
    Reader& operator=(Reader const&) = delete;

    virtual void syncPositions(bool force);
    virtual void visit(shm::QelShmMPnt const& point, unsigned int depth,
                       std::shared_ptr<shm::IQelVisitorResult>& result);
    virtual bool onDown(std::shared_ptr<shm::IQelVisitorResult>& result);
    virtual bool onDown(shm::QelShmMPnt const& point, unsigned int depth,
                        std::shared_ptr<shm::IQelVisitorResult>& result);
    virtual void onUp(std::shared_ptr<shm::IQelVisitorResult>& result);
    virtual bool beforeValues(long long svid, unsigned int depth,
                              std::shared_ptr<shm::IQelVisitorResult>& result);
    virtual void afterValues(std::shared_ptr<shm::IQelVisitorResult>& result);

    void visit(std::shared_ptr<shm::IQelVisitorResult>& result);
    void values(shm::QelShmMPnt const& point, unsigned int depth,
                std::shared_ptr<shm::IQelVisitorResult>& result);
    void visitor(std::unique_ptr<shm::IQelSharedMemoryVisitor> visitor);
    std::list<shm::QelShmMPnt> mps(unsigned int first, SensorType::SensorType type) const;
    std::forward_list<shm::QelShmMVal> mvs(unsigned int first) const;
    std::unique_ptr<shm::QelShmMPnt> mpnt(long long svid, bool force);

private:
    SharedObject object_;
    shm::record::Region const* region_;
    std::atomic<unsigned int> modifications_;
    bool stop_ = false;
    std::unordered_map<long long, std::uint32_t> positions_;
    std::recursive_mutex mutex_;
    std::unique_ptr<shm::IQelSharedMemoryVisitor> visitor_;
};

} // namespace bench::literal
