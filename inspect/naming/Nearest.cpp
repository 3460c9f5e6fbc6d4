// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "inspect/naming/Nearest.h"

#include <algorithm>
#include <cctype>
#include <numeric>
#include <utility>
#include <vector>

namespace qel::inspect {

namespace {

bool isSameLetter(char left, char right) {
    return std::tolower(static_cast<unsigned char>(left)) == std::tolower(static_cast<unsigned char>(right));
}

} // namespace

std::size_t editDistance(std::string_view from, std::string_view into) {
    std::vector<std::size_t> row(into.size() + 1);
    std::iota(row.begin(), row.end(), std::size_t{0});
    for (std::size_t i = 0; i < from.size(); ++i) {
        auto diagonal = std::exchange(row[0], i + 1);
        for (std::size_t j = 0; j < into.size(); ++j) {
            auto const changed = diagonal + (isSameLetter(from[i], into[j]) ? 0 : 1);
            diagonal = row[j + 1];
            row[j + 1] = std::min({changed, diagonal + 1, row[j] + 1});
        }
    }
    return row.back();
}

void Nearest::add(std::string_view candidate) {
    auto const distance = editDistance(text_, candidate);
    if (distance < distance_) {
        distance_ = distance;
        nearest_ = candidate;
    }
}

} // namespace qel::inspect
