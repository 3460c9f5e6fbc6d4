// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// Visitor that notes where each point lies.
#pragma once

#include "reader/BaseQelShmVisitor.h"
#include "region/QelExport.h"

#include <cstdint>
#include <memory>
#include <unordered_map>

namespace shm {

/// Slot position of each point by its sensor id.
using PositionIndex = std::unordered_map<long long, std::uint32_t>;

/// Fills a position index with the points of a visit. Of points with the same sensor id the first one stays.
class QEL_EXPORT MPntPosVisitor : public BaseQelShmVisitor {
public:
    /// @param index to fill, not owned; must outlive the visitor
    explicit MPntPosVisitor(PositionIndex& index) : index_(&index) {}

    void onMPnt(QelShmMPnt const& point, unsigned int depth,
                std::shared_ptr<IQelVisitorResult>& result) override;

private:
    PositionIndex* index_;
};

} // namespace shm
