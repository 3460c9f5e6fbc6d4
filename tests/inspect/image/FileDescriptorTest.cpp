// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "inspect/image/FileDescriptor.h"

#include "tests/inspect/Lengths.h"
#include "tests/support/RawRegion.h"

#include <gtest/gtest.h>

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <string>
#include <system_error>

namespace qel::inspect {

namespace {

bool isOpen(int fd) {
    return ::fcntl(fd, F_GETFD) >= 0;
}

int openOne() {
    return ::open("/dev/null", O_RDONLY | O_CLOEXEC);
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

} // namespace

TEST(FileDescriptorTest, ClosesAtTheEnd) {
    int const fd = openOne();
    {
        FileDescriptor const descriptor(fd);
        EXPECT_TRUE(descriptor);
        EXPECT_EQ(fd, descriptor.number());
        EXPECT_TRUE(isOpen(fd));
    }
    EXPECT_FALSE(isOpen(fd));
}

TEST(FileDescriptorTest, OwnsNoneByDefaultOrByANegativeNumber) {
    EXPECT_FALSE(FileDescriptor());
    EXPECT_FALSE(FileDescriptor(-1));
}

TEST(FileDescriptorTest, AMoveHandsItOver) {
    int const fd = openOne();
    FileDescriptor from(fd);
    {
        FileDescriptor const into(std::move(from));
        EXPECT_EQ(fd, into.number());
        EXPECT_FALSE(from); // NOLINT(bugprone-use-after-move): says that it is given away
        EXPECT_TRUE(isOpen(fd));
    }
    EXPECT_FALSE(isOpen(fd));
}

TEST(FileDescriptorTest, AssignmentClosesWhatItHeld) {
    int const first = openOne();
    int const second = openOne();
    FileDescriptor descriptor(first);
    descriptor = FileDescriptor(second);
    EXPECT_FALSE(isOpen(first));
    EXPECT_EQ(second, descriptor.number());
    auto& same = descriptor;
    descriptor = std::move(same);
    EXPECT_TRUE(isOpen(second));
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

} // namespace qel::inspect
