// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tools/qelshm/terminal/CsvText.h"

namespace qel::tools {

std::string csvText(std::string_view text) {
    if (text.find_first_of(",\"\r\n") == std::string_view::npos) {
        return std::string(text);
    }
    std::string quoted(1, '"');
    for (char const letter : text) {
        quoted.append(letter == '"' ? 2 : 1, letter);
    }
    return quoted + '"';
}

} // namespace qel::tools
