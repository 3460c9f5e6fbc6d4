// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tools/qelshm/verbs/ImageCommand.h"

#include "tools/common/ExitStatus.h"

#include <algorithm>

namespace qel::tools {

int ImageCommand::run(CommandContext const& context) {
    auto const input = openInput(context.options, context.tell);
    requireOpened(input);
    RegionView view{input, inspect::PointTree(input.image), {}};
    view.warnings = treeProblems(input.image, view.tree);
    auto const condition = conditionProblem(input);
    if (!condition.empty()) {
        view.warnings.insert(view.warnings.begin(), condition);
    }
    for (auto const& warning : view.warnings) {
        context.tell("warning: " + warning);
    }
    auto const status = show(view, context);
    return view.warnings.empty() ? status : std::max(status, exitFailure);
}

} // namespace qel::tools
