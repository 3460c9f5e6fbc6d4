// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tools/qelshm/watch/CurveMarks.h"

#include <gmock/gmock.h>

namespace qel::watch {

TEST(CurveMarksTest, Toggle_AddsUpToTheMostAndRemoves) {
    CurveMarks sut;
    for (long long svid = 1; svid <= 3; ++svid) {
        EXPECT_TRUE(sut.toggle(svid));
    }
    EXPECT_FALSE(sut.toggle(4)) << "there is no more room";
    EXPECT_TRUE(sut.toggle(2));
    EXPECT_THAT(sut.svids(), testing::ElementsAre(1, 3));
    EXPECT_TRUE(sut.toggle(4));
    EXPECT_THAT(sut.svids(), testing::ElementsAre(1, 3, 4));
}

} // namespace qel::watch
