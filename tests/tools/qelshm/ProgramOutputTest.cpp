// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

// What all programs do when their standard output cannot be written.
#include "tools/common/Output.h"

#include "tests/support/ChildProcess.h"
#include "tests/support/TempFile.h"
#include "tests/tools/qelshm/ImageFolder.h"
#include "tests/tools/qelshm/SampleCapture.h"
#include "tests/tools/replay/QelReplayProcess.h"

#include "inspect/capture/CaptureReader.h"
#include "inspect/image/ImageFile.h"
#include "tools/qelshm/app/QelshmOptions.h"
#include "tools/qelshm/verbs/Commands.h"

#include <CLI/App.hpp>
#include <CLI/Config.hpp>
#include <CLI/Formatter.hpp>
#include <gmock/gmock.h>

#include <map>

namespace qel::test {

namespace {

std::string const outputRows =
    "timestamp_utc,inlet1_voltage_V\n2023-06-09T07:34:30Z,230\n2023-06-09T07:34:31Z,231\n";

/// Status and standard error of a line for the shell.
struct ShellOutcome {
    std::optional<int> status;
    std::string errors;
};

ShellOutcome shellOutcome(std::string const& line) {
    ChildProcess shell({"bash", "-c", line}, ChildProcess::Errors::IntoOutput);
    shell.closeInput();
    auto errors = shell.readAll();
    return {shell.wait(), std::move(errors)};
}

/// Runs a program with its output full and with its output closed.
void expectFailure(std::string const& program, std::string const& arguments, std::string const& path) {
    for (std::string const output : {" >/dev/full", " >&-"}) {
        auto const outcome = shellOutcome((path + ' ').append(arguments).append(output));
        EXPECT_EQ(1, outcome.status) << arguments << output;
        EXPECT_EQ(program + ": the output cannot be written\n", outcome.errors) << arguments << output;
    }
}

/// The arguments by which each verb prints something.
std::map<std::string, std::string> printingArguments() {
    return {{"status", ""},
            {"tree", ""},
            {"list", ""},
            {"get", "unit1"},
            {"find", "unit1"},
            {"check", ""},
            {"why", ""},
            {"dump", "--json saved.img"},
            {"diff", "live live --json"},
            {"hz", "--duration 0.05"},
            {"record", "--duration 0.05 \"$(mktemp -u)\""},
            {"log", "night.rec"},
            {"export", "night.rec --csv"},
            {"plot", "night.rec unit1/inlet1/circuit1/socket2:active-power"},
            {"watch", "--count 3 --interval 0.05"},
            {"wait", "active"},
            {"complete", "name u"},
            {"completion", "bash"}};
}

std::vector<std::string> verbs() {
    CLI::App app("", "qelshm");
    tools::QelshmOptions options;
    auto const optional = tools::defineQelshmOptions(app, options);
    auto const commands = tools::allCommands();
    std::vector<std::string> names;
    names.reserve(commands.size());
    for (auto const& command : commands) {
        names.push_back(command->define(app, optional).get_name());
    }
    return names;
}

class ProgramOutputTest : public testing::Test {
protected:
    ProgramOutputTest() { EXPECT_TRUE(replay_.readUntil("region active")); }

    ImageFolder const folder_;
    std::string const capture_ = sampleCapture(); // before the replay, because it has a writer of its own
    TempFile const file_{outputRows};
    QelReplayProcess replay_{{"--speed", "10", "--loop", file_.path()}};
};

} // namespace

TEST_F(ProgramOutputTest, EveryVerb_TellsThatItCannotBeWritten) {
    auto const arguments = printingArguments();
    for (auto const& verb : verbs()) {
        auto const own = arguments.find(verb);
        ASSERT_NE(arguments.end(), own) << "how to make \"" << verb << "\" print something?";
        expectFailure("qelshm", verb + ' ' + own->second, QELSHM);
    }
}

TEST_F(ProgramOutputTest, ClosedDescriptors_DoNotGetIntoFiles) {
    EXPECT_EQ(0, shellOutcome(QELSHM " dump saved.img <&- >&- 2>&-").status) << "it prints nothing";
    EXPECT_EQ(shm::REGION_SIZE, inspect::readImage("saved.img").size());
    EXPECT_EQ(1, shellOutcome(QELSHM " record saved.rec --count 3 --interval 0.05 <&- >&- 2>&-").status);
    inspect::CaptureReader capture("saved.rec");
    while (capture.next()) {
    }
    EXPECT_EQ(3U, capture.samples());
}

TEST_F(ProgramOutputTest, ReaderThatIsGone_EndsAVerbByASignal) {
    EXPECT_EQ(
        "141\n",
        shellOutcome("{ sleep 0.2; env --default-signal=PIPE " QELSHM " list; echo $? >&2; } | true").errors);
}

// Whatever they open, a socket, a pipe or a file, gets another number. The third of them is open when the program has
// come as far as main(), also if it is taken by something.
TEST(ProgramOutputClosedTest, ClosedDescriptors_AreTakenByNothing) {
    TempFile const file(outputRows);
    for (std::string const program :
         {QELSHM " --wait 60 watch unit7", QEL_HARDWARE_MANAGER, QEL_REPLAY " --loop "}) {
        auto const command = program + (program.find("--loop") == std::string::npos ? "" : file.path());
        auto const outcome = shellOutcome(
            command + " <&- >&- 2>&- & for try in {1..300}; do [[ $(readlink /proc/$!/exe) == */bash ]] || "
                      "[ ! -e /proc/$!/fd/2 ] || break; sleep 0.1; done; readlink /proc/$!/fd/{0,1,2}; kill "
                      "$!; wait $!");
        EXPECT_EQ("/dev/null\n/dev/null\n/dev/null\n", outcome.errors) << program;
    }
}

TEST(ProgramOutputHelpTest, HelpVersionAndCompletion_TellThatTheyCannotBeWritten) {
    for (auto const* const option : {"--help", "--version"}) {
        expectFailure("qelshm", option, QELSHM);
        expectFailure("qel-replay", option, QEL_REPLAY);
        expectFailure("qel-hardware-manager", option, QEL_HARDWARE_MANAGER);
    }
    expectFailure("qel-replay", "--completion zsh", QEL_REPLAY);
    expectFailure("qel-hardware-manager", "--completion zsh", QEL_HARDWARE_MANAGER);
}

TEST(ProgramOutputReplayTest, Replay_IsPlayedToItsEndAndFails) {
    TempFile const file(outputRows);
    expectFailure("qel-replay", "--speed 0 " + file.path(), QEL_REPLAY);
    EXPECT_EQ(1, shellOutcome(QEL_REPLAY " --speed 0 " + file.path() + " <&- >&- 2>&-").status);
    EXPECT_EQ(0, shellOutcome(QEL_REPLAY " --quiet --speed 0 " + file.path() + " >/dev/full").status);
    auto const piped =
        shellOutcome("{ sleep 0.2; " QEL_REPLAY " --speed 0 " + file.path() + "; echo $? >&2; } | true");
    EXPECT_EQ("0\n", piped.errors) << "the reader is gone, the region was not needed less";
}

TEST(ProgramOutputReplayTest, AnswerToACommand_ThatCannotBeWrittenIsAFailure) {
    TempFile const file(outputRows);
    auto const control = " --control " + file.path() + ".socket";
    QelReplayProcess replay({"--speed", "0", "--hold", "--control", file.path() + ".socket", file.path()});
    ASSERT_TRUE(replay.readUntil("the region stays"));
    expectFailure("qel-replay", "--set unit1/inlet1:voltage=1" + control, QEL_REPLAY);
    EXPECT_EQ(0, shellOutcome(QEL_REPLAY " --unset unit1/inlet1:voltage" + control + " >/dev/null").status)
        << "it was set";
}

// It must not answer on what was meant to be its output, nor end before it is told to.
TEST(ProgramOutputManagerTest, HardwareManager_ServesOnAndFailsInTheEnd) {
    std::string const ask = "gdbus call --system --dest org.qel.HardwareManager --object-path / --method "
                            "org.qel.HardwareManager.initialized >&2 2>/dev/null";
    for (std::string const output : {">/dev/full", ">&-", "<&- >&- 2>&-"}) {
        auto line = QEL_HARDWARE_MANAGER " " + output;
        line.append(" & for try in {1..100}; do ")
            .append(ask)
            .append(" && break; sleep 0.1; done; kill $!; wait $!");
        auto const outcome = shellOutcome(line);
        EXPECT_EQ(1, outcome.status) << output;
        EXPECT_THAT(outcome.errors, testing::StartsWith("(0,)\n")) << output;
        bool const isTold = output.find("2>") == std::string::npos;
        EXPECT_EQ(isTold, outcome.errors.find("qel-hardware-manager: the output cannot be written\n") !=
                              std::string::npos)
            << output << outcome.errors;
    }
}

} // namespace qel::test
