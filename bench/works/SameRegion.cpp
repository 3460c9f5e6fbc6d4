// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "bench/works/SameRegion.h"

#include "bench/contenders/Library.h"
#include "bench/contenders/Literal.h"
#include "bench/support/SharedObject.h"
#include "bench/works/Entries.h"
#include "region/QelShmRecords.h"

#include <cstring>
#include <stdexcept>

namespace bench {

void checkSameRegion(Plan const& plan) {
    auto const library = writerOf<Library>(plan);
    auto const literalWriter = writerOf<Literal>(plan);
    library->propagate();
    literalWriter->propagate();
    SharedObject const region(shm::REGION_NAME, shm::REGION_SIZE, SharedObject::Access::Read);
    SharedObject const literalRegion(literal::objectName, shm::REGION_SIZE, SharedObject::Access::Read);
    if (std::memcmp(region.data(), literalRegion.data(), shm::REGION_SIZE) != 0) {
        throw std::runtime_error("the literal build makes another region than the library");
    }
}

} // namespace bench
