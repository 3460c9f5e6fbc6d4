// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tools/qelshm/verbs/PointLines.h"

#include "tools/common/TimeText.h"
#include "tools/qelshm/terminal/Age.h"

#include "inspect/naming/StateText.h"
#include "inspect/naming/Svid.h"

namespace qel::tools {

void addPointLine(TextTable& table, PointFacts const& point) {
    table.add(PointLine, {inspect::svidText(point.svid),
                          point.path,
                          point.type,
                          {inspect::stateText(point.state), stateStyle(point.state)}});
}

void addValueLine(TextTable& table, ValueFacts const& value, std::uint64_t now) {
    auto const style = stateStyle(value.state);
    table.add(ValueLine, {"  " + inspect::svidText(value.svid),
                          value.name,
                          {value.text, style},
                          {inspect::stateText(value.state), style},
                          momentText(value.at),
                          ageText(value.at, now)});
}

void addPointLines(TextTable& table, PointFacts const& point, std::vector<ValueFacts> const& values,
                   std::uint64_t now) {
    addPointLine(table, point);
    for (auto const& value : values) {
        addValueLine(table, value, now);
    }
}

} // namespace qel::tools
