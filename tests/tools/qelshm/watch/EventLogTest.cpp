// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tools/qelshm/watch/EventLog.h"

#include <gtest/gtest.h>

namespace qel::watch {

TEST(EventLogTest, FullLog_DropsTheOldest) {
    EventLog sut;
    for (std::uint64_t at = 0; at < EventLog::capacity + 3; ++at) {
        sut.add({at, "x", tools::Style::Plain});
    }
    EXPECT_EQ(EventLog::capacity, sut.events().size());
    EXPECT_EQ(3U, sut.dropped());
    EXPECT_EQ(3U, sut.events().front().at);
    EXPECT_EQ(EventLog::capacity + 2, sut.events().back().at);
}

} // namespace qel::watch
