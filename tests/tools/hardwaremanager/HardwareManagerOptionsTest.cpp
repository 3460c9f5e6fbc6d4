// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tools/hardwaremanager/HardwareManagerOptions.h"

#include <gtest/gtest.h>

#include <CLI/App.hpp>
#include <CLI/Config.hpp>
#include <CLI/Error.hpp>
#include <CLI/Formatter.hpp>

#include <string>
#include <vector>

namespace qel::tools {

namespace {

HardwareManagerOptions optionsOf(std::vector<std::string> arguments) {
    CLI::App app("", "qel-hardware-manager");
    HardwareManagerOptions options;
    defineOptions(app, options);
    app.parse(std::move(arguments));
    return options;
}

} // namespace

TEST(HardwareManagerOptionsTest, Defaults_LookTwiceASecondAndWriteLines) {
    auto const options = optionsOf({});
    EXPECT_EQ(0.5, options.interval);
    EXPECT_FALSE(options.isQuiet);
}

TEST(HardwareManagerOptionsTest, Interval_IsOneOfHundredthsToAnHourOrNone) {
    EXPECT_EQ(0.01, optionsOf({"--interval=0.01"}).interval);
    EXPECT_EQ(3600.0, optionsOf({"--interval=3600"}).interval);
    EXPECT_EQ(0.0, optionsOf({"--interval=0"}).interval);
    for (auto const* const wrong : {"0.009", "3600.1", "-1", "nan", "inf", "1s", "", "fast"}) {
        try {
            optionsOf({std::string("--interval=") + wrong});
            ADD_FAILURE() << wrong << " is accepted";
        } catch (CLI::ValidationError const& error) {
            EXPECT_EQ(std::string("--interval: expected 0.01 to 3600, or 0; not ") + wrong, error.what());
        } catch (CLI::ArgumentMismatch const& error) {
            EXPECT_STREQ("", wrong) << error.what();
        }
    }
}

TEST(HardwareManagerOptionsTest, Quiet_IsAFlag) {
    EXPECT_TRUE(optionsOf({"--quiet"}).isQuiet);
}

} // namespace qel::tools
