// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "region/QelShmMPnt.h"

#include "region/TypeNames.h"

namespace shm {

std::string QelShmMPnt::tstr() const noexcept {
    return std::string(typeName(slot_->guid, slot_->type));
}

} // namespace shm
