// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tools/qelshm/watch/Watch.h"

#include "tools/common/ExitStatus.h"
#include "tools/qelshm/app/MissingText.h"
#include "tools/qelshm/app/StopSignals.h"
#include "tools/qelshm/watch/Attachment.h"
#include "tools/qelshm/watch/LinePrinter.h"
#include "tools/qelshm/watch/WatchKeys.h"
#include "tools/qelshm/watch/WatchModel.h"
#include "tools/qelshm/watch/WatchScreen.h"

#include <unistd.h>

#include <algorithm>
#include <stdexcept>

namespace qel::watch {

namespace {

using Clock = std::chrono::steady_clock;
using Milliseconds = std::chrono::milliseconds;

/// Time that is left, at most so much; rounded up, so that nothing is looked at too early.
Milliseconds timeUntil(Clock::time_point moment, Milliseconds most) {
    auto const left = std::chrono::ceil<Milliseconds>(moment - Clock::now());
    return std::clamp(left, Milliseconds(0), most);
}

void watchOnScreen(WatchOptions const& options) {
    constexpr Milliseconds redraw(500); // a size that changed unnoticed shows after so long at the latest
    StopSignals const stop;
    WatchScreen screen;
    Attachment attachment;
    WatchModel model(WatchedNames(options.names), options.interval);
    bool isStopped = false;
    for (auto next = Clock::now(); !isStopped && !model.isDone();) {
        if (Clock::now() >= next) {
            model.update(attachment.look());
            next = Clock::now() + options.interval;
        }
        screen.draw(model);
        isStopped = stop.wait(timeUntil(next, redraw), STDIN_FILENO, true);
        while (auto const key = WatchScreen::key()) {
            handleKey(model, *key);
        }
    }
}

/// Tells what is missing, and fails when it never was there in time.
class Patience {
public:
    Patience(WatchOptions const& options, std::function<void(std::string const&)> const& tell)
        : options_(options),
          tell_(tell) {}

    void look(inspect::RegionStatus const& status) {
        auto const missing = missingText(status);
        auto const now = Clock::now();
        if (missing.empty()) {
            wasThere_ = true;
            told_.clear();
            since_ = now;
            return;
        }
        if (!wasThere_ && now - since_ >= options_.wait) {
            throw std::runtime_error("nothing to read after " + std::to_string(options_.wait.count()) +
                                     " s: " + missing);
        }
        constexpr Milliseconds moment(500);
        if (now - since_ >= moment && missing != told_) {
            told_ = missing;
            tell_("waiting, " + missing);
        }
    }

    /// How long the next look may be put off.
    Milliseconds interval() const {
        constexpr Milliseconds whileMissing(50);
        return told_.empty() && wasThere_ ? options_.interval : std::min(options_.interval, whileMissing);
    }

private:
    WatchOptions const& options_;
    std::function<void(std::string const&)> const& tell_;
    Clock::time_point since_ = Clock::now(); ///< it is missing, or was there last
    std::string told_;
    bool wasThere_ = false;
};

void watchAsLines(WatchOptions const& options, std::ostream& out,
                  std::function<void(std::string const&)> const& tell) {
    StopSignals const stop;
    Attachment attachment;
    LinePrinter printer(out, WatchedNames(options.names),
                        isatty(STDOUT_FILENO) == 1 && areColoursAllowed() ? LineColours(STDOUT_FILENO)
                                                                          : LineColours(),
                        options.count);
    Patience patience(options, tell);
    for (bool isStopped = false; !isStopped && !printer.isDone();) {
        auto const begin = Clock::now();
        auto const look = attachment.look();
        auto const status = inspect::regionStatus(look.source, look.image, look.now, std::nullopt);
        patience.look(status);
        printer.update(look, status);
        auto const next = begin + patience.interval();
        while (!isStopped && !printer.isDone() && Clock::now() < next) {
            isStopped = stop.wait(timeUntil(next, options.interval), STDOUT_FILENO, false);
        }
    }
}

} // namespace

int runWatch(WatchOptions const& options, std::ostream& out,
             std::function<void(std::string const&)> const& tell) {
    if (!options.count && isatty(STDIN_FILENO) == 1 && isatty(STDOUT_FILENO) == 1) {
        watchOnScreen(options);
    } else {
        watchAsLines(options, out, tell);
    }
    return tools::exitSuccess;
}

} // namespace qel::watch
