// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "inspect/image/ImageFile.h"

#include "tests/inspect/Lengths.h"
#include "tests/inspect/SizeLimit.h"
#include "tests/support/RawRegion.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <sys/stat.h>
#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
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

template <typename Action>
std::string problemOf(Action const& action) {
    try {
        action();
    } catch (ImageFileError const& error) {
        return error.what();
    }
    return "(none)";
}

/// A directory of its own.
class ImageFileTest : public testing::Test {
protected:
    ImageFileTest() : directory_("/tmp/qel-image-XXXXXX") {
        if (::mkdtemp(directory_.data()) == nullptr) {
            throw std::runtime_error("mkdtemp failed");
        }
    }
    ~ImageFileTest() override { fs::remove_all(directory_); }

    std::string path(std::string const& name) const { return directory_ + '/' + name; }

    static std::string content(std::string const& path) {
        std::ifstream file(path, std::ios::binary);
        return {std::istreambuf_iterator<char>(file), {}};
    }
    static void fill(std::string const& path, std::string const& text) {
        std::ofstream(path, std::ios::binary) << text;
    }
    std::vector<std::string> names() const {
        std::vector<std::string> found;
        for (auto const& entry : fs::directory_iterator(directory_)) {
            found.push_back(entry.path().filename());
        }
        return found;
    }

private:
    std::string directory_;
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

TEST_F(ImageFileTest, Read_OfAnEndlessDeviceEnds) {
    EXPECT_EQ(test::rawRegionSize, readImage("/dev/zero").size());
}

TEST_F(ImageFileTest, Write_ReplacesAFile) {
    fill(path("image"), std::string(400000, 'x'));
    writeImage(imageOfLength(1000), path("image"));
    EXPECT_EQ(sourceBytes(1000), content(path("image")));
    EXPECT_THAT(names(), testing::ElementsAre("image"));
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
    EXPECT_EQ("cannot write " + path("").substr(0, path("").size() - 1) + ": Is a directory",
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

} // namespace qel::inspect
