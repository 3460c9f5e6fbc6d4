// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tools/replay/ReplayApp.h"

#include <algorithm>
#include <csignal>
#include <exception>
#include <stdexcept>
#include <utility>

namespace qel::tools {

ReplayApp::ReplayApp(MakePlayer const& makePlayer, ReplayLog& log, Settings settings)
    : log_(log),
      settings_(std::move(settings)),
      player_(makePlayer([this] { service_->announceStructureChange(); })) {
    service_.emplace([this] { return isInitialized_ ? 1 : 0; },
                     [this] { fail("the connection to the system bus is lost"); });
    for (int const number : {SIGINT, SIGTERM, SIGHUP}) {
        signals_.emplace_back(number, [this] { isOver_ = true; });
    }
}

ReplayApp::~ReplayApp() {
    if (timer_ != 0) {
        g_source_remove(timer_);
    }
    control_.reset();
    // Before the region goes: no reader finds a hardware manager without a region.
    service_.reset();
}

void ReplayApp::run() {
    service_->ownName();
    openControl(); // nothing is published if it cannot be opened
    player_->begin();
    isInitialized_ = player_->isActive();
    start_ = Clock::now();
    arm();
    while (!isOver_) {
        g_main_context_iteration(nullptr, TRUE);
    }
    if (failure_) {
        throw std::runtime_error(*failure_);
    }
    std::chrono::duration<double> const elapsed = end_.value_or(Clock::now()) - start_;
    log_.ended(reason_, elapsed.count(), player_->globalState());
}

void ReplayApp::openControl() {
    auto* const setter = player_->setter();
    if (settings_.control.empty() || setter == nullptr) {
        return;
    }
    commands_.emplace(*setter, [this] { return dueNow(); });
    control_.emplace(settings_.control, [this](std::string const& line) { return commands_->answer(line); });
}

// By the clock of the recording, never before the last step.
std::uint64_t ReplayApp::dueNow() const {
    std::chrono::duration<double, std::milli> const elapsed = Clock::now() - start_;
    constexpr double latest = 9e18;
    return std::max(lastDue_,
                    static_cast<std::uint64_t>(std::min(elapsed.count() * settings_.speed, latest)));
}

void ReplayApp::arm() {
    constexpr double longest = 3600000.0; // ms; longer waits are split
    auto const due = player_->due();
    if (!due) {
        reason_ = player_->endReason();
        end_ = Clock::now();
        if (settings_.isHeld) {
            log_.held(reason_);
        } else {
            isOver_ = true;
        }
        return;
    }
    std::chrono::duration<double, std::milli> const elapsed = Clock::now() - start_;
    double const wait =
        settings_.speed > 0.0 ? static_cast<double>(*due) / settings_.speed - elapsed.count() : 0.0;
    timer_ = g_timeout_add(
        static_cast<guint>(std::clamp(wait, 0.0, longest)),
        [](gpointer self) -> gboolean {
            static_cast<ReplayApp*>(self)->onTimer();
            return G_SOURCE_REMOVE;
        },
        this);
}

// Called from C: no exception may leave.
void ReplayApp::onTimer() {
    timer_ = 0;
    try {
        std::chrono::duration<double, std::milli> const elapsed = Clock::now() - start_;
        auto const due = player_->due();
        auto const speed = settings_.speed;
        if (due && (speed <= 0.0 || static_cast<double>(*due) / speed <= elapsed.count() + 1.0)) {
            player_->step();
            lastDue_ = *due;
            isInitialized_ = isInitialized_ || player_->isActive();
        }
        arm();
    } catch (std::exception const& error) {
        fail(error.what());
    }
}

void ReplayApp::fail(std::string const& reason) {
    failure_ = reason;
    isOver_ = true;
}

} // namespace qel::tools
