// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tools/qelshm/verbs/DumpCommand.h"

#include "tests/support/ForgedRegion.h"
#include "tests/tools/qelshm/ImageFolder.h"
#include "tests/tools/qelshm/QelshmRun.h"
#include "tests/tools/qelshm/SampleCapture.h"
#include "tests/tools/qelshm/SampleImages.h"

#include "inspect/image/ImageFile.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

namespace qel::test {

namespace {

std::vector<std::uint8_t> bytesOf(std::string const& file) {
    auto const image = inspect::readImage(file);
    return {image.bytes().begin(), image.bytes().end()};
}

} // namespace

TEST(DumpCommandTest, File_HoldsTheObjectsBytes) {
    ImageFolder const folder;
    ForgedRegion const region;
    region.point(5, sample::socket3);
    auto const outcome = runQelshm({"dump", "saved.img"});
    EXPECT_EQ(0, outcome.status) << outcome.errors;
    EXPECT_EQ("", outcome.output);
    EXPECT_EQ(region.raw().copy(), bytesOf("saved.img"));
}

TEST(DumpCommandTest, ShortImage_StaysShort) {
    ImageFolder const folder;
    EXPECT_EQ(0, runQelshm({"dump", "saved.img", "--image", folder.add("truncated")}).status);
    EXPECT_EQ(100000U, bytesOf("saved.img").size());
}

TEST(DumpCommandTest, Json_TellsWhatWasWritten) {
    ImageFolder const folder;
    auto const outcome = runQelshm({"dump", "saved.img", "--json", "--image", folder.add("healthy")});
    auto const document = nlohmann::json::parse(outcome.output);
    EXPECT_EQ("saved.img", document.at("file"));
    EXPECT_EQ(320032, document.at("bytes"));
}

TEST(DumpCommandTest, NoObject_WritesNoFile) {
    ImageFolder const folder;
    auto const outcome = runQelshm({"dump", "saved.img"});
    EXPECT_EQ(1, outcome.status);
    EXPECT_EQ("qelshm: there is no shared-memory object QelSharedMemory\n", outcome.errors);
    EXPECT_FALSE(std::filesystem::exists("saved.img"));
}

TEST(DumpCommandTest, FileThatIsTheCapture_IsRefused) {
    ImageFolder const folder;
    auto const file = sampleCapture();
    auto const before = bytesOf(file);
    auto const outcome = runQelshm({"--image", file, "dump", "./" + file});
    EXPECT_EQ(1, outcome.status);
    EXPECT_EQ("qelshm: cannot write ./" + file + ": it is the capture that is read; choose another file\n",
              outcome.errors);
    EXPECT_EQ(before, bytesOf(file));
}

TEST(DumpCommandTest, Hyphen_IsStandardOutput) {
    ImageFolder const folder;
    auto const file = folder.add("healthy");
    auto const outcome = runQelshm({"dump", "-", "--image", file});
    EXPECT_EQ(0, outcome.status);
    EXPECT_EQ(sampleImage("healthy").bytes(), outcome.output);
    EXPECT_FALSE(std::filesystem::exists("-"));
    auto const none = runQelshm({"dump", "-"});
    EXPECT_EQ(1, none.status);
    EXPECT_EQ("", none.output);
}

TEST(DumpCommandTest, LiveObject_IsNeverWritten) {
    ImageFolder const folder;
    auto const file = folder.add("healthy");
    ForgedRegion const region;
    auto const before = region.raw().copy();
    auto const outcome = runQelshm({"dump", "/dev/shm/QelSharedMemory", "--image", file});
    EXPECT_EQ(1, outcome.status);
    EXPECT_EQ("qelshm: cannot write /dev/shm/QelSharedMemory: it is the live object; choose another file\n",
              outcome.errors);
    EXPECT_EQ(before, region.raw().copy());
}

} // namespace qel::test
