// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tools/qelshm/terminal/ExactText.h"

#include <array>
#include <charconv>

namespace qel::tools {

std::string exactText(double number) {
    std::array<char, 32> text{};
    auto const result = std::to_chars(text.data(), text.data() + text.size(), number);
    return {text.data(), result.ptr};
}

} // namespace qel::tools
