// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tools/qelshm/app/RegionWait.h"

#include <gmock/gmock.h>

#include <thread>
#include <vector>

namespace qel::tools {

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class RegionWaitTest : public testing::Test {
protected:
    RegionWait wait(std::chrono::seconds longest) {
        return {longest, [&](std::string const& text) {
                    told.push_back(text);
                }};
    }

    /// Longer than the moment that is not worth a line.
    static void letTimePass() { std::this_thread::sleep_for(std::chrono::milliseconds(600)); }

    std::vector<std::string> told;
};

} // namespace

TEST_F(RegionWaitTest, NoTime_IsOverWithTheFirstProblem) {
    auto sut = wait(std::chrono::seconds(0));
    sut.note("nothing");
    EXPECT_TRUE(sut.isOver());
    EXPECT_TRUE(sut.isMissing());
    EXPECT_THAT(told, IsEmpty());
}

TEST_F(RegionWaitTest, Problem_IsToldOnceAfterAMoment) {
    auto sut = wait(std::chrono::seconds(600));
    sut.note("first");
    EXPECT_THAT(told, IsEmpty());
    letTimePass();
    sut.note("first");
    sut.note("first");
    sut.note("second");
    EXPECT_FALSE(sut.isOver());
    EXPECT_THAT(told, ElementsAre("waiting: first", "waiting: second"));
}

TEST_F(RegionWaitTest, RegionThatWasThere_IsAwaitedWithoutEnd) {
    auto sut = wait(std::chrono::seconds(0));
    sut.note("");
    EXPECT_FALSE(sut.isMissing());
    letTimePass();
    sut.note("gone");
    EXPECT_TRUE(sut.isMissing());
    EXPECT_FALSE(sut.isOver());
    EXPECT_THAT(told, ElementsAre("waiting: gone"));
}

TEST_F(RegionWaitTest, ProblemThatComesAgain_IsToldAgain) {
    auto sut = wait(std::chrono::seconds(600));
    letTimePass();
    sut.note("gone");
    sut.note("");
    letTimePass();
    sut.note("gone");
    EXPECT_THAT(told, ElementsAre("waiting: gone", "waiting: gone"));
}

} // namespace qel::tools
