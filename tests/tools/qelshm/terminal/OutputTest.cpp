// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tools/qelshm/terminal/Output.h"

#include <gmock/gmock.h>

#include <fstream>
#include <sstream>

namespace qel::tools {

TEST(OutputTest, Text_IsWritten) {
    std::ostringstream out;
    writeOutput(out, "text\n");
    EXPECT_EQ("text\n", out.str());
}

TEST(OutputTest, FullDevice_IsAnError) {
    std::ofstream out("/dev/full");
    EXPECT_THAT([&] { writeOutput(out, "text\n"); },
                testing::ThrowsMessage<std::runtime_error>("the output cannot be written"));
}

} // namespace qel::tools
