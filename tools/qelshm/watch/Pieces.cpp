// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tools/qelshm/watch/Pieces.h"

#include "tools/qelshm/terminal/Utf8Text.h"

#include <algorithm>

namespace qel::watch {

int widthOf(std::vector<Piece> const& pieces, int gap) {
    int width = 0;
    for (auto const& piece : pieces) {
        width += (width == 0 ? 0 : gap) + static_cast<int>(tools::widthOf(piece.text));
    }
    return width;
}

std::vector<Piece> fitting(std::vector<Piece> pieces, int width, int gap) {
    pieces.erase(
        std::remove_if(pieces.begin(), pieces.end(), [](Piece const& piece) { return piece.text.empty(); }),
        pieces.end());
    while (pieces.size() > 1 && widthOf(pieces, gap) > width) {
        pieces.erase(
            std::min_element(pieces.begin(), pieces.end(),
                             [](Piece const& left, Piece const& right) { return left.rank < right.rank; }));
    }
    return pieces;
}

} // namespace qel::watch
