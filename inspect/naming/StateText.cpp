// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "inspect/naming/StateText.h"

#include "format/Print.h"
#include "region/QelShmMVal.h"
#include "region/QelShmRecords.h"

#include <sstream>
#include <string_view>

namespace qel::inspect {

// The library prints states as part of a value's line only; this takes the name out of such a line.
std::string stateText(eStatus_Bits state) {
    constexpr std::string_view before = ", state = ";
    constexpr std::string_view after = ", at = ";
    shm::record::QelShmMVal slot{};
    slot.state = state;
    std::ostringstream out;
    out << shm::QelShmMVal(&slot);
    std::string const line = out.str();
    auto const begin = line.find(before) + before.size();
    return line.substr(begin, line.rfind(after) - begin);
}

} // namespace qel::inspect
