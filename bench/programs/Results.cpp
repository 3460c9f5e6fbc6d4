// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "bench/programs/Results.h"

#include <fstream>
#include <iomanip>
#include <limits>
#include <stdexcept>

namespace bench {

void writeFindings(std::string const& path, Shape const& shape, std::vector<Finding> const& findings) {
    std::ofstream file(path);
    file << std::setprecision(std::numeric_limits<double>::max_digits10) << "[";
    char const* separator = "\n";
    for (auto const& finding : findings) {
        file << separator << R"({"shape": ")" << shape.name << R"(", "work": ")" << finding.work
             << R"(", "contender": ")" << finding.contender << R"(", "variant": ")" << finding.variant
             << R"(", "what": ")" << finding.what << R"(", "numbers": [)";
        char const* comma = "";
        for (auto const number : finding.numbers) {
            file << comma << number;
            comma = ", ";
        }
        file << "]}";
        separator = ",\n";
    }
    file << "\n]\n";
    file.close();
    if (!file) {
        throw std::runtime_error("cannot write " + path);
    }
}

} // namespace bench
