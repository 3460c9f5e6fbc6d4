// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tools/common/CommandLine.h"

#include <CLI/App.hpp>
#include <CLI/Config.hpp>
#include <CLI/Formatter.hpp>
#include <gtest/gtest.h>

namespace qel::tools {

TEST(CommandLineTest, TellError_IsOneLineThatHarmsNoTerminal) {
    CLI::App const app("", "program");
    testing::internal::CaptureStderr();
    tellError(app, "no file \x1b[2J\n\xFF");
    EXPECT_EQ("program: no file \\x1B[2J\\x0A\\xFF\n", testing::internal::GetCapturedStderr());
}

} // namespace qel::tools
