// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tests/cuts/TreeShapes.h"

#include "tests/writer/WriterFixture.h"

#include <algorithm>
#include <array>
#include <functional>

namespace qel::test {

namespace {

constexpr int kindByteOf(char kind) {
    return kind == 'R' ? 4 : kind == 'I' ? 1 : kind == 'G' ? 2 : 0;
}

constexpr int deepestLevel = 4;
constexpr int spacing = 8; ///< between the numbers of siblings, for new ones in between

/// The id of a point with that number among its siblings.
long long idBelow(TreePoint const* parent, char kind, int number) {
    auto bits = parent == nullptr ? 0xFFFFFFFFFFFF0000ULL : static_cast<unsigned long long>(parent->svid);
    auto const setByte = [&](int byte, int value) {
        auto const shift = static_cast<unsigned int>(56 - 8 * byte);
        bits &= ~(0xFFULL << shift);
        bits |= static_cast<unsigned long long>(value) << shift;
    };
    int const level = parent == nullptr ? 0 : parent->level + 1;
    setByte(1, kindByteOf(kind));
    if (level == 0) {
        setByte(0, number);
    } else if (level <= deepestLevel) {
        setByte(level + 1, number);
        if (kind == 'I') { // what such sensors are ordered by
            setByte(3, number);
        }
    } else {
        setByte(deepestLevel + 1, static_cast<int>(bits >> 16U & 0xFFU) + number); // no id is as deep
    }
    return static_cast<long long>(bits);
}

void writeName(Tree& tree) {
    std::function<void(int)> const list = [&](int parent) {
        for (std::size_t i = 0; i < tree.points.size(); ++i) {
            auto const& point = tree.points[i];
            if (point.parent != parent) {
                continue;
            }
            tree.name += point.kind + std::to_string(point.values);
            auto const isChild = [&](auto const& other) {
                return other.parent == static_cast<int>(i);
            };
            if (std::any_of(tree.points.begin(), tree.points.end(), isChild)) {
                tree.name += '(';
                list(static_cast<int>(i));
                tree.name += ')';
            }
        }
    };
    tree.name.clear();
    list(-1);
}

/// A list of siblings as text: "EE(R)G".
using Lists = std::vector<std::string>;

constexpr char listOrder[] = "ERIG";

bool mayStand(char kind, int level) {
    switch (kind) {
    case 'E':
        return true;
    case 'G':
        return level <= deepestLevel;
    case 'R':
        return level >= 1 && level <= deepestLevel;
    default:
        return level == 1;
    }
}

/// All lists of that many points in all, of kinds not before @p first in the order of lists.
Lists listsOf(std::size_t points, int level, std::size_t first) {
    if (points == 0) {
        return {""};
    }
    Lists lists;
    for (std::size_t kind = first; listOrder[kind] != 0; ++kind) {
        if (!mayStand(listOrder[kind], level)) {
            continue;
        }
        std::size_t const most = listOrder[kind] == 'E' ? points - 1 : 0;
        for (std::size_t below = 0; below <= most; ++below) {
            for (auto const& children : listsOf(below, level + 1, 0)) {
                std::string bracketed(1, listOrder[kind]);
                if (!children.empty()) {
                    bracketed += '(' + children + ')';
                }
                for (auto const& rest : listsOf(points - 1 - below, level, kind)) {
                    lists.push_back(bracketed + rest);
                }
            }
        }
    }
    return lists;
}

Tree treeOf(std::string const& text) {
    Tree tree;
    std::vector<int> parents{-1};
    std::vector<int> numbers{0};
    for (char const letter : text) {
        if (letter == '(') {
            parents.push_back(static_cast<int>(tree.points.size()) - 1);
            numbers.push_back(0);
        } else if (letter == ')') {
            parents.pop_back();
            numbers.pop_back();
        } else {
            TreePoint point;
            point.kind = letter;
            point.parent = parents.back();
            auto const* const parent =
                point.parent < 0 ? nullptr : &tree.points[static_cast<std::size_t>(point.parent)];
            point.level = static_cast<int>(parents.size()) - 1;
            point.svid = idBelow(parent, letter, ++numbers.back() * spacing);
            tree.points.push_back(point);
        }
    }
    writeName(tree);
    return tree;
}

std::string nameOf(std::size_t point) {
    return "point " + std::to_string(point);
}

} // namespace

std::vector<NewPlace> Tree::newPlaces() const {
    std::vector<NewPlace> places;
    for (int parent = -1; parent < static_cast<int>(points.size()); ++parent) {
        auto const* const above = parent < 0 ? nullptr : &points[static_cast<std::size_t>(parent)];
        if (above != nullptr && above->kind != 'E') {
            continue;
        }
        int const level = above == nullptr ? 0 : above->level + 1;
        for (char const kind : {'E', 'R', 'I', 'G'}) {
            if (!mayStand(kind, level)) {
                continue;
            }
            // One new number in front of each sibling of the kind, and one behind all.
            std::vector<int> numbers;
            int number = 0;
            int siblings = 0;
            for (auto const& point : points) {
                if (point.parent == parent) {
                    ++number;
                    if (point.kind == kind) {
                        numbers.push_back(number * spacing - spacing / 2);
                    }
                    ++siblings;
                }
            }
            numbers.push_back(siblings * spacing + spacing / 2);
            for (auto const chosen : numbers) {
                places.push_back(
                    {idBelow(above, kind, chosen), parent,
                     std::string(1, kind) + std::to_string(chosen) + " below " +
                         (above == nullptr ? "the root" : nameOf(static_cast<std::size_t>(parent)))});
            }
        }
    }
    return places;
}

NewPlace Tree::placeBefore(std::size_t point) const {
    auto const parent = points[point].parent;
    int number = 0;
    for (std::size_t i = 0; i <= point; ++i) {
        number += points[i].parent == parent ? 1 : 0;
    }
    return {idBelow(parent < 0 ? nullptr : &points[static_cast<std::size_t>(parent)], 'E',
                    number * spacing - spacing / 2),
            parent, "before " + nameOf(point)};
}

std::vector<std::size_t> Tree::subtree(std::size_t point) const {
    std::vector<std::size_t> below{point};
    for (std::size_t i = point + 1; i < points.size(); ++i) {
        auto const parent = points[i].parent;
        if (parent >= 0 &&
            std::find(below.begin(), below.end(), static_cast<std::size_t>(parent)) != below.end()) {
            below.push_back(i);
        }
    }
    return below;
}

std::vector<Tree> treesOf(std::size_t points) {
    std::vector<Tree> trees;
    for (auto const& text : listsOf(points, 0, 0)) {
        trees.push_back(treeOf(text));
    }
    return trees;
}

Tree withValues(Tree tree, unsigned pattern) {
    for (std::size_t i = 0; i < tree.points.size(); ++i) {
        tree.points[i].values = pattern < 3 ? pattern : (static_cast<unsigned>(i) + pattern) % 3;
    }
    writeName(tree);
    return tree;
}

Tree withValuesByNumber(Tree tree, unsigned number) {
    for (auto& point : tree.points) {
        point.values = number % 3;
        number /= 3;
    }
    writeName(tree);
    return tree;
}

} // namespace qel::test
