// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "reader/IQelShmInitCallback.h"

#include <gtest/gtest.h>

#include <limits>

namespace {

class Callback : public shm::IQelShmInitCallback {
public:
    using IQelShmInitCallback::IQelShmInitCallback;
    bool initialized() override { return false; }
    void onInitialized() override {}
};

TEST(IQelShmInitCallbackTest, LongestWait_IsTenMinutes) {
    constexpr unsigned int longest = shm::IQelShmInitCallback::MAX_WAIT;
    EXPECT_EQ(longest, 600U);
}

TEST(IQelShmInitCallbackTest, Budget_IsFourPollsASecond) {
    for (unsigned int seconds = 0; seconds <= 600; ++seconds) {
        EXPECT_EQ(Callback(seconds).polls(), 4 * seconds);
    }
}

TEST(IQelShmInitCallbackTest, Budget_BeyondLongestWait_IsCut) {
    EXPECT_EQ(Callback(601).polls(), 2400U);
    EXPECT_EQ(Callback(1000).polls(), 2400U);
    EXPECT_EQ(Callback(std::numeric_limits<unsigned int>::max()).polls(), 2400U);
}

} // namespace
