// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "inspect/naming/ValuePath.h"

#include "format/HexText.h"
#include "format/KeyTable.h"
#include "inspect/naming/PointPath.h"
#include "inspect/naming/StateWord.h"
#include "inspect/naming/Svid.h"

#include <algorithm>
#include <cstdint>
#include <limits>

namespace qel::inspect {

std::string keyWord(unsigned short key) {
    auto const name = shm::keyRow(key).name;
    return name.empty() ? shm::hexText(key, 4) : nameWord(name);
}

std::optional<unsigned short> parseKey(std::string_view text) {
    if (auto const number = parseSvid(text)) {
        auto const isKey = *number >= 0 && *number <= std::numeric_limits<std::uint16_t>::max();
        return isKey ? std::optional(static_cast<unsigned short>(*number)) : std::nullopt;
    }
    auto const word = nameWord(text);
    auto const* const row =
        std::find_if(shm::keyTable.begin(), shm::keyTable.end(),
                     [&](shm::KeyRow const& each) { return nameWord(each.name) == word; });
    return row == shm::keyTable.end() ? std::nullopt : std::optional(row->code);
}

std::string valuePath(long long point, unsigned short key) {
    return pointPath(point) + ':' + keyWord(key);
}

} // namespace qel::inspect
