// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tools/qelshm/verbs/NameSelection.h"

#include "format/HexText.h"
#include "inspect/naming/Nearest.h"
#include "inspect/naming/PointFinder.h"
#include "inspect/naming/PointPath.h"
#include "inspect/naming/ValuePath.h"

#include <utility>

namespace qel::tools {

namespace {

using inspect::ValuePattern;

std::string keyNumber(unsigned short key) {
    constexpr std::size_t digits = 4;
    return shm::hexText(key, digits);
}

[[noreturn]] void nothingMatches(std::string const& name, inspect::Image const& image,
                                 inspect::PointTree const& tree) {
    inspect::Nearest nearest(name);
    if (partsOf(name).key) {
        for (auto const& node : tree.nodes()) {
            for (auto const pos : tree.valuesOf(node)) {
                nearest.add(
                    inspect::valuePath(image.region().points[node.pos].guid, image.region().values[pos].key));
            }
        }
    } else {
        for (auto const& node : tree.nodes()) {
            nearest.add(inspect::pointPath(image.region().points[node.pos].guid));
        }
    }
    throw inspect::NotFoundError("nothing matches \"" + name + "\"" +
                                 (nearest.candidate().empty()
                                      ? "; there is nothing to match"
                                      : "; the nearest name is " + nearest.candidate()));
}

/// Finds what a name without wildcards names.
ValuePattern literalPattern(std::string const& name, inspect::Image const& image,
                            inspect::PointTree const& tree) {
    auto const parts = partsOf(name);
    inspect::PointFinder const finder(image, tree);
    auto const node = finder.point(parts.point);
    auto const point = image.region().points[tree.nodes()[node].pos].guid;
    auto const keyOfId = inspect::keyInText(parts.point);
    if (!parts.key && !keyOfId) {
        return ValuePattern(inspect::pointPath(point));
    }
    auto const pos = finder.value(node, parts.key ? *parts.key : keyNumber(*keyOfId));
    return ValuePattern(inspect::pointPath(point) + ':' + keyNumber(image.region().values[pos].key));
}

} // namespace

NameParts partsOf(std::string_view name) {
    auto const separator = name.find(':');
    return {std::string(name.substr(0, separator)),
            separator == std::string_view::npos ? std::nullopt
                                                : std::optional(std::string(name.substr(separator + 1)))};
}

bool hasWildcards(std::string_view name) {
    return name.find_first_of("*?[") != std::string_view::npos;
}

NameSelection::NameSelection(std::vector<std::string> const& names, inspect::Image const& image,
                             inspect::PointTree const& tree) {
    for (auto const& name : names) {
        if (!hasWildcards(name)) {
            patterns_.push_back(literalPattern(name, image, tree));
            continue;
        }
        auto const key = partsOf(name).key;
        if (key && !hasWildcards(*key) && !inspect::parseKey(*key)) {
            nothingMatches(name, image, tree); // there is no such key at all
        }
        ValuePattern pattern(name);
        if (!inspect::PointFinder(image, tree).hasMatch(pattern)) {
            nothingMatches(name, image, tree);
        }
        patterns_.push_back(std::move(pattern));
    }
}

bool NameSelection::hasPoint(long long point) const {
    return inspect::selectsPoint(patterns_, point);
}

bool NameSelection::hasValue(long long point, unsigned short key) const {
    return inspect::selectsValue(patterns_, point, key);
}

} // namespace qel::tools
