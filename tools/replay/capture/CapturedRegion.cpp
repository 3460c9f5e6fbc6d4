// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tools/replay/capture/CapturedRegion.h"

#include <cstdint>
#include <stdexcept>

namespace qel::tools {

namespace {

/// Stores as the writer does.
struct WriterStores {
    static void link(std::uint32_t& field, std::uint32_t pos) { shm::storeLink(field, pos); }

    template <typename Field>
    static void field(Field& field, Field const& value) {
        shm::storeField(field, value);
    }
};

} // namespace

CapturedRegion::CapturedRegion() : QelSharedMemoryAccess(shm::ShmAccess::Write) {
    QelSharedMemoryAccess::openShm();
    if (!root()) {
        throw std::runtime_error("the shared memory cannot be created; --log-level error tells why");
    }
    lock_.emplace();
}

RegionChange CapturedRegion::store(inspect::Image const& image) {
    return RegionUpdate(*region(), image.region(), WriterStores()).run();
}

} // namespace qel::tools
