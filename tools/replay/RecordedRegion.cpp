#include "tools/replay/RecordedRegion.h"

#include <stdexcept>

namespace qel::tools {

RecordedRegion::RecordedRegion() : QelSharedMemoryAccess(shm::ShmAccess::Write) {
    QelSharedMemoryAccess::openShm();
    if (!root()) {
        throw std::runtime_error("the shared memory cannot be created; --log-level error tells why");
    }
    lock_.emplace();
}

RegionChange RecordedRegion::store(inspect::Image const& image) {
    auto const storeOne = [](auto& field, auto const& value) {
        shm::storeField(field, value);
    };
    return RegionUpdate(*region(), image.region(), storeOne).run();
}

} // namespace qel::tools
