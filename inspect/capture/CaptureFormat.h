// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// The bytes of a capture: a region's changes over time, in a file.
///
/// All numbers are little-endian. A varint holds seven bits a byte, lowest first; the high bit is set if another byte
/// follows. A varint has at most 10 bytes and holds 64 bits.
///
/// A capture is a header and one frame for each sample:
///
/// | offset | width | header                                                                    |
/// |--------|-------|---------------------------------------------------------------------------|
/// | 0      | 8     | magic "QELSHREC"                                                          |
/// | 8      | u32   | version of this format, 1                                                 |
/// | 12     | u32   | size of the region, 320032                                                |
/// | 16     | u64   | start of the capture, ms since 1970 UTC                                   |
/// | 24     | u32   | CRC-32 of bytes 0 to 23                                                   |
///
/// | offset | width | frame                                                                     |
/// |--------|-------|---------------------------------------------------------------------------|
/// | 0      | u32   | bytes of content, 2 to 2 MiB                                              |
/// | 4      | u32   | CRC-32 of the four bytes before and of the content                        |
/// | 8      |       | content                                                                   |
///
/// | content, in this order                                                                              |
/// |-----------------------------------------------------------------------------------------------------|
/// | varint: ms since the previous sample, for the first one since the start                             |
/// | varint: how many bytes the image's source had, which may be less or more than the region            |
/// | to the end, runs of changed words: varint words to skip, varint words (1 or more), the new words    |
///
/// A word is 8 bytes at a multiple of 8 from the region's start; the region has 40004. A run starts where the previous
/// one ended. A frame holds the differences to the previous sample, the first frame those to a wiped region (0xFF in
/// every byte). A sample without changes is a frame without runs. For 16 points and 105 values the first sample takes
/// 4.2 KB, one with nearly all values new 1.8 KB, one without changes 12 bytes.
///
/// The CRC-32 is that of ISO 3309 (polynomial 0x04C11DB7, reflected, initial and final value 0xFFFFFFFF). A file that
/// ends within a frame was cut off, for example by a crash; the frames before are complete.
#pragma once

#include "inspect/image/Image.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>

namespace qel::inspect {

/// A capture cannot be written or read. The text is one line for the user with the name of the file and, for wrong
/// content, the offset of the header or frame.
class CaptureError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

constexpr std::string_view CAPTURE_MAGIC = "QELSHREC"; ///< the first bytes of a capture
constexpr std::size_t CAPTURE_HEADER_SIZE = 28;
constexpr std::size_t FRAME_HEAD_SIZE = 8; ///< the bytes of a frame before its content
constexpr std::size_t FRAME_MAX_CONTENT = std::size_t{2} * 1024 * 1024;
constexpr std::size_t CAPTURE_WORD_SIZE = 8;

/// Makes the header of a capture. Reentrant.
/// @param startTime ms since 1970 UTC
std::string captureHeader(std::uint64_t startTime);

/// Reads the start time from a header, in ms since 1970 UTC. Reentrant.
/// @param header CAPTURE_HEADER_SIZE bytes
/// @throws std::invalid_argument with what is wrong in the header
std::uint64_t captureStart(std::string_view header);

/// Makes a whole frame. Reentrant.
/// @param elapsed ms since the previous sample
/// @param before  the image of the previous sample; an empty one for the first
std::string frameOf(std::uint64_t elapsed, Image const& before, Image const& after);

/// Reads the size of a frame's content. Reentrant.
/// @param head FRAME_HEAD_SIZE bytes
/// @return none if no frame has such a size
std::optional<std::size_t> contentSize(std::string_view head);

/// The content of a frame whose every number was checked. Valid while the content lives.
struct CheckedFrame {
    std::uint64_t elapsed; ///< ms since the previous sample
    std::uint64_t size;    ///< how many bytes the image's source had
    std::string_view runs;
};

/// Checks a frame to its end. Reentrant.
/// @param head    FRAME_HEAD_SIZE bytes
/// @param content contentSize() bytes
/// @throws std::invalid_argument with what is wrong in the frame
CheckedFrame checkedFrame(std::string_view head, std::string_view content);

/// Takes a run of changed words: the index of the first word in the region, and their bytes.
using RunHandler = std::function<void(std::size_t word, std::string_view words)>;

/// Calls the handler for each run, in the order of the region. Reentrant.
void forEachRun(CheckedFrame const& frame, RunHandler const& handler);

/// The content of a frame.
struct Frame {
    std::uint64_t elapsed; ///< ms since the previous sample
    Image image;
};

/// Reads a frame. Reentrant.
/// @param head    FRAME_HEAD_SIZE bytes
/// @param content contentSize() bytes
/// @param before  the image of the previous sample; an empty one for the first
/// @throws std::invalid_argument with what is wrong in the frame
Frame frameFrom(std::string_view head, std::string_view content, Image const& before);

} // namespace qel::inspect
