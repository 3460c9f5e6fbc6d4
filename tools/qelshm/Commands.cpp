#include "tools/qelshm/Commands.h"

#include "tools/qelshm/CheckCommand.h"
#include "tools/qelshm/CompletionCommand.h"
#include "tools/qelshm/DiffCommand.h"
#include "tools/qelshm/DumpCommand.h"
#include "tools/qelshm/FindCommand.h"
#include "tools/qelshm/GetCommand.h"
#include "tools/qelshm/HzCommand.h"
#include "tools/qelshm/ListCommand.h"
#include "tools/qelshm/RecordCommand.h"
#include "tools/qelshm/StatusCommand.h"
#include "tools/qelshm/TreeCommand.h"
#include "tools/qelshm/WatchCommand.h"
#include "tools/qelshm/WhyCommand.h"

namespace qel::tools {

std::vector<std::unique_ptr<ICommand>> allCommands() {
    std::vector<std::unique_ptr<ICommand>> commands;
    commands.push_back(std::make_unique<StatusCommand>());
    commands.push_back(std::make_unique<TreeCommand>());
    commands.push_back(std::make_unique<ListCommand>());
    commands.push_back(std::make_unique<GetCommand>());
    commands.push_back(std::make_unique<FindCommand>());
    commands.push_back(std::make_unique<CheckCommand>());
    commands.push_back(std::make_unique<WhyCommand>());
    commands.push_back(std::make_unique<DumpCommand>());
    commands.push_back(std::make_unique<DiffCommand>());
    commands.push_back(std::make_unique<HzCommand>());
    commands.push_back(std::make_unique<RecordCommand>());
    commands.push_back(std::make_unique<WatchCommand>());
    commands.push_back(std::make_unique<CompletionCommand>());
    return commands;
}

} // namespace qel::tools
