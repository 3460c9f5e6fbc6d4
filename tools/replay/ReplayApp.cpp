// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tools/replay/ReplayApp.h"

#include <algorithm>
#include <csignal>
#include <exception>
#include <stdexcept>

namespace qel::tools {

ReplayApp::ReplayApp(MakeSession const& makeSession, ReplayLog& log, double speed, bool isHeld)
    : log_(log),
      speed_(speed),
      isHeld_(isHeld),
      loop_(g_main_loop_new(nullptr, FALSE)) {
    session_ = makeSession([this] { service_->announceStructureChange(); });
    for (int const number : {SIGINT, SIGTERM, SIGHUP}) {
        signals_.push_back(Source::onSignal(number, [this] { g_main_loop_quit(loop_.get()); }));
    }
    service_.emplace([this] { begin(); }, [this](std::string const& reason) { fail(reason); });
}

ReplayApp::~ReplayApp() {
    if (timer_ != 0) {
        g_source_remove(timer_);
    }
    // Readers shall not find a hardware manager that has no region any more.
    service_.reset();
}

void ReplayApp::run() {
    g_main_loop_run(loop_.get());
    if (failure_) {
        throw std::runtime_error(*failure_);
    }
    std::chrono::duration<double> const elapsed = Clock::now() - start_;
    log_.ended(reason_, elapsed.count(), session_->globalState());
}

// Called from C, as onTimer(): no exception may leave.
void ReplayApp::begin() {
    try {
        session_->begin();
        tellWhenActive();
        start_ = Clock::now();
        arm();
    } catch (std::exception const& error) {
        fail(error.what());
    }
}

void ReplayApp::tellWhenActive() {
    if (session_->isActive()) {
        service_->setInitialized();
    }
}

void ReplayApp::arm() {
    constexpr double longest = 3600000.0; // ms; a longer wait is taken in parts
    auto const due = session_->due();
    if (!due) {
        reason_ = log_.allReplayed();
        if (isHeld_) {
            log_.held();
        } else {
            g_main_loop_quit(loop_.get());
        }
        return;
    }
    std::chrono::duration<double, std::milli> const elapsed = Clock::now() - start_;
    double const wait = speed_ > 0.0 ? static_cast<double>(*due) / speed_ - elapsed.count() : 0.0;
    timer_ = g_timeout_add(
        static_cast<guint>(std::clamp(wait, 0.0, longest)),
        [](gpointer self) -> gboolean {
            static_cast<ReplayApp*>(self)->onTimer();
            return G_SOURCE_REMOVE;
        },
        this);
}

void ReplayApp::onTimer() {
    timer_ = 0;
    try {
        std::chrono::duration<double, std::milli> const elapsed = Clock::now() - start_;
        auto const due = session_->due();
        if (due && (speed_ <= 0.0 || static_cast<double>(*due) / speed_ <= elapsed.count() + 1.0)) {
            session_->step();
            tellWhenActive();
        }
        arm();
    } catch (std::exception const& error) {
        fail(error.what());
    }
}

void ReplayApp::fail(std::string const& reason) {
    failure_ = reason;
    g_main_loop_quit(loop_.get());
}

} // namespace qel::tools
