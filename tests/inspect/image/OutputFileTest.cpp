// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "inspect/image/OutputFile.h"

#include "inspect/image/ImageFile.h"

#include "tests/inspect/FileTest.h"

#include <gtest/gtest.h>

#include <fcntl.h>
#include <sys/stat.h>

#include <filesystem>
#include <string>

namespace qel::inspect {

namespace {

using OutputFileTest = test::FileTest<ImageFileError>;

} // namespace

TEST_F(OutputFileTest, File_HasItsNameOnlyWhenItIsFinished) {
    fill(path(), "old");
    OutputFile sut(path());
    sut.write("new ");
    sut.write("text");
    EXPECT_EQ("old", content(path()));
    sut.finish();
    EXPECT_EQ("new text", content(path()));
}

TEST_F(OutputFileTest, Unfinished_LeavesTheOldFileAndNothingElse) {
    fill(path(), "old");
    {
        OutputFile const sut(path());
        sut.write("half");
    }
    EXPECT_EQ("old", content(path()));
    EXPECT_EQ(1, std::distance(std::filesystem::directory_iterator(path("")), {}));
}

TEST_F(OutputFileTest, Interrupted_LeavesNothing) {
    fill(path(), "old");
    FileDescriptor const probe(::open(path("").c_str(), O_WRONLY | O_TMPFILE | O_CLOEXEC, 0600));
    if (!probe) {
        GTEST_SKIP() << "this file system has no files without names";
    }
    OutputFile sut(path());
    sut.write("half");
    EXPECT_EQ(1, std::distance(std::filesystem::directory_iterator(path("")), {}))
        << "what a signal would leave";
    sut.finish();
    EXPECT_EQ("half", content(path()));
    EXPECT_EQ(1, std::distance(std::filesystem::directory_iterator(path("")), {}));
}

TEST_F(OutputFileTest, NewFile_HasTheUsualRights) {
    {
        OutputFile sut(path());
        sut.finish();
    }
    auto const mask = ::umask(0);
    ::umask(mask);
    EXPECT_EQ(static_cast<std::filesystem::perms>(0666U & ~mask),
              std::filesystem::status(path()).permissions());
}

TEST_F(OutputFileTest, FullDisk_IsAnErrorThatLeavesTheOldFile) {
    fill(path(), "old");
    test::SizeLimit const limit(10);
    EXPECT_EQ("cannot write " + path() + ": File too large", problemOf([&] {
                  OutputFile sut(path());
                  sut.write("more than ten bytes");
                  sut.finish();
              }));
    EXPECT_EQ("old", content(path()));
}

TEST_F(OutputFileTest, Device_IsWrittenDirectly) {
    OutputFile sut("/dev/null");
    sut.write("text");
    sut.finish();
    EXPECT_EQ("cannot write " + path("none/file") + ": No such file or directory",
              problemOf([&] { OutputFile(path("none/file")); }));
}

} // namespace qel::inspect
