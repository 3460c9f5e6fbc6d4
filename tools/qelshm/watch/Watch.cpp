// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tools/qelshm/watch/Watch.h"

#include "tools/common/ExitStatus.h"
#include "tools/qelshm/app/RegionInput.h"
#include "tools/qelshm/app/RegionWait.h"
#include "tools/qelshm/app/StopSignals.h"
#include "tools/qelshm/terminal/TerminalAbilities.h"
#include "tools/qelshm/watch/LinePrinter.h"
#include "tools/qelshm/watch/SettingsFile.h"
#include "tools/qelshm/watch/SnapshotSource.h"
#include "tools/qelshm/watch/WatchModel.h"
#include "tools/qelshm/watch/WatchScreen.h"

#include <unistd.h>

#include <algorithm>

namespace qel::watch {

namespace {

using Clock = std::chrono::steady_clock;

void watchOnScreen(WatchOptions const& options, std::function<void(std::string const&)> const& tell) {
    constexpr std::chrono::milliseconds redraw(500); // latest update after an unnoticed change of the size
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

/// Whether a table can be shown and used.
bool hasScreen() {
    return isatty(STDIN_FILENO) == 1 && isatty(STDOUT_FILENO) == 1 && tools::canAddressCursor(STDOUT_FILENO);
}

void watchAsLines(WatchOptions const& options, std::ostream& out,
                  std::function<void(std::string const&)> const& tell) {
    tools::StopSignals const stop;
    SnapshotSource source;
    LinePrinter printer(out, WatchedNames(options.names), options.isColoured, options.count);
    tools::RegionWait wait(options.wait, tell);
    for (bool isStopped = false; !isStopped;) {
        auto const begin = Clock::now();
        auto const snapshot = source.take();
        auto const status =
            inspect::regionStatus(snapshot.source, snapshot.image, snapshot.now, std::nullopt);
        auto const problem = tools::conditionProblem(status);
        wait.note(problem);
        if (wait.isOver()) {
            throw tools::NothingThereError("no active region after " + std::to_string(options.wait.count()) +
                                           " s: " + problem);
        }
        printer.update(snapshot, status);
        auto const interval =
            wait.isMissing() ? std::min(options.interval, tools::RegionWait::interval) : options.interval;
        isStopped = printer.isDone() || stop.waitUntil(begin + interval, STDOUT_FILENO);
    }
}

} // namespace

int runWatch(WatchOptions const& options, std::ostream& out,
             std::function<void(std::string const&)> const& tell) {
    if (!options.count && hasScreen()) {
        watchOnScreen(options, tell);
    } else {
        watchAsLines(options, out, tell);
    }
    return tools::exitSuccess;
}

} // namespace qel::watch
