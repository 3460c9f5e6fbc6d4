// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "inspect/image/ImageFile.h"

#include "tests/inspect/FileTest.h"
#include "tests/inspect/Lengths.h"
#include "tests/support/RawRegion.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <string>
#include <system_error>
#include <utility>
#include <vector>

namespace qel::inspect {

namespace {

namespace fs = std::filesystem;
using test::SizeLimit;
using test::sourceBytes;
using testing::HasSubstr;

Image imageOfLength(std::size_t length) {
    auto const source = sourceBytes(length);
    return {source.data(), source.size()};
}

/// Gives a text in pieces, with an interruption before each.
class Pieces {
public:
    Pieces(std::string text, std::size_t length) : text_(std::move(text)), length_(length) {}

    ssize_t operator()(void* bytes, std::size_t count, off_t offset) {
        interrupt_ = !interrupt_;
        if (interrupt_) {
            errno = EINTR;
            return -1;
        }
        auto const begin = std::min(static_cast<std::size_t>(offset), text_.size());
        auto const given = std::min({length_, count, text_.size() - begin});
        std::memcpy(bytes, text_.data() + begin, given);
        return static_cast<ssize_t>(given);
    }

private:
    std::string text_;
    std::size_t length_;
    bool interrupt_ = false;
};

class ImageFileTest : public test::FileTest<ImageFileError> {
protected:
    /// The names of the files in the directory.
    std::vector<std::string> names() const {
        std::vector<std::string> found;
        for (auto const& entry : fs::directory_iterator(path(""))) {
            found.push_back(entry.path().filename());
        }
        return found;
    }
};

} // namespace

class ImageFileLengthTest : public ImageFileTest, public testing::WithParamInterface<std::size_t> {};

TEST_P(ImageFileLengthTest, Read_GivesSizeAndBytes) {
    auto const source = sourceBytes(GetParam());
    fill(path("image"), source);
    auto const image = readImage(path("image"));
    EXPECT_EQ(source.size(), image.size());
    EXPECT_EQ(source.substr(0, test::rawRegionSize), image.bytes());
}

TEST_P(ImageFileLengthTest, Write_WritesExactlyTheBytes) {
    auto const image = imageOfLength(GetParam());
    writeImage(image, path("image"));
    EXPECT_EQ(image.bytes(), content(path("image")));
    EXPECT_THAT(names(), testing::ElementsAre("image"));
}

INSTANTIATE_TEST_SUITE_P(Lengths, ImageFileLengthTest, testing::ValuesIn(test::sourceLengths));

TEST_F(ImageFileTest, Read_SaysWhyAFileCannotBeRead) {
    EXPECT_EQ("cannot read " + path("none") + ": No such file or directory",
              problemOf([&] { readImage(path("none")); }));
    EXPECT_EQ("cannot read " + path("") + ": Is a directory", problemOf([&] { readImage(path("")); }));
}

TEST_F(ImageFileTest, Read_TakesWhatAPipeDelivers) {
    int ends[2] = {-1, -1};
    ASSERT_EQ(0, ::pipe(ends));
    auto const source = sourceBytes(5000);
    ASSERT_EQ(5000, ::write(ends[1], source.data(), source.size()));
    ::close(ends[1]);
    auto const image = readImage("/dev/fd/" + std::to_string(ends[0]));
    ::close(ends[0]);
    EXPECT_EQ(source, image.bytes());
}

TEST_F(ImageFileTest, Read_OfAPipeThatNobodyWritesToEnds) {
    ASSERT_EQ(0, ::mkfifo(path("pipe").c_str(), 0600));
    EXPECT_EQ("cannot read " + path("pipe") + ": No data available",
              problemOf([&] { readImage(path("pipe")); }));
}

TEST_F(ImageFileTest, Read_OfAnEndlessDeviceEnds) {
    EXPECT_EQ(test::rawRegionSize, readImage("/dev/zero").size());
}

TEST_F(ImageFileTest, Write_ReplacesAFile) {
    fill(path("image"), std::string(400000, 'x'));
    writeImage(imageOfLength(1000), path("image"));
    EXPECT_EQ(sourceBytes(1000), content(path("image")));
    EXPECT_THAT(names(), testing::ElementsAre("image"));
}

TEST_F(ImageFileTest, Write_NamesTheFileAsTheCallerDoes) {
    auto const inNoFolder = path("none") + "/image";
    EXPECT_EQ("cannot write " + inNoFolder + ": No such file or directory",
              problemOf([&] { writeImage(imageOfLength(1), inNoFolder); }));
    fs::create_directory(path("folder"));
    fs::create_symlink("folder", path("link"));
    EXPECT_EQ("cannot write " + path("link") + ": Is a directory",
              problemOf([&] { writeImage(imageOfLength(1), path("link")); }));
}

TEST_F(ImageFileTest, Write_KeepsALinkAndReplacesWhatItLeadsTo) {
    fill(path("image"), "old");
    fs::create_symlink("image", path("link"));
    writeImage(imageOfLength(1000), path("link"));
    EXPECT_TRUE(fs::is_symlink(path("link")));
    EXPECT_EQ(sourceBytes(1000), content(path("image")));
}

TEST_F(ImageFileTest, Write_ThatFailsLeavesTheOldFileAndNothingElse) {
    fill(path("image"), "old");
    {
        SizeLimit const limit(100000);
        EXPECT_EQ("cannot write " + path("image") + ": File too large",
                  problemOf([&] { writeImage(imageOfLength(320032), path("image")); }));
    }
    EXPECT_EQ("old", content(path("image")));
    EXPECT_THAT(names(), testing::ElementsAre("image"));
}

TEST_F(ImageFileTest, Write_SaysWhyAFileCannotBeWritten) {
    auto const image = imageOfLength(1000);
    EXPECT_THAT(problemOf([&] { writeImage(image, path("none/image")); }),
                HasSubstr("No such file or directory"));
    EXPECT_EQ("cannot write " + path("") + ": Is a directory",
              problemOf([&] { writeImage(image, path("")); }));
    EXPECT_EQ("cannot write /dev/full: No space left on device",
              problemOf([&] { writeImage(image, "/dev/full"); }));
}

TEST_F(ImageFileTest, Write_LeavesADeviceADevice) {
    writeImage(imageOfLength(1000), "/dev/null");
    EXPECT_TRUE(fs::is_character_file("/dev/null"));
}

TEST_F(ImageFileTest, Write_GivesTheModeThatTheUserAskedFor) {
    auto const before = ::umask(027);
    writeImage(imageOfLength(1), path("image"));
    ::umask(before);
    struct stat status = {};
    ASSERT_EQ(0, ::stat(path("image").c_str(), &status));
    EXPECT_EQ(0640U, status.st_mode & 0777U);
}

TEST_F(ImageFileTest, Write_RefusesTheLiveObject) {
    auto const image = imageOfLength(1000);
    fs::remove("/dev/shm/QelSharedMemory"); // what an earlier test may have left
    auto const refused = HasSubstr("it is the live object");
    EXPECT_THAT(problemOf([&] { writeImage(image, "/dev/shm/QelSharedMemory"); }), refused);
    EXPECT_FALSE(test::rawRegionExists());

    test::RawRegion const raw(true);
    raw.fill(0x11);
    fs::create_symlink("/dev/shm/QelSharedMemory", path("link"));
    EXPECT_THAT(problemOf([&] { writeImage(image, "/dev/shm/QelSharedMemory"); }), refused);
    EXPECT_THAT(problemOf([&] { writeImage(image, path("link")); }), refused);
    EXPECT_EQ(test::rawRegionSize, readImage("/dev/shm/QelSharedMemory").size());
    EXPECT_EQ(std::vector<std::uint8_t>(test::rawRegionSize, 0x11), raw.copy());
}

TEST_F(ImageFileTest, Write_TakesTheObjectsNameElsewhere) {
    writeImage(imageOfLength(10), path("QelSharedMemory"));
    EXPECT_EQ(sourceBytes(10), content(path("QelSharedMemory")));
}

class ImageOfTest : public testing::TestWithParam<std::size_t> {};

TEST_P(ImageOfTest, ReadsOverShortAndInterruptedReads) {
    auto const source = test::sourceBytes(GetParam());
    auto const image = imageOf(Pieces(source, 4099), [&] { return source.size(); });
    EXPECT_EQ(source.size(), image.size());
    EXPECT_EQ(source.substr(0, test::rawRegionSize), image.bytes());
}

INSTANTIATE_TEST_SUITE_P(Lengths, ImageOfTest, testing::ValuesIn(test::sourceLengths));

TEST(ImageOfTest, ASourceThatEndsEarlyHasTheBytesThatCame) {
    auto const source = test::sourceBytes(5000);
    auto const image = imageOf(Pieces(source, 5000), [] { return test::rawRegionSize; });
    EXPECT_EQ(5000U, image.size());
    EXPECT_EQ(source, image.bytes());
}

TEST(ImageOfTest, ASourceOfUnknownSizeHasAtLeastWhatCame) {
    auto const image = imageOf(Pieces(test::sourceBytes(400000), 400000), [] { return 0; });
    EXPECT_EQ(test::rawRegionSize, image.size());
}

TEST(ImageOfTest, AFailureIsThrownWithItsNumber) {
    auto const failing = [](void* /*bytes*/, std::size_t /*count*/, off_t /*offset*/) -> ssize_t {
        errno = EIO;
        return -1;
    };
    try {
        imageOf(failing, [] { return 0; });
        FAIL() << "nothing was thrown";
    } catch (std::system_error const& error) {
        EXPECT_EQ(EIO, error.code().value());
    }
}

TEST_F(ImageFileTest, LiveObject_IsKnownByItsPath) {
    EXPECT_TRUE(isLiveObject("/dev/shm/QelSharedMemory"));
    EXPECT_TRUE(isLiveObject("/dev/../dev/shm/./QelSharedMemory"));
    EXPECT_FALSE(isLiveObject("/dev/shm/QelSharedMemory2"));
    EXPECT_FALSE(isLiveObject("/tmp/QelSharedMemory"));
    EXPECT_FALSE(isLiveObject("/nowhere/QelSharedMemory"));
    EXPECT_FALSE(isLiveObject(""));
}

TEST_F(ImageFileTest, LiveObject_IsKnownByItsNameInItsDirectory) {
    auto const before = std::filesystem::current_path();
    std::filesystem::current_path("/dev/shm");
    EXPECT_TRUE(isLiveObject("QelSharedMemory"));
    std::filesystem::current_path(before);
}

} // namespace qel::inspect
