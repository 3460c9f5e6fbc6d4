// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tools/replay/csv/EnergyCounter.h"

#include <algorithm>

namespace qel::tools {

void EnergyCounter::add(std::uint64_t time, double power) {
    constexpr double msPerHour = 3600000.0;
    Reading const reading{time, std::max(power, 0.0)};
    if (last_) {
        auto const hours = static_cast<double>(reading.time - last_->time) / msPerHour;
        total_ += (last_->power + reading.power) / 2.0 * hours;
    }
    last_ = reading;
}

} // namespace qel::tools
