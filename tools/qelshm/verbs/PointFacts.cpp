// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tools/qelshm/verbs/PointFacts.h"

#include "tools/qelshm/verbs/NameSelection.h"

#include "format/KeyTable.h"
#include "format/Names.h"
#include "format/ValueFormatter.h"
#include "inspect/naming/PointPath.h"
#include "inspect/naming/StateClass.h"
#include "region/QelShmMPnt.h"
#include "region/QelShmMVal.h"
#include "region/SvidParts.h"

#include <algorithm>

namespace qel::tools {

PointFacts pointFacts(inspect::Image const& image, inspect::PointTree const& tree,
                      inspect::PointNode const& node) {
    auto const& point = image.region().points[node.pos];
    std::string parentPath;
    if (node.parent != inspect::NO_NODE) {
        parentPath = inspect::pointPath(image.region().points[tree.nodes().at(node.parent).pos].guid);
    }
    return {point.guid,  inspect::pointPath(point.guid),
            parentPath,  inspect::kindName(point.guid),
            point.type,  shm::QelShmMPnt(&point).tstr(),
            node.pos,    node.depth,
            point.state, point.at};
}

ValueFacts valueFacts(inspect::Image const& image, inspect::PointNode const& node, std::uint32_t pos) {
    auto const& value = image.region().values[pos];
    return {shm::pointSvid(image.region().points[node.pos].guid) | value.key,
            value.key,
            shm::keyName(value.key),
            tav::ValueFormatter::str(shm::QelShmMVal(&value)),
            inspect::numberIn(value.state, value.value),
            shm::keyUnit(value.key),
            value.state,
            value.at};
}

std::vector<ValueFacts> valuesOf(inspect::Image const& image, inspect::PointTree const& tree,
                                 inspect::PointNode const& node) {
    std::vector<ValueFacts> values;
    for (auto const pos : tree.valuesOf(node)) {
        values.push_back(valueFacts(image, node, pos));
    }
    return values;
}

std::vector<ValueFacts> valuesOf(inspect::Image const& image, inspect::PointTree const& tree,
                                 inspect::PointNode const& node, NameSelection const& selection) {
    auto values = valuesOf(image, tree, node);
    auto const point = image.region().points[node.pos].guid;
    auto const isOther = [&](ValueFacts const& value) {
        return !selection.hasValue(point, value.key);
    };
    values.erase(std::remove_if(values.begin(), values.end(), isOther), values.end());
    return values;
}

} // namespace qel::tools
