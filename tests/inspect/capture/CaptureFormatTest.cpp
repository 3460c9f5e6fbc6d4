// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "inspect/capture/CaptureFormat.h"

#include "tests/inspect/capture/CaptureFixture.h"

#include <gtest/gtest.h>

#include <cstring>
#include <limits>
#include <stdexcept>
#include <string>
#include <vector>

namespace qel::inspect {

namespace {

using namespace std::string_literals;

Frame decoded(std::string const& frame, Image const& before) {
    auto const head = std::string_view(frame).substr(0, FRAME_HEAD_SIZE);
    EXPECT_EQ(frame.size() - FRAME_HEAD_SIZE, contentSize(head));
    return frameFrom(head, std::string_view(frame).substr(FRAME_HEAD_SIZE), before);
}

/// A frame with any content and the right checksum, which is built here bit by bit once more.
std::string frameAround(std::string const& content) {
    std::string head;
    for (unsigned shift = 0; shift < 32; shift += 8) {
        head += static_cast<char>(content.size() >> shift & 0xFFU);
    }
    std::uint32_t crc = 0xFFFFFFFF;
    for (auto const byte : head + content) {
        crc ^= static_cast<unsigned char>(byte);
        for (int bit = 0; bit < 8; ++bit) {
            crc = crc >> 1U ^ ((crc & 1U) != 0 ? 0xEDB88320U : 0U);
        }
    }
    crc = ~crc;
    for (unsigned shift = 0; shift < 32; shift += 8) {
        head += static_cast<char>(crc >> shift & 0xFFU);
    }
    return head + content;
}

std::string problemIn(std::string const& content) {
    try {
        decoded(frameAround(content), Image());
    } catch (std::invalid_argument const& problem) {
        return problem.what();
    }
    return "(none)";
}

std::string problemInHeader(std::string const& header) {
    try {
        captureStart(header);
    } catch (std::invalid_argument const& problem) {
        return problem.what();
    }
    return "(none)";
}

Image imageWith(std::size_t offset, std::uint64_t word) {
    std::vector<std::uint8_t> bytes(test::rawRegionSize, 0xFF);
    std::memcpy(bytes.data() + offset, &word, sizeof word);
    return {bytes.data(), bytes.size()};
}

} // namespace

TEST(CaptureFormatTest, HeaderIsAsWrittenDown) {
    auto const header = captureHeader(0x0000018BCFE56800);
    EXPECT_EQ("QELSHREC\x01\0\0\0\x20\xE2\x04\0\0\x68\xE5\xCF\x8B\x01\0\0"s, header.substr(0, 24));
    EXPECT_EQ(CAPTURE_HEADER_SIZE, header.size());
    EXPECT_EQ(0x0000018BCFE56800U, captureStart(header));
}

TEST(CaptureFormatTest, FrameIsAsWrittenDown) {
    // Word 2 of the region, then the last one.
    auto image = imageWith(16, 0x0807060504030201);
    std::vector<std::uint8_t> bytes(image.bytes().begin(), image.bytes().end());
    std::memset(bytes.data() + 320024, 0x11, 8);
    auto const changed = Image(bytes.data(), bytes.size());

    auto const content = "\xE8\x07"                                           // 1000 ms
                         "\xA0\xC4\x13"                                       // 320032 bytes
                         "\x02\x01\x01\x02\x03\x04\x05\x06\x07\x08"           // skip 2, take 1
                         "\xC0\xB8\x02\x01\x11\x11\x11\x11\x11\x11\x11\x11"s; // skip 40000, take 1
    EXPECT_EQ(frameAround(content), frameOf(1000, Image(nullptr, 0), changed));
    test::expectSame(changed, decoded(frameAround(content), Image()).image);
}

TEST(CaptureFormatTest, FramesReproduceImages) {
    auto const images = test::randomImages(60, 3);
    Image before;
    std::uint64_t elapsed = 0;
    for (auto const& image : images) {
        auto const frame = decoded(frameOf(elapsed, before, image), before);
        EXPECT_EQ(elapsed, frame.elapsed);
        test::expectSame(image, frame.image);
        before = image;
        elapsed = elapsed * 11 + 1;
    }
}

TEST(CaptureFormatTest, SourceMayBeLongerThanTheRegion) {
    std::vector<std::uint8_t> const bytes(400000, 3);
    Image const image(bytes.data(), bytes.size());
    test::expectSame(image, decoded(frameOf(0, Image(), image), Image()).image);
    std::uint64_t const most = std::numeric_limits<std::uint64_t>::max();
    EXPECT_EQ(most, decoded(frameOf(most, image, image), image).elapsed);
}

TEST(CaptureFormatTest, WorstImageFitsIntoAFrame) {
    std::vector<std::uint8_t> bytes(test::rawRegionSize, 0xFF);
    for (std::size_t offset = 0; offset < bytes.size(); offset += 16) { // every other word
        bytes[offset] = 0;
    }
    Image const image(bytes.data(), bytes.size());
    auto const frame = frameOf(std::numeric_limits<std::uint64_t>::max(), Image(), image);
    EXPECT_LT(frame.size(), FRAME_MAX_CONTENT);
    test::expectSame(image, decoded(frame, Image()).image);
}

TEST(CaptureFormatTest, UnchangedSampleIsShort) {
    auto const image = test::randomImages(1, 4).front();
    EXPECT_EQ(12U, frameOf(127, image, image).size());
    EXPECT_EQ(13U, frameOf(128, image, image).size());
    EXPECT_EQ(13U, frameOf(16383, image, image).size());
}

TEST(CaptureFormatTest, EveryFlippedBitOfAFrameIsFound) {
    auto const frame = frameOf(1000, Image(), imageWith(16, 7));
    for (std::size_t bit = 0; bit < frame.size() * 8; ++bit) {
        auto damaged = frame;
        damaged[bit / 8] = static_cast<char>(damaged[bit / 8] ^ (1 << bit % 8));
        auto const head = std::string_view(damaged).substr(0, FRAME_HEAD_SIZE);
        if (contentSize(head) == frame.size() - FRAME_HEAD_SIZE) {
            EXPECT_THROW(frameFrom(head, std::string_view(damaged).substr(FRAME_HEAD_SIZE), Image()),
                         std::invalid_argument)
                << "bit " << bit;
        }
    }
}

TEST(CaptureFormatTest, ContentThatMakesNoSenseIsRefused) {
    auto const zeroSize = "\x00\x00"s;
    EXPECT_EQ("(none)", problemIn(zeroSize));
    EXPECT_EQ("the content ends early", problemIn("\x00\x80"s));
    EXPECT_EQ("a number of more than 64 bits", problemIn("\xFF\xFF\xFF\xFF\xFF\xFF\xFF\xFF\xFF\x02\x00"s));
    EXPECT_EQ("a number of more than 64 bits",
              problemIn("\x80\x80\x80\x80\x80\x80\x80\x80\x80\x80\x01\x00"s));
    EXPECT_EQ("the content ends early", problemIn(zeroSize + "\x01"s));
    EXPECT_EQ("the content ends early", problemIn(zeroSize + "\x01\x01\x11\x11"s));
    EXPECT_EQ("changes outside the region", problemIn(zeroSize + "\x01\x00"s));
    auto const word = "\x11\x11\x11\x11\x11\x11\x11\x11"s;
    EXPECT_EQ("(none)", problemIn(zeroSize + "\xC3\xB8\x02\x01"s + word)); // the last word
    EXPECT_EQ("changes outside the region", problemIn(zeroSize + "\xC4\xB8\x02\x01"s + word)); // behind it
    EXPECT_EQ("changes outside the region", problemIn(zeroSize + "\xC3\xB8\x02\x02"s + word + word));
    EXPECT_EQ("changes outside the region",
              problemIn(zeroSize + "\x01\xFF\xFF\xFF\xFF\xFF\xFF\xFF\xFF\xFF\x01"s + word));
}

TEST(CaptureFormatTest, ContentHasABoundedSize) {
    EXPECT_EQ(std::nullopt, contentSize("\x01\0\0\0\0\0\0\0"s));
    EXPECT_EQ(2U, contentSize("\x02\0\0\0\0\0\0\0"s));
    EXPECT_EQ(FRAME_MAX_CONTENT, contentSize("\0\0\x20\0\0\0\0\0"s));
    EXPECT_EQ(std::nullopt, contentSize("\x01\0\x20\0\0\0\0\0"s));
}

TEST(CaptureFormatTest, HeaderThatMakesNoSenseIsRefused) {
    auto const header = captureHeader(5);
    EXPECT_EQ("it is not a capture", problemInHeader('R' + header.substr(1)));
    for (std::size_t byte = 8; byte < header.size(); ++byte) {
        auto damaged = header;
        damaged[byte] = static_cast<char>(damaged[byte] ^ 4);
        EXPECT_EQ("the header at byte 0 is damaged", problemInHeader(damaged)) << "byte " << byte;
    }
    // Other numbers, with the right checksums.
    EXPECT_EQ("it is of version 2, expected 1",
              problemInHeader("QELSHREC\x02\0\0\0\x20\xE2\x04\0\x05\0\0\0\0\0\0\0"s + "\xA2\xF1\xB4\x7D"s));
    EXPECT_EQ("it is of a region of 320033 bytes, expected 320032",
              problemInHeader("QELSHREC\x01\0\0\0\x21\xE2\x04\0\x05\0\0\0\0\0\0\0"s + "\x3F\x09\xD9\xCF"s));
}

} // namespace qel::inspect
