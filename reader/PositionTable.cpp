#include "reader/PositionTable.h"

namespace shm {

void PositionTable::takeOver() {
    if (index_->size() > positions_.size()) {
        return; // points that changed their ids during the visit
    }
    numbers_.clear();
    std::uint16_t number = 0;
    for (auto const& [svid, pos] : *index_) {
        numbers_.insert(svid, number);
        positions_[number] = pos;
        ++number;
    }
    isCurrent_ = true;
}

std::uint32_t PositionTable::findInIndex(long long svid) const {
    auto const found = index_->find(svid);
    return found == index_->end() ? NO_POSITION : found->second;
}

} // namespace shm
