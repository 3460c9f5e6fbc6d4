// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// Visitor that collects the slot position of each point.
#pragma once

#include "reader/BaseQelShmVisitor.h"
#include "region/QelExport.h"

#include <cstdint>
#include <memory>
#include <unordered_map>

namespace shm {

/// The reader's index: a point's sensor id to its slot position.
using PositionIndex = std::unordered_map<long long, std::uint32_t>;

/// Fills a position index during a visit. Of several points with one sensor id it keeps the first.
///
/// Threads: thread-bound to the visiting thread.
class QEL_EXPORT MPntPosVisitor : public BaseQelShmVisitor {
public:
    /// @param index to fill; not owned, must outlive the visitor
    explicit MPntPosVisitor(PositionIndex& index) : index_(&index) {}

    /// Adds the point unless its sensor id is there already.
    /// @param point  refers to its slot
    /// @param depth  not used
    /// @param result not used
    void onMPnt(QelShmMPnt const& point, unsigned int depth,
                std::shared_ptr<IQelVisitorResult>& result) override;

private:
    PositionIndex* index_;
};

} // namespace shm
