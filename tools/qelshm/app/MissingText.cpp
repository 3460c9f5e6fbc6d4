// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tools/qelshm/app/MissingText.h"

#include "region/QelShmRecords.h"

namespace qel::watch {

std::string missingText(inspect::RegionStatus const& status) {
    std::string const object = std::string("shared-memory object \"") + shm::REGION_NAME + '"';
    switch (status.condition) {
    case inspect::Condition::Absent:
        return "there is no " + object;
    case inspect::Condition::Unreadable:
        return "the " + object + " cannot be opened: " + inspect::openingProblem(status.source);
    case inspect::Condition::Replaced:
        return "the " + object + " has been replaced";
    case inspect::Condition::TooShort:
        return "the " + object + " has only " + std::to_string(status.size) + " of " +
               std::to_string(shm::REGION_SIZE) + " bytes";
    case inspect::Condition::Inactive:
        return "the region is not active";
    case inspect::Condition::Silent:
    case inspect::Condition::Active:
        break;
    }
    return {};
}

} // namespace qel::watch
