// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tests/cuts/Jobs.h"

#include "tests/support/Rounds.h"
#include "tests/support/Sanitizers.h"

#include <cstddef>

namespace qel::test {

namespace {

constexpr unsigned slowness = underAddressSanitizer || underThreadSanitizer ? 8 : 1;

constexpr std::size_t small = 3;   ///< points of trees that are walked completely
constexpr std::size_t sample = 20; ///< trees of each larger size in the brief run

unsigned numbersOfValues(std::size_t points) {
    unsigned numbers = 1;
    for (std::size_t i = 0; i < points; ++i) {
        numbers *= 3;
    }
    return numbers;
}

/// The tree with all numbers of values that this run gives it.
std::vector<Tree> variants(Tree const& shape, bool isLong) {
    std::vector<Tree> trees;
    auto const points = shape.points.size();
    if (isLong && points <= small) {
        for (unsigned number = 0; number < numbersOfValues(points); ++number) {
            trees.push_back(withValuesByNumber(shape, number));
        }
        return trees;
    }
    unsigned const first = isLong || points <= small ? (points < 6 ? 0 : 3) : 4;
    unsigned const last = isLong || points <= small ? valuePatterns : 5;
    for (unsigned pattern = first; pattern < last; ++pattern) {
        trees.push_back(withValues(shape, pattern));
    }
    return trees;
}

} // namespace

std::vector<Tree> treesToWalk(std::size_t points, unsigned part, unsigned parts) {
    bool const isLong = rounds(0, 1) != 0 && slowness == 1;
    std::vector<Tree> trees;
    std::size_t number = 0;
    for (std::size_t size = 1; size <= points; ++size) {
        auto const shapes = treesOf(size);
        std::size_t const step = isLong || size <= small ? 1 : shapes.size() / sample;
        for (std::size_t shape = 0; shape < shapes.size(); shape += step) {
            for (auto& tree : variants(shapes[shape], isLong)) {
                if (number++ % (std::size_t{parts} * slowness) == part) {
                    trees.push_back(std::move(tree));
                }
            }
        }
    }
    return trees;
}

} // namespace qel::test
