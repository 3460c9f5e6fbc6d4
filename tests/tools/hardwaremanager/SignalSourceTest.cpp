// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tools/hardwaremanager/SignalSource.h"

#include "tests/support/Eventually.h"

#include <gtest/gtest.h>

#include <csignal>
#include <cstdlib>
#include <memory>

namespace qel::tools {

namespace {

template <typename Condition>
bool runUntil(Condition const& condition) {
    return test::eventually([&] {
        g_main_context_iteration(nullptr, FALSE);
        return condition();
    });
}

} // namespace

TEST(SignalSourceTest, EachArrival_CallsTheFunctionOfItsSignal) {
    int first = 0;
    int second = 0;
    SignalSource const one(SIGUSR1, [&] { ++first; });
    SignalSource const other(SIGUSR2, [&] { ++second; });

    ASSERT_EQ(0, std::raise(SIGUSR1));
    EXPECT_TRUE(runUntil([&] { return first == 1; }));
    ASSERT_EQ(0, std::raise(SIGUSR1));
    EXPECT_TRUE(runUntil([&] { return first == 2; }));
    EXPECT_EQ(0, second);
    ASSERT_EQ(0, std::raise(SIGUSR2));
    EXPECT_TRUE(runUntil([&] { return second == 1; }));
    EXPECT_EQ(2, first);
}

TEST(SignalSourceTest, Destroyed_CallsNoMore) {
    int removed = 0;
    int kept = 0;
    auto source = std::make_unique<SignalSource>(SIGUSR1, [&] { ++removed; });
    SignalSource const other(SIGUSR1, [&] { ++kept; });

    source.reset();
    ASSERT_EQ(0, std::raise(SIGUSR1));

    EXPECT_TRUE(runUntil([&] { return kept == 1; }));
    EXPECT_EQ(0, removed);
}

TEST(SignalSourceTest, SignalAfterTheLastSource_HasNoEffect) {
    EXPECT_EXIT(
        {
            {
                SignalSource const sut(SIGTERM, [] {});
            }
            static_cast<void>(std::raise(SIGTERM));
            std::exit(7); // NOLINT(concurrency-mt-unsafe): the child has one thread of its own
        },
        testing::ExitedWithCode(7), "");
}

} // namespace qel::tools
