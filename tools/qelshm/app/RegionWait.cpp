// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tools/qelshm/app/RegionWait.h"

#include <utility>

namespace qel::tools {

RegionWait::RegionWait(std::chrono::seconds longest, std::function<void(std::string const&)> tell)
    : longest_(longest),
      tell_(std::move(tell)) {}

void RegionWait::note(std::string const& problem) {
    constexpr std::chrono::milliseconds moment(500); // shorter waits are not worth a line
    auto const now = Clock::now();
    isMissing_ = !problem.empty();
    if (!isMissing_) {
        wasThere_ = true;
        told_.clear();
        since_ = now;
        return;
    }
    isOver_ = !wasThere_ && now - since_ >= longest_;
    if (!isOver_ && now - since_ >= moment && problem != told_) {
        told_ = problem;
        tell_("waiting: " + problem);
    }
}

} // namespace qel::tools
