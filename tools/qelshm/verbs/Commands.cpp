// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tools/qelshm/verbs/Commands.h"

#include "tools/qelshm/verbs/CheckCommand.h"
#include "tools/qelshm/verbs/CompleteCommand.h"
#include "tools/qelshm/verbs/CompletionCommand.h"
#include "tools/qelshm/verbs/DiffCommand.h"
#include "tools/qelshm/verbs/DumpCommand.h"
#include "tools/qelshm/verbs/ExportCommand.h"
#include "tools/qelshm/verbs/FindCommand.h"
#include "tools/qelshm/verbs/HzCommand.h"
#include "tools/qelshm/verbs/ListCommand.h"
#include "tools/qelshm/verbs/LogCommand.h"
#include "tools/qelshm/verbs/PlotCommand.h"
#include "tools/qelshm/verbs/RecordCommand.h"
#include "tools/qelshm/verbs/StatusCommand.h"
#include "tools/qelshm/verbs/TreeCommand.h"
#include "tools/qelshm/verbs/WaitCommand.h"
#include "tools/qelshm/verbs/WatchCommand.h"
#include "tools/qelshm/verbs/WhyCommand.h"

namespace qel::tools {

std::vector<std::unique_ptr<ICommand>> allCommands() {
    std::vector<std::unique_ptr<ICommand>> commands;
    commands.push_back(std::make_unique<StatusCommand>());
    commands.push_back(std::make_unique<TreeCommand>());
    commands.push_back(std::make_unique<ListCommand>(ListCommand::Verb::List));
    commands.push_back(std::make_unique<ListCommand>(ListCommand::Verb::Get));
    commands.push_back(std::make_unique<FindCommand>());
    commands.push_back(std::make_unique<CheckCommand>());
    commands.push_back(std::make_unique<WhyCommand>());
    commands.push_back(std::make_unique<DumpCommand>());
    commands.push_back(std::make_unique<DiffCommand>());
    commands.push_back(std::make_unique<HzCommand>());
    commands.push_back(std::make_unique<RecordCommand>());
    commands.push_back(std::make_unique<LogCommand>());
    commands.push_back(std::make_unique<ExportCommand>());
    commands.push_back(std::make_unique<PlotCommand>());
    commands.push_back(std::make_unique<WatchCommand>());
    commands.push_back(std::make_unique<WaitCommand>());
    commands.push_back(std::make_unique<CompletionCommand>());
    commands.push_back(std::make_unique<CompleteCommand>());
    return commands;
}

} // namespace qel::tools
