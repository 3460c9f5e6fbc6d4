// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tools/qelshm/terminal/FatalSignals.h"

#include <gtest/gtest.h>

#include <pty.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <string>

namespace qel::tools {

namespace {

/// A pseudo terminal in raw mode, as a program would have it.
class FatalSignalsTest : public testing::Test {
protected:
    FatalSignalsTest() {
        EXPECT_EQ(0, ::openpty(&terminal, &programSide, nullptr, nullptr, nullptr));
        EXPECT_EQ(0, ::tcgetattr(programSide, &before));
        auto raw = before;
        ::cfmakeraw(&raw);
        EXPECT_EQ(0, ::tcsetattr(programSide, TCSANOW, &raw));
    }
    ~FatalSignalsTest() override {
        ::close(terminal);
        ::close(programSide);
    }

    bool isAsBefore() const {
        termios now{};
        return ::tcgetattr(programSide, &now) == 0 && now.c_lflag == before.c_lflag;
    }

    std::string output() const {
        std::array<char, 100> text{};
        auto const size = ::read(terminal, text.data(), text.size());
        return {text.data(), size > 0 ? static_cast<std::size_t>(size) : 0};
    }

    /// @return what ended a child that does this
    template <typename Action>
    int signalOf(Action const& action) const {
        auto const child = ::fork();
        if (child == 0) {
            action();
            ::_exit(0);
        }
        int status = 0;
        ::waitpid(child, &status, 0);
        return WIFSIGNALED(status) ? WTERMSIG(status) : 0;
    }

    int terminal = -1;
    int programSide = -1;
    termios before{};
};

class EachFatalSignalTest : public FatalSignalsTest, public testing::WithParamInterface<int> {};

} // namespace

TEST_P(EachFatalSignalTest, Signal_RestoresTheTerminalThenEndsTheProcess) {
    EXPECT_EQ(GetParam(), signalOf([&] {
                  static_cast<void>(::signal(GetParam(), SIG_DFL)); // a sanitizer would exit instead
                  FatalSignals const sut(programSide, before, "back");
                  static_cast<void>(::raise(GetParam()));
              }));
    EXPECT_TRUE(isAsBefore());
    EXPECT_EQ("back", output());
}

INSTANTIATE_TEST_SUITE_P(All, EachFatalSignalTest,
                         testing::Values(SIGSEGV, SIGABRT, SIGBUS, SIGFPE, SIGILL, SIGQUIT));

TEST_F(FatalSignalsTest, IgnoredSignal_StaysIgnored) {
    EXPECT_EQ(0, signalOf([&] {
                  static_cast<void>(::signal(SIGQUIT, SIG_IGN));
                  FatalSignals const sut(programSide, before, "back");
                  static_cast<void>(::raise(SIGQUIT));
              }));
    EXPECT_FALSE(isAsBefore());
}

TEST_F(FatalSignalsTest, AfterTheObject_SignalsDoWhatTheyDidBefore) {
    EXPECT_EQ(SIGABRT, signalOf([&] {
                  static_cast<void>(::signal(SIGABRT, SIG_DFL));
                  { FatalSignals const sut(programSide, before, "back"); }
                  static_cast<void>(::raise(SIGABRT));
              }));
    EXPECT_FALSE(isAsBefore());
}

TEST_F(FatalSignalsTest, LongText_IsCutOff) {
    EXPECT_EQ(SIGQUIT, signalOf([&] {
                  FatalSignals const sut(programSide, before, std::string(5000, 'x'));
                  static_cast<void>(::raise(SIGQUIT));
              }));
    EXPECT_EQ(std::string(100, 'x'), output());
}

} // namespace qel::tools
