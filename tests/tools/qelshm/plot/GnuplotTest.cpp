// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tools/qelshm/plot/Gnuplot.h"

#include <gmock/gmock.h>

#include <cstdlib>
#include <string>

namespace qel::plot {

namespace {

std::string problemOf(std::string const& script) {
    try {
        runGnuplot(script);
        return "(none)";
    } catch (GnuplotError const& error) {
        return error.what();
    }
}

} // namespace

TEST(GnuplotTest, Missing_NamesThePackage) {
    std::string const before = std::getenv("PATH");
    ::setenv("PATH", "/nowhere", 1);
    auto const problem = problemOf("");
    ::setenv("PATH", before.c_str(), 1);
    EXPECT_THAT(problem, testing::HasSubstr("install the package gnuplot-nox"));
}

class InstalledGnuplotTest : public testing::Test {
protected:
    void SetUp() override {
        if (problemOf("").find("there is no gnuplot") != std::string::npos) {
            GTEST_SKIP() << "there is no gnuplot: tools/install-packages test";
        }
    }
};

TEST_F(InstalledGnuplotTest, Script_BecomesAPicture) {
    EXPECT_THAT(runGnuplot("set terminal svg\nplot 1\n"), testing::StartsWith("<?xml"));
}

TEST_F(InstalledGnuplotTest, WrongScript_IsAnErrorWithItsReason) {
    EXPECT_THAT(problemOf("set terminal svg\nnonsense\n"),
                testing::StartsWith("cannot draw the plot: gnuplot failed: "));
    EXPECT_EQ("cannot draw the plot: gnuplot failed", problemOf("")) << "no picture";
}

// More than a pipe holds, on the way in and on the way out.
TEST_F(InstalledGnuplotTest, LargeScript_IsReadToItsEnd) {
    std::string script("set terminal svg\n$x << END\n");
    for (int index = 0; index < 100000; ++index) {
        script += std::to_string(index) + ' ' + std::to_string(index % 17) + '\n';
    }
    EXPECT_GT(runGnuplot(script + "END\nplot $x with lines\n").size(), 100000U);
}

} // namespace qel::plot
