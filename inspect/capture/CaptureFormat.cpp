// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "inspect/capture/CaptureFormat.h"

#include <boost/crc.hpp>

#include <cstring>
#include <memory>

namespace qel::inspect {

namespace {

constexpr std::uint32_t formatVersion = 1;
constexpr std::size_t versionOffset = 8;
constexpr std::size_t regionSizeOffset = 12;
constexpr std::size_t startOffset = 16;
constexpr std::size_t headerCrcOffset = 24;
constexpr std::size_t frameCrcOffset = 4;
constexpr std::size_t leastContent = 2;

constexpr auto wordSize = CAPTURE_WORD_SIZE;
constexpr std::size_t wordCount = shm::REGION_SIZE / wordSize;
static_assert(shm::REGION_SIZE % wordSize == 0);

constexpr unsigned bitsPerByte = 8;
constexpr unsigned varintBits = 7;
constexpr unsigned char varintMore = 0x80;
constexpr unsigned numberBits = 64;

template <typename Number>
void appendNumber(std::string& bytes, Number number) {
    for (unsigned shift = 0; shift < sizeof number * bitsPerByte; shift += bitsPerByte) {
        bytes += static_cast<char>(number >> shift & 0xFFU);
    }
}

template <typename Number>
Number numberAt(std::string_view bytes, std::size_t offset) {
    Number number = 0;
    for (std::size_t index = sizeof number; index-- != 0;) {
        number =
            static_cast<Number>(number << bitsPerByte) | static_cast<unsigned char>(bytes.at(offset + index));
    }
    return number;
}

void appendVarint(std::string& bytes, std::uint64_t number) {
    for (; number >= varintMore; number >>= varintBits) {
        bytes += static_cast<char>(number | varintMore);
    }
    bytes += static_cast<char>(number);
}

/// Reads a frame's content from its start to its end.
class ContentReader {
public:
    explicit ContentReader(std::string_view content) : left_(content) {}

    bool isAtEnd() const { return left_.empty(); }
    std::string_view rest() const { return left_; }

    std::uint64_t varint() {
        std::uint64_t number = 0;
        for (unsigned shift = 0; shift < numberBits; shift += varintBits) {
            auto const byte = static_cast<unsigned char>(take(1).front());
            auto const bits = static_cast<std::uint64_t>(byte & ~varintMore);
            if (bits << shift >> shift != bits) {
                break;
            }
            number |= bits << shift;
            if (byte < varintMore) {
                return number;
            }
        }
        throw std::invalid_argument("a number of more than 64 bits");
    }

    std::string_view take(std::size_t count) {
        if (count > left_.size()) {
            throw std::invalid_argument("the content ends early");
        }
        auto const bytes = left_.substr(0, count);
        left_.remove_prefix(count);
        return bytes;
    }

private:
    std::string_view left_;
};

std::uint32_t crcOf(std::string_view first, std::string_view second = {}) {
    boost::crc_32_type crc;
    crc.process_bytes(first.data(), first.size());
    crc.process_bytes(second.data(), second.size());
    return crc.checksum();
}

unsigned char const* bytesOf(Image const& image) {
    return reinterpret_cast<unsigned char const*>(&image.region());
}

void appendRuns(std::string& content, Image const& before, Image const& after) {
    auto const* const old = bytesOf(before);
    auto const* const now = bytesOf(after);
    auto const isSame = [&](std::size_t word) {
        return std::memcmp(old + word * wordSize, now + word * wordSize, wordSize) == 0;
    };
    std::size_t done = 0; // words
    for (std::size_t word = 0; word < wordCount;) {
        if (isSame(word)) {
            ++word;
            continue;
        }
        auto const start = word;
        while (word < wordCount && !isSame(word)) {
            ++word;
        }
        appendVarint(content, start - done);
        appendVarint(content, word - start);
        content.append(reinterpret_cast<char const*>(now) + start * wordSize, (word - start) * wordSize);
        done = word;
    }
}

/// Reads the runs to their end.
/// @throws std::invalid_argument at a run that is not within the region
template <typename Handler>
void readRuns(std::string_view runs, Handler const& handler) {
    ContentReader content(runs);
    std::size_t word = 0;
    while (!content.isAtEnd()) {
        auto const skipped = content.varint();
        auto const count = content.varint();
        auto const left = wordCount - word;
        if (count == 0 || skipped > left || count > left - skipped) {
            throw std::invalid_argument("changes outside the region");
        }
        word += static_cast<std::size_t>(skipped);
        handler(word, content.take(static_cast<std::size_t>(count) * wordSize));
        word += static_cast<std::size_t>(count);
    }
}

} // namespace

std::string captureHeader(std::uint64_t startTime) {
    std::string header(CAPTURE_MAGIC);
    appendNumber(header, formatVersion);
    appendNumber(header, static_cast<std::uint32_t>(shm::REGION_SIZE));
    appendNumber(header, startTime);
    appendNumber(header, crcOf(header));
    return header;
}

std::uint64_t captureStart(std::string_view header) {
    if (header.substr(0, CAPTURE_MAGIC.size()) != CAPTURE_MAGIC) {
        throw std::invalid_argument("it is not a capture");
    }
    if (numberAt<std::uint32_t>(header, headerCrcOffset) != crcOf(header.substr(0, headerCrcOffset))) {
        throw std::invalid_argument("the header at byte 0 is damaged");
    }
    if (auto const version = numberAt<std::uint32_t>(header, versionOffset); version != formatVersion) {
        throw std::invalid_argument("it is of version " + std::to_string(version) + ", expected " +
                                    std::to_string(formatVersion));
    }
    if (auto const size = numberAt<std::uint32_t>(header, regionSizeOffset); size != shm::REGION_SIZE) {
        throw std::invalid_argument("it is of a region of " + std::to_string(size) + " bytes, expected " +
                                    std::to_string(shm::REGION_SIZE));
    }
    return numberAt<std::uint64_t>(header, startOffset);
}

std::string frameOf(std::uint64_t elapsed, Image const& before, Image const& after) {
    std::string content;
    appendVarint(content, elapsed);
    appendVarint(content, after.size());
    appendRuns(content, before, after);
    std::string frame;
    appendNumber(frame, static_cast<std::uint32_t>(content.size()));
    appendNumber(frame, crcOf(frame, content));
    return frame + content;
}

std::optional<std::size_t> contentSize(std::string_view head) {
    std::size_t const size = numberAt<std::uint32_t>(head, 0);
    return size >= leastContent && size <= FRAME_MAX_CONTENT ? std::optional(size) : std::nullopt;
}

CheckedFrame checkedFrame(std::string_view head, std::string_view content) {
    if (numberAt<std::uint32_t>(head, frameCrcOffset) != crcOf(head.substr(0, frameCrcOffset), content)) {
        throw std::invalid_argument("the checksum is wrong");
    }
    ContentReader reader(content);
    CheckedFrame frame{};
    frame.elapsed = reader.varint();
    frame.size = reader.varint();
    frame.runs = reader.rest();
    readRuns(frame.runs, [](std::size_t /*word*/, std::string_view /*words*/) {});
    return frame;
}

void forEachRun(CheckedFrame const& frame, RunHandler const& handler) {
    readRuns(frame.runs, handler);
}

Frame frameFrom(std::string_view head, std::string_view content, Image const& before) {
    auto const frame = checkedFrame(head, content);
    auto region = std::make_unique<shm::record::Region>(before.region());
    forEachRun(frame, [&](std::size_t word, std::string_view words) {
        std::memcpy(reinterpret_cast<unsigned char*>(region.get()) + word * wordSize, words.data(),
                    words.size());
    });
    return {frame.elapsed, Image(std::move(region), frame.size)};
}

} // namespace qel::inspect
