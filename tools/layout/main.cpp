// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

// Prints layout.json, the region's layout and vocabulary for other languages.

#include "tools/layout/LayoutDocument.h"

#include <exception>
#include <iostream>

int main() {
    try {
        constexpr int indent = 2;
        constexpr bool asciiOnly = true;
        std::cout << qel::tools::layoutDocument().dump(indent, ' ', asciiOnly) << std::endl;
        return std::cout ? 0 : 1;
    } catch (std::exception const& failure) {
        std::cerr << "qel-layout: " << failure.what() << '\n';
        return 1;
    }
}
