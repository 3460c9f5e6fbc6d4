// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tools/qelshm/verbs/CompletionCommand.h"

#include "tests/support/ChildProcess.h"
#include "tests/support/TempFile.h"
#include "tests/tools/qelshm/ImageFolder.h"
#include "tests/tools/qelshm/QelshmRun.h"
#include "tests/tools/qelshm/SampleCapture.h"
#include "tests/tools/replay/QelReplayProcess.h"

#include <gmock/gmock.h>

#include <sstream>

namespace qel::test {

namespace {

using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::IsSupersetOf;
using testing::Not;

/// What the script offers for the last of the words on a line that begins with qelshm.
std::vector<std::string> completions(std::vector<std::string> const& words) {
    auto const script = runQelshm({"completion", "bash"});
    EXPECT_EQ(0, script.status);
    TempFile const file(script.output);
    std::string const bash = "set -u; complete() { :; }; source \"$1\"; shift; COMP_WORDS=(\"$@\"); "
                             "COMP_CWORD=$(($# - 1)); _qelshm; printf '%s\\n' \"${COMPREPLY[@]}\"";
    std::vector<std::string> command{"bash", "-c", bash, "bash", file.path(), QELSHM};
    command.insert(command.end(), words.begin(), words.end());
    ChildProcess program(command, ChildProcess::Errors::IntoOutput);
    std::istringstream lines(program.readAll());
    std::vector<std::string> found;
    for (std::string line; std::getline(lines, line);) {
        if (!line.empty()) {
            found.push_back(line);
        }
    }
    return found;
}

} // namespace

TEST(CompletionCommandTest, Script_IsRegisteredForTheProgram) {
    auto const script = runQelshm({"completion", "bash"}).output;
    TempFile const file(script);
    ChildProcess program({"bash", "-c", "source \"$1\" && complete -p qelshm", "bash", file.path()},
                         ChildProcess::Errors::IntoOutput);
    EXPECT_EQ("complete -o bashdefault -F _qelshm qelshm\n", program.readAll());
}

TEST(CompletionCommandTest, FirstWord_IsAVerb) {
    EXPECT_THAT(completions({""}),
                IsSupersetOf({"status", "tree", "list", "get", "find", "dump", "completion"}));
    EXPECT_THAT(completions({"st"}), ElementsAre("status"));
    EXPECT_THAT(completions({"--wait", "3", "tr"}), ElementsAre("tree"));
}

TEST(CompletionCommandTest, Options_AreThoseOfTheProgramAndTheVerb) {
    EXPECT_THAT(completions({"tree", "--"}),
                IsSupersetOf({"--json", "--image", "--values", "--depth", "--paths"}));
    EXPECT_THAT(completions({"tree", "--"}), Not(Contains("--max-age")));
    EXPECT_THAT(completions({"--"}), Not(Contains("--depth")));
    EXPECT_THAT(completions({"--"}), Not(Contains("--now"))) << "hidden";
    EXPECT_THAT(completions({"status", "--max"}), ElementsAre("--max-age"));
}

TEST(CompletionCommandTest, ValueOfAnOption_IsNotAVerb) {
    EXPECT_THAT(completions({"tree", "--depth", ""}), IsEmpty());
    EXPECT_THAT(completions({"--color", "a"}), ElementsAre("always", "auto"));
    EXPECT_THAT(completions({"completion", ""}), ElementsAre("bash", "fish", "zsh"));
}

TEST(CompletionCommandTest, Keys_AreThoseOfThePoint) {
    ImageFolder const folder;
    auto const file = folder.add("healthy");
    EXPECT_THAT(completions({"--image", file, "get", "unit1/sensor1.1", ""}),
                ElementsAre("temperature", "humidity"));
    EXPECT_THAT(completions({"--image", file, "get", "unit1/inlet1", "active-p"}),
                ElementsAre("active-power"));
    EXPECT_THAT(completions({"--image", file, "get", "unit1", ""}), IsEmpty()) << "it has none";
    EXPECT_THAT(completions({"--image", file, "get", "unit9/x", ""}), IsEmpty());
    EXPECT_THAT(completions({"--image", file, "get", "unit1/inlet1", "voltage", ""}), IsEmpty())
        << "there is no third argument";
}

TEST(CompletionCommandTest, NamesOfValues_AreOfferedBehindAColon) {
    ImageFolder const folder;
    auto const file = folder.add("healthy");
    for (auto const* const verb : {"get", "hz", "list", "tree", "wait"}) {
        EXPECT_THAT(completions({"--image", file, verb, "unit1/sensor1.1:"}),
                    ElementsAre("unit1/sensor1.1:temperature", "unit1/sensor1.1:humidity"));
    }
    EXPECT_THAT(completions({"--image", file, "get", "unit1/sensor1.1", ":", "h"}), ElementsAre("humidity"))
        << "as bash splits it: only the last word is replaced";
    EXPECT_THAT(completions({"--image", file, "get", "unit1/sensor1.1", ":"}),
                ElementsAre("temperature", "humidity"));
    EXPECT_THAT(completions({"--image", file, "list", "unit1", ":", "x", "unit1/sensor1.1", ":", "h"}),
                ElementsAre("humidity"));
}

TEST(CompletionCommandTest, Points_AreThoseOfTheLiveUnit) {
    TempFile const rows("timestamp_utc,inlet1_voltage_V\n2023-06-09T07:34:30Z,230.04\n");
    QelReplayProcess replay({"--speed", "0", "--hold", rows.path()});
    ASSERT_TRUE(replay.readUntil("the region stays"));
    EXPECT_THAT(completions({"get", "unit1/"}), ElementsAre("unit1/inlet1"));
    EXPECT_THAT(completions({"get", ""}), ElementsAre("unit1", "unit1/inlet1"));
}

TEST(CompletionCommandTest, Points_AreThoseOfTheImageOnTheLine) {
    ImageFolder const folder;
    auto const file = folder.add("healthy");
    EXPECT_THAT(completions({"--image", file, "get", "unit1/s"}), ElementsAre("unit1/sensor1.1"));
    EXPECT_THAT(completions({"get", "--image", "=", file, "unit1/s"}), ElementsAre("unit1/sensor1.1"))
        << "with an equals sign";
    EXPECT_THAT(completions({"get", "unit1/s"}), IsEmpty()) << "there is no live unit";
}

TEST(CompletionCommandTest, NamesInACapture_AreThoseOfItsEnd) {
    ImageFolder const folder;
    auto const file = sampleCapture();
    for (auto const* const verb : {"log", "export", "plot"}) {
        EXPECT_THAT(completions({verb, file, "unit1/inlet1/circuit1/socket2", ":", "active-p"}),
                    ElementsAre("active-power"))
            << verb;
        EXPECT_THAT(completions({verb, "--from", "-1m", file, "unit1", "gr"}), ElementsAre("group1")) << verb;
        EXPECT_THAT(completions({verb, "nothing.rec", "gr"}), IsEmpty()) << verb;
        EXPECT_THAT(completions({verb, "ni"}), ElementsAre(file)) << verb;
    }
}

TEST(CompletionCommandTest, Files_AreOffered) {
    ImageFolder const folder;
    auto const file = folder.add("one-device");
    EXPECT_THAT(completions({"--image", "one"}), ElementsAre(file));
    EXPECT_THAT(completions({"dump", "one"}), ElementsAre(file));
}

} // namespace qel::test
