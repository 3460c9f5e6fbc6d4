#include "tools/qelshm/Watch.h"

#include <unistd.h>

#include <csignal>
#include <stdexcept>
#include <utility>
#include <vector>

namespace qel::tools {

Watch::Watch(RegionLink& link, IWatchView& view, WatchFilter filter, std::chrono::milliseconds interval)
    : link_(link),
      view_(view),
      filter_(std::move(filter)),
      interval_(interval),
      loop_(g_main_loop_new(nullptr, FALSE)) {}

void Watch::run() {
    std::vector<Source> sources;
    for (int const number : {SIGINT, SIGTERM, SIGHUP}) {
        sources.push_back(Source::onSignal(number, [this] { g_main_loop_quit(loop_.get()); }));
    }
    sources.push_back(Source::everyMs(static_cast<unsigned>(interval_.count()), [this] { look(); }));
    if (isatty(STDIN_FILENO) == 1) {
        sources.push_back(Source::onReadable(STDIN_FILENO, [this] {
            view_.handleInput();
            if (view_.isDone()) {
                g_main_loop_quit(loop_.get());
            }
        }));
    }
    look();
    if (view_.isDone()) {
        return;
    }
    g_main_loop_run(loop_.get());
    if (!link_.hasManager()) {
        throw std::runtime_error("the hardware manager has left the bus; nothing will change any more");
    }
}

void Watch::look() {
    if (link_.reader().modifications() != 0) {
        link_.reader().syncPositions(false);
        ++structureChanges_;
    }
    view_.show({filter_.apply(takeSnapshot(link_.reader())), structureChanges_});
    if (view_.isDone() || !link_.hasManager()) {
        g_main_loop_quit(loop_.get());
    }
}

} // namespace qel::tools
