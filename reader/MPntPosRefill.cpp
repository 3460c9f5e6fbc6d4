#include "reader/MPntPosRefill.h"

#include <utility>

namespace shm {

MPntPosRefill::MPntPosRefill(PositionIndex& index) : MPntPosVisitor(index) {
    former_.swap(index);
    index.reserve(former_.size());
}

void MPntPosRefill::onMPnt(QelShmMPnt const& point, unsigned int depth,
                           std::shared_ptr<IQelVisitorResult>& result) {
    if (former_.empty()) {
        MPntPosVisitor::onMPnt(point, depth, result);
        return;
    }
    auto node = former_.extract(former_.begin());
    node.key() = point->guid;
    node.mapped() = point->pos;
    index_->insert(std::move(node));
    found_ = true; // as the base class does
}

} // namespace shm
