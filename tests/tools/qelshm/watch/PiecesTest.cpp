// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tools/qelshm/watch/Pieces.h"

#include <gmock/gmock.h>

namespace qel::watch {

namespace {

std::vector<std::string> textsWithin(int width) {
    std::vector<std::string> texts;
    for (auto const& piece :
         fitting({{"clock", 0, {}}, {"state", 2, {}}, {"", 9, {}}, {"led", 1, {}}}, width, 3)) {
        texts.push_back(piece.text);
    }
    return texts;
}

} // namespace

TEST(PiecesTest, LeastImportantPieces_GoFirst) {
    using testing::ElementsAre;
    EXPECT_THAT(textsWithin(19), ElementsAre("clock", "state", "led"));
    EXPECT_THAT(textsWithin(18), ElementsAre("state", "led"));
    EXPECT_THAT(textsWithin(10), ElementsAre("state"));
    EXPECT_THAT(textsWithin(0), ElementsAre("state")) << "one always stays";
}

TEST(PiecesTest, NoPieces_AreNoPieces) {
    EXPECT_TRUE(fitting({}, 10, 3).empty());
    EXPECT_EQ(0, widthOf({}, 3));
}

} // namespace qel::watch
