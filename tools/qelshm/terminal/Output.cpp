// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tools/qelshm/terminal/Output.h"

#include <ostream>
#include <stdexcept>

namespace qel::tools {

void writeOutput(std::ostream& out, std::string_view text) {
    out << text << std::flush;
    if (!out) {
        throw std::runtime_error("the output cannot be written");
    }
}

} // namespace qel::tools
