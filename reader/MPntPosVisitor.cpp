#include "reader/MPntPosVisitor.h"

namespace shm {

void MPntPosVisitor::onMPnt(QelShmMPnt const& point, unsigned int /*depth*/,
                            std::shared_ptr<IQelVisitorResult>& /*result*/) {
    index_->emplace(point->guid, point->pos);
    found_ = true; // values are of no interest: the walk over them ends at each point's first one
}

} // namespace shm
