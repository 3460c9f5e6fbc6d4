// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tools/qelshm/stream/Stream.h"

#include "tools/qelshm/app/RegionInput.h"
#include "tools/qelshm/app/RegionWait.h"
#include "tools/qelshm/app/StopSignals.h"
#include "tools/qelshm/watch/SnapshotSource.h"

#include <unistd.h>

#include <algorithm>

namespace qel::stream {

namespace {

using Clock = std::chrono::steady_clock;
using Sinks = std::vector<std::unique_ptr<ISink>>;

constexpr std::chrono::milliseconds workInterval(10); // between two looks at a sink that works

bool isDone(Sinks const& sinks) {
    return std::any_of(sinks.begin(), sinks.end(), [](auto const& sink) { return sink->isDone(); });
}

bool work(Sinks const& sinks) {
    bool isBusy = false;
    for (auto const& sink : sinks) {
        isBusy = sink->work() || isBusy;
    }
    return isBusy;
}

/// @return whether to stop
bool waitUntil(Clock::time_point moment, Sinks const& sinks, tools::StopSignals const& stop) {
    while (Clock::now() < moment) {
        auto const next = work(sinks) ? std::min(moment, Clock::now() + workInterval) : moment;
        if (stop.waitUntil(next, STDOUT_FILENO)) {
            return true;
        }
    }
    return stop.waitUntil(moment, STDOUT_FILENO);
}

} // namespace

void runStream(StreamOptions const& options, std::function<void(std::string const&)> const& tell) {
    tools::StopSignals const stop;
    watch::SnapshotSource source;
    ChangeFinder finder(options.names);
    tools::RegionWait wait(options.wait, tell);
    bool isStopped = false;
    while (!isStopped && !isDone(options.sinks)) {
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
        auto const report = finder.update(snapshot, status);
        for (auto const& sink : options.sinks) {
            sink->take(report);
        }
        auto const interval =
            wait.isMissing() ? std::min(options.interval, tools::RegionWait::interval) : options.interval;
        isStopped = !isDone(options.sinks) && waitUntil(begin + interval, options.sinks, stop);
    }
    while (!isStopped && work(options.sinks)) {
        isStopped = stop.waitUntil(Clock::now() + workInterval);
    }
    for (auto const& sink : options.sinks) {
        sink->end();
    }
}

} // namespace qel::stream
