// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "inspect/naming/StateWord.h"

#include "format/StateName.h"
#include "inspect/naming/Svid.h"

#include <algorithm>
#include <cctype>

namespace qel::inspect {

std::string nameWord(std::string_view name) {
    std::string word;
    bool isBetween = false;
    for (char const character : name) {
        auto const byte = static_cast<unsigned char>(character);
        if (std::isalnum(byte) == 0) {
            isBetween = !word.empty();
            continue;
        }
        if (isBetween) {
            word += '-';
            isBetween = false;
        }
        word += static_cast<char>(std::tolower(byte));
    }
    return word;
}

std::string stateWord(eStatus_Bits state) {
    auto const* const row = shm::findRow(shm::stateTable, state);
    return row == nullptr ? std::to_string(static_cast<int>(state)) : nameWord(row->text);
}

std::optional<eStatus_Bits> parseState(std::string_view text) {
    auto const number = parseSvid(text);
    auto const word = nameWord(text);
    auto const* const row =
        std::find_if(shm::stateTable.begin(), shm::stateTable.end(), [&](auto const& each) {
            return number ? *number == static_cast<int>(each.code) : nameWord(each.text) == word;
        });
    return row == shm::stateTable.end() ? std::nullopt : std::optional(row->code);
}

} // namespace qel::inspect
