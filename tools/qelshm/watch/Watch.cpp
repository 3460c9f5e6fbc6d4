// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tools/qelshm/watch/Watch.h"

#include "tools/qelshm/app/StopSignals.h"
#include "tools/qelshm/terminal/TerminalAbilities.h"
#include "tools/qelshm/watch/SettingsFile.h"
#include "tools/qelshm/watch/SnapshotSource.h"
#include "tools/qelshm/watch/WatchModel.h"
#include "tools/qelshm/watch/WatchScreen.h"

#include <unistd.h>

#include <algorithm>

namespace qel::watch {

bool canShowTable() {
    return isatty(STDIN_FILENO) == 1 && isatty(STDOUT_FILENO) == 1 && tools::canAddressCursor(STDOUT_FILENO);
}

void showTable(TableOptions const& options, std::function<void(std::string const&)> const& tell) {
    using Clock = std::chrono::steady_clock;
    constexpr std::chrono::milliseconds redraw(
        500); // latest update after a change of the size without a signal
    tools::StopSignals const stop;
    auto file = SettingsFile::ofUser();
    std::string problem;
    auto const settings = file.load([&](std::string const& line) {
        tell(line);
        problem = line;
    });
    WatchScreen screen(options.isColoured);
    SnapshotSource source;
    WatchModel model(WatchedNames(options.names), options.interval, options.freshness, settings);
    model.say(problem);
    bool isStopped = false;
    for (auto next = Clock::now(); !isStopped && !model.isDone();) {
        if (Clock::now() >= next) {
            model.update(source.take());
            next = Clock::now() + options.interval;
        }
        screen.draw(model);
        isStopped = stop.waitForInput(std::min(next, Clock::now() + redraw), STDIN_FILENO);
        screen.handleInput(model);
    }
    file.save(model.settings());
}

} // namespace qel::watch
