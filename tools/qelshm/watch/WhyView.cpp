// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tools/qelshm/watch/WhyView.h"

#include "format/Names.h"
#include "format/StateName.h"
#include "inspect/image/PointTree.h"
#include "inspect/naming/ValuePath.h"
#include "inspect/why/Causes.h"
#include "inspect/why/ValueSummary.h"

#include <cstddef>

namespace qel::watch {

std::vector<StyledLine> whyLines(WatchedUnit const& unit, std::uint32_t point) {
    auto const& image = unit.snapshot().image;
    inspect::PointTree const tree(image);
    if (point >= tree.nodes().size()) {
        return {};
    }
    auto const& path = unit.structure().points()[point].path;
    auto const causes = inspect::pointCauses(image, tree, point, unit.snapshot().now);
    std::vector<StyledLine> lines;
    auto const state = std::string(shm::stateName(causes.state));
    lines.push_back(
        {causes.causes.empty() ? path + " is " + state + ": nothing is wrong" : path + " is " + state,
         tools::stateStyle(causes.state)});
    if (causes.propagated != causes.state) {
        lines.push_back({"propagation will result in " + std::string(shm::stateName(causes.propagated)),
                         tools::Style::Plain});
    }
    for (auto const& cause : causes.causes) {
        auto const subject = cause.key ? inspect::valuePath(cause.svid, *cause.key) + "  " + cause.valueText
                                       : cause.path + "  own state";
        lines.push_back(
            {subject + "  " + std::string(shm::stateName(cause.state)), tools::stateStyle(cause.state)});
        for (auto const& step : cause.chain) {
            lines.push_back({"  " + step.path + "  " + std::string(shm::stateName(step.state)) + "  " +
                                 inspect::ruleText(step.rule) +
                                 (step.isShown ? "" : " (hidden by a stronger state)"),
                             tools::Style::Plain});
        }
    }
    if (auto const lost = inspect::lostValues(image, tree, point); lost != 0) {
        lines.push_back(
            {std::to_string(lost) + (lost == 1 ? " value is" : " values are") + " Lost, which does not count",
             tools::Style::Alarm});
    }
    return lines;
}

} // namespace qel::watch
