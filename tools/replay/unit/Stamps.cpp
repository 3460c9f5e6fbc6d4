// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tools/replay/unit/Stamps.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <utility>

namespace qel::tools {

namespace {

/// Never 0, which stands for no time.
std::uint64_t stampOf(double ms) {
    constexpr double largest = 9e18;
    return static_cast<std::uint64_t>(std::llround(std::clamp(ms, 1.0, largest)));
}

} // namespace

Stamps Stamps::present(double speed, Clock now) {
    Stamps stamps;
    stamps.speed_ = speed;
    stamps.now_ = std::move(now);
    return stamps;
}

void Stamps::begin() {
    start_ = now_ ? now_() : 0;
}

std::uint64_t Stamps::of(std::uint64_t recorded, ReplayMoment const& step) const {
    if (!now_) {
        return recorded;
    }
    auto const fromStep = static_cast<double>(recorded) - static_cast<double>(step.recorded);
    if (speed_ <= 0.0) {
        return stampOf(static_cast<double>(now_()) + fromStep);
    }
    auto const due = static_cast<double>(step.due) + fromStep;
    return stampOf(static_cast<double>(start_) + (due < 0.0 ? due : due / speed_));
}

std::uint64_t Stamps::systemNow() {
    using std::chrono::milliseconds;
    auto const passed = std::chrono::system_clock::now().time_since_epoch();
    return static_cast<std::uint64_t>(std::chrono::duration_cast<milliseconds>(passed).count());
}

} // namespace qel::tools
