// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "inspect/capture/CaptureWriter.h"

#include "inspect/capture/CaptureReader.h"

#include "tests/inspect/capture/CaptureFixture.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <stdexcept>
#include <string>

namespace qel::inspect {

namespace {

using CaptureWriterTest = test::CaptureTest;
using test::SizeLimit;
using testing::HasSubstr;

} // namespace

TEST_F(CaptureWriterTest, New_IsACaptureWithoutSamples) {
    CaptureWriter sut(path(), 77);
    EXPECT_EQ(captureHeader(77), content(path()));
    EXPECT_EQ(CAPTURE_HEADER_SIZE, sut.size());
    EXPECT_EQ(0U, sut.samples());
}

TEST_F(CaptureWriterTest, Append_WritesEachSampleAtOnce) {
    auto const images = test::randomImages(20, 8);
    CaptureWriter sut(path(), 0);
    std::string expected = captureHeader(0);
    Image before;
    for (std::size_t index = 0; index < images.size(); ++index) {
        sut.append(index * 100, images[index]);
        expected += frameOf(index == 0 ? 0 : 100, before, images[index]);
        before = images[index];
        EXPECT_EQ(expected, content(path()));
        EXPECT_EQ(expected.size(), sut.size());
        EXPECT_EQ(index + 1, sut.samples());
    }
    sut.close();
    EXPECT_EQ(expected, content(path()));
}

TEST_F(CaptureWriterTest, Append_RefusesATimeThatGoesBack) {
    CaptureWriter sut(path(), 0);
    sut.append(10, Image());
    auto const before = content(path());
    EXPECT_THROW(sut.append(9, Image()), std::invalid_argument);
    EXPECT_EQ(before, content(path()));
    sut.append(10, Image());
}

TEST_F(CaptureWriterTest, Append_ThatFailsLeavesTheSamplesBeforeAndCanBeTriedAgain) {
    auto const images = test::randomImages(14, 9); // the seventh and the last one change everything
    CaptureWriter sut(path(), 0);
    sut.append(0, images[0]);
    auto const before = content(path());
    {
        SizeLimit const limit(before.size() + 1000);
        EXPECT_EQ("cannot record to " + path() + ": File too large",
                  problemOf([&] { sut.append(5, images[6]); }));
    }
    EXPECT_EQ(before, content(path()));
    EXPECT_EQ(1U, sut.samples());
    sut.append(7, images[13]);

    CaptureReader reader(path());
    test::expectSame(images[0], reader.next().value().image);
    auto const second = reader.next().value();
    EXPECT_EQ(7U, second.time);
    test::expectSame(images[13], second.image);
    EXPECT_FALSE(reader.next());
}

TEST_F(CaptureWriterTest, New_LeavesNothingWhenTheHeaderFails) {
    {
        SizeLimit const limit(10);
        EXPECT_THAT(problemOf([&] { CaptureWriter(path(), 0); }), HasSubstr("File too large"));
    }
    EXPECT_FALSE(std::filesystem::exists(path()));
}

TEST_F(CaptureWriterTest, New_OverwritesNothing) {
    fill(path(), "old");
    EXPECT_EQ("cannot record to " + path() + ": File exists", problemOf([&] { CaptureWriter(path(), 0); }));
    EXPECT_EQ("old", content(path()));
}

TEST_F(CaptureWriterTest, New_SaysWhyThereCanBeNoFile) {
    EXPECT_EQ("cannot record to " + path("none/capture") + ": No such file or directory",
              problemOf([&] { CaptureWriter(path("none/capture"), 0); }));
}

TEST_F(CaptureWriterTest, New_RefusesTheLiveObject) {
    std::filesystem::remove("/dev/shm/QelSharedMemory"); // what an earlier test may have left
    EXPECT_THAT(problemOf([] { CaptureWriter("/dev/shm/QelSharedMemory", 0); }),
                HasSubstr("it is the live object"));
    EXPECT_FALSE(test::rawRegionExists());
}

TEST_F(CaptureWriterTest, New_GivesTheModeThatTheUserAskedFor) {
    auto const before = ::umask(027);
    CaptureWriter const sut(path(), 0);
    ::umask(before);
    struct stat status = {};
    ASSERT_EQ(0, ::stat(path().c_str(), &status));
    EXPECT_EQ(0640U, status.st_mode & 0777U);
}

TEST_F(CaptureWriterTest, Close_IsTheEnd) {
    CaptureWriter sut(path(), 0);
    sut.append(0, Image());
    sut.close();
    EXPECT_THAT(problemOf([&] { sut.append(1, Image()); }), HasSubstr("Bad file descriptor"));
    EXPECT_THAT(problemOf([&] { sut.close(); }), HasSubstr("Bad file descriptor"));
}

} // namespace qel::inspect
