// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "reader/MutedCriticals.h"

#include <gio/gio.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>
#include <thread>

namespace {

using shm::MutedCriticals;
using testing::HasSubstr;

void causeCritical() {
    g_dbus_proxy_set_default_timeout(nullptr, 1);
}

TEST(MutedCriticalsTest, OfTheThread_AreDropped) {
    testing::internal::CaptureStderr();
    {
        MutedCriticals const sut;
        causeCritical();
    }
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
}

TEST(MutedCriticalsTest, OfAnotherThread_AreToldAsEver) {
    testing::internal::CaptureStderr();
    {
        MutedCriticals const sut;
        std::thread(causeCritical).join();
    }
    EXPECT_THAT(testing::internal::GetCapturedStderr(), HasSubstr("g_dbus_proxy_set_default_timeout"));
}

TEST(MutedCriticalsTest, AfterItsEnd_AreToldAsEver) {
    testing::internal::CaptureStderr();
    { MutedCriticals const sut; }
    causeCritical();
    EXPECT_THAT(testing::internal::GetCapturedStderr(), HasSubstr("g_dbus_proxy_set_default_timeout"));
}

TEST(MutedCriticalsTest, OfTwoThreadsAtOnce_AreBothDropped) {
    testing::internal::CaptureStderr();
    {
        MutedCriticals const sut;
        std::thread([] {
            MutedCriticals const other;
            causeCritical();
        }).join();
        causeCritical();
    }
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
}

TEST(MutedCriticalsTest, OfOtherLevels_AreToldAsEver) {
    testing::internal::CaptureStderr();
    {
        MutedCriticals const sut;
        g_log("GLib-GIO", G_LOG_LEVEL_WARNING, "told");
    }
    EXPECT_THAT(testing::internal::GetCapturedStderr(), HasSubstr("told"));
}

} // namespace
