// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tests/tools/replay/ShippedRecordings.h"

#include <fstream>
#include <sstream>

namespace qel::test {

std::vector<std::string> columnsOf(std::string const& file) {
    std::string header;
    std::ifstream stream(file);
    std::getline(stream, header);
    std::istringstream cells(header);
    std::string name;
    std::getline(cells, name, ','); // the time
    std::vector<std::string> names;
    while (std::getline(cells, name, ',')) {
        names.push_back(name);
    }
    return names;
}

} // namespace qel::test
