// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tools/qelshm/verbs/WatchCommand.h"

#include "tests/tools/qelshm/QelshmRun.h"

#include <gmock/gmock.h>

namespace qel::test {

using testing::HasSubstr;

TEST(WatchCommandTest, TextThatIsNoName_IsRefusedWithAnExample) {
    for (auto const* const name :
         {"inlet", "unit1/", "unit1/inlet1:no-such-key", "0x0100ffffffff0013:current"}) {
        auto const outcome = runQelshm({"watch", name});
        EXPECT_EQ(2, outcome.status) << name;
        EXPECT_THAT(outcome.errors, HasSubstr("NAME")) << name;
    }
    EXPECT_THAT(runQelshm({"watch", "inlet"}).errors, HasSubstr("names are like unit1/inlet1"));
}

TEST(WatchCommandTest, NamesOfValuesAndWildcards_AreTaken) {
    for (auto const* const name :
         {"unit1/inlet1:active-power", "unit1/**:*power", "0x0100ffffffff0013", "unit*"}) {
        auto const outcome = runQelshm({"watch", "--wait", "0", "--count", "1", name});
        EXPECT_EQ(1, outcome.status) << name;
        EXPECT_THAT(outcome.errors, HasSubstr("no active region after 0 s")) << name;
    }
}

TEST(WatchCommandTest, NumberThatIsNone_IsRefused) {
    for (auto const* const option : {"--max-age", "--interval"}) {
        for (auto const* const number : {"nan", "inf", "-1", "0", "soon", "1e99"}) {
            EXPECT_EQ(2, runQelshm({"watch", option, number}).status) << option << ' ' << number;
        }
    }
}

} // namespace qel::test
