// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tools/qelshm/verbs/ListCommand.h"

#include "tests/tools/qelshm/ImageFolder.h"
#include "tests/tools/qelshm/QelshmRun.h"
#include "tests/tools/qelshm/SampleImages.h"

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

namespace qel::test {

namespace {

std::string const now = std::to_string(sampleTime + 5000);

} // namespace

TEST(ListCommandTest, Points_AreFollowedByTheirValues) {
    ImageFolder const folder;
    auto const outcome = runQelshm({"list", "--image", folder.add("healthy"), "--now", now});
    EXPECT_EQ(0, outcome.status);
    EXPECT_THAT(
        outcome.output,
        testing::StartsWith(
            "0x0100ffffffff0000  unit1                          Master                           On\n"
            "0x010001ffffff0000  unit1/inlet1                   1P                               On\n"
            "  0x010001ffffff0001  Voltage        230.1 V   No Error        2023-11-14T22:13:20Z  5.0 s\n"
            "  0x010001ffffff0013  Active Power   1234.5 W  No Error        2023-11-14T22:13:20Z  5.0 s\n"
            "  0x010001ffffff0024  Active Energy  4.6 kWh   No Error        2023-11-14T22:13:20Z  5.0 s\n"
            "0x010001ff01ff0000  unit1/inlet1/circuit1"));
    EXPECT_THAT(outcome.output,
                testing::HasSubstr("  0x010001ff01030001  Voltage        n/a       Expected Value  "
                                   "-                     -\n"));
}

TEST(ListCommandTest, Json_HoldsTheSame) {
    ImageFolder const folder;
    auto const outcome = runQelshm({"list", "--json", "--image", folder.add("healthy"), "--now", now});
    EXPECT_EQ(0, outcome.status);
    auto const document = nlohmann::json::parse(outcome.output);
    EXPECT_EQ("list", document.at("verb"));
    ASSERT_EQ(8U, document.at("points").size());
    EXPECT_EQ("0x010001ffffff0013", document.at("points").at(1).at("values").at(1).at("svid"));
}

TEST(ListCommandTest, NothingThere_IsAFailure) {
    auto const outcome = runQelshm({"list"});
    EXPECT_EQ(1, outcome.status);
    EXPECT_EQ("", outcome.output);
    EXPECT_EQ("qelshm: there is no shared-memory object QelSharedMemory\n", outcome.errors);
}

} // namespace qel::test
