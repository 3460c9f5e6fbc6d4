// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// Lines of which less important parts go when there is too little room.
#pragma once

#include "tools/qelshm/watch/Ink.h"

#include <cstddef>
#include <string>
#include <vector>

namespace qel::watch {

/// A part of a line. Reentrant.
struct Piece {
    std::string text;
    int rank; ///< the lowest goes first
    Ink ink;
};

/// Leaves out the pieces of the lowest ranks until the others fit; one always stays. Pieces without text go, too.
/// Reentrant.
/// @param width of the line
/// @param gap   between two pieces
std::vector<Piece> fitting(std::vector<Piece> pieces, int width, int gap);

/// Columns that the pieces take, with the gaps between them. Reentrant.
int widthOf(std::vector<Piece> const& pieces, int gap);

} // namespace qel::watch
