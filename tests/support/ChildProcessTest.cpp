// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tests/support/ChildProcess.h"

#include <gmock/gmock.h>

#include <cerrno>
#include <chrono>
#include <csignal>
#include <optional>
#include <string>
#include <system_error>

namespace qel::test {

namespace {

using std::chrono::milliseconds;
using testing::Eq;
using testing::Optional;

bool exists(pid_t pid) {
    return ::kill(pid, 0) == 0 || errno != ESRCH;
}

TEST(ChildProcess, ReadLine_LinesWritten_ComeBackOneByOne) {
    ChildProcess sut({"cat"});

    sut.writeLine("first");
    sut.writeLine("second");

    EXPECT_THAT(sut.readLine(), Optional(Eq("first")));
    EXPECT_THAT(sut.readLine(), Optional(Eq("second")));
}

TEST(ChildProcess, ReadLine_NoLineInTime_GivesNothing) {
    ChildProcess sut({"cat"});

    EXPECT_EQ(sut.readLine(milliseconds(20)), std::nullopt);
}

TEST(ChildProcess, ReadLine_EndOfOutput_GivesNothing) {
    ChildProcess sut({"true"});

    EXPECT_EQ(sut.readLine(), std::nullopt);
}

TEST(ChildProcess, ReadUntil_TextInLaterLine_SkipsTheOnesBefore) {
    ChildProcess sut({"printf", R"(one\ntwo\nthree\n)"});

    EXPECT_TRUE(sut.readUntil("wo"));
    EXPECT_EQ(sut.lastLine(), "two");
    EXPECT_FALSE(sut.readUntil("one"));
}

TEST(ChildProcess, ReadAll_AfterOneLine_GivesTheRestToTheEnd) {
    ChildProcess sut({"printf", "one\\ntwo\\nthree"});

    EXPECT_THAT(sut.readLine(), Optional(Eq("one")));
    EXPECT_EQ(sut.readAll(), "two\nthree");
}

TEST(ChildProcess, IntoOutput_WordsOnStandardError_AreReadToo) {
    ChildProcess sut({"sh", "-c", "echo complaint >&2"}, ChildProcess::Errors::IntoOutput);

    EXPECT_THAT(sut.readLine(), Optional(Eq("complaint")));
}

TEST(ChildProcess, Wait_ChildEnds_GivesItsStatus) {
    ChildProcess sut({"sh", "-c", "exit 7"});

    EXPECT_THAT(sut.wait(), Optional(7));
    EXPECT_THAT(sut.wait(), Optional(7)) << "asked again";
}

TEST(ChildProcess, Wait_ChildStillRuns_GivesNothing) {
    ChildProcess sut({"cat"});

    EXPECT_EQ(sut.wait(milliseconds(20)), std::nullopt);
}

TEST(ChildProcess, Signal_DeadlyOne_StatusTellsItsNumber) {
    ChildProcess sut({"cat"});

    sut.signal(SIGTERM);

    EXPECT_THAT(sut.wait(), Optional(128 + SIGTERM));
}

TEST(ChildProcess, CloseInput_ReaderOfInput_ComesToItsEnd) {
    ChildProcess sut({"cat"});

    sut.closeInput();

    EXPECT_THAT(sut.wait(), Optional(0));
}

TEST(ChildProcess, WriteLine_ChildHasEnded_Throws) {
    ChildProcess sut({"true"});
    ASSERT_THAT(sut.wait(), Optional(0));

    EXPECT_THROW(sut.writeLine("too late"), std::system_error);
}

TEST(ChildProcess, Constructor_NoSuchProgram_Throws) {
    EXPECT_THROW(ChildProcess({"/no/such/program"}), std::system_error);
}

TEST(ChildProcess, Destructor_ChildThatIgnoresItsEndOfInput_IsKilledAndReaped) {
    pid_t pid = 0;
    {
        ChildProcess const sut({"sleep", "1000"});
        pid = sut.pid();
        ASSERT_TRUE(exists(pid));
    }

    EXPECT_FALSE(exists(pid));
}

} // namespace

} // namespace qel::test
