// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tools/qelshm/watch/EventLog.h"

#include <utility>

namespace qel::watch {

void EventLog::add(Event event) {
    if (events_.size() == capacity) {
        events_.pop_front();
        ++dropped_;
    }
    events_.push_back(std::move(event));
}

} // namespace qel::watch
