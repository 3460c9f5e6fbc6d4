/// @file
/// Visitor that builds a position index anew out of the memory of the former one.
#pragma once

#include "reader/MPntPosVisitor.h"

namespace shm {

/// Does what MPntPosVisitor does. A structure changes by few points, so nearly all nodes of the former index
/// serve again and nothing is allocated for them.
class MPntPosRefill : public MPntPosVisitor {
public:
    /// @param index to empty and fill, not owned; must outlive the visitor
    explicit MPntPosRefill(PositionIndex& index);

    void onMPnt(QelShmMPnt const& point, unsigned int depth,
                std::shared_ptr<IQelVisitorResult>& result) override;

private:
    PositionIndex former_;
};

} // namespace shm
