// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tools/qelshm/verbs/PlotCommand.h"

#include "tests/tools/qelshm/ImageFolder.h"
#include "tests/tools/qelshm/QelshmRun.h"
#include "tests/tools/qelshm/SampleCapture.h"

#include <gmock/gmock.h>

#include <cstdlib>
#include <filesystem>

namespace qel::test {

namespace {

class PlotCommandTest : public testing::Test {
protected:
    static QelshmOutcome runPlot(std::vector<std::string> const& arguments) {
        std::vector<std::string> words{"plot", "night.rec"};
        words.insert(words.end(), arguments.begin(), arguments.end());
        return runQelshm(words);
    }

    ImageFolder const folder_;
    std::string const file_ = sampleCapture();
};

} // namespace

TEST_F(PlotCommandTest, NameThatSelectsNothing_IsAnError) {
    auto const outcome = runPlot({"unit1/inlet9:voltage"});
    EXPECT_EQ(1, outcome.status);
    EXPECT_EQ("qelshm: there is no value \"unit1/inlet9:voltage\" in this part of night.rec\n",
              outcome.errors);
}

TEST_F(PlotCommandTest, TooManyCurves_AreAnError) {
    EXPECT_EQ("qelshm: 15 values have these names; a plot shows 8 at most\n", runPlot({"**"}).errors);
}

TEST_F(PlotCommandTest, LimitOfSeveralUnits_IsAnError) {
    EXPECT_EQ("qelshm: --limit needs values of one unit; plot them one unit at a time\n",
              runPlot({"unit1/inlet1:voltage", "unit1/inlet1:active-power", "--limit", "5"}).errors);
    EXPECT_EQ(2, runPlot({"unit1/inlet1:voltage", "--limit", "nan"}).status);
    EXPECT_EQ(2, runPlot({"unit1/inlet1:voltage", "--limit", "x=5"}).status);
}

TEST_F(PlotCommandTest, SeveralLimits_AreDrawn) {
    auto const output = runPlot({"--limit", "240=high", "unit1/inlet1:voltage", "--limit", "220"}).output;
    EXPECT_THAT(output, testing::HasSubstr("- - 240 V  high\n- - 220 V\n"));
}

TEST_F(PlotCommandTest, WithoutNames_IsWrongUsage) {
    EXPECT_EQ(2, runPlot({}).status);
}

TEST_F(PlotCommandTest, OutputThatIsTheCapture_IsRefusedBeforeGnuplotRuns) {
    std::string const before = std::getenv("PATH");
    ::setenv("PATH", "/nowhere", 1);
    auto const outcome = runPlot({"unit1/inlet1:voltage", "-o", "./night.rec"});
    ::setenv("PATH", before.c_str(), 1);
    EXPECT_EQ(1, outcome.status);
    EXPECT_EQ("qelshm: cannot write ./night.rec: it is the capture that is read; choose another file\n",
              outcome.errors);
    EXPECT_EQ(0, runQelshm({"log", "night.rec"}).status);
}

TEST_F(PlotCommandTest, OutputToADash_IsSvgOnStandardOutput) {
    auto const outcome = runPlot({"unit1/inlet1:voltage", "-o", "-"});
    if (outcome.errors.find("there is no gnuplot") != std::string::npos) {
        GTEST_SKIP() << "there is no gnuplot: tools/install-packages test";
    }
    EXPECT_EQ(0, outcome.status) << outcome.errors;
    EXPECT_THAT(outcome.output, testing::StartsWith("<?xml"));
    EXPECT_FALSE(std::filesystem::exists("-"));
}

TEST_F(PlotCommandTest, LargeLimit_IsShort) {
    EXPECT_THAT(runPlot({"unit1/inlet1:voltage", "--limit", "1e30=far"}).output,
                testing::HasSubstr("- - 1e+30 V  far\n"));
}

TEST_F(PlotCommandTest, MissingGnuplot_WritesNoFile) {
    std::string const before = std::getenv("PATH");
    ::setenv("PATH", "/nowhere", 1);
    auto const outcome = runPlot({"unit1/inlet1:voltage", "-o", "p.svg"});
    ::setenv("PATH", before.c_str(), 1);
    EXPECT_EQ(1, outcome.status);
    EXPECT_THAT(outcome.errors, testing::HasSubstr("install the package gnuplot-nox"));
    EXPECT_FALSE(std::filesystem::exists("p.svg"));
}

} // namespace qel::test
