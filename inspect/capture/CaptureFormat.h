// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// The bytes of a recording: a region's changes over time, in a file.
///
/// All numbers are little-endian. A varint holds seven bits a byte, lowest first; the high bit says that another byte
/// follows. It has 10 bytes at most and holds 64 bits.
///
/// The file is a header and then one frame for each sample:
///
/// | offset | width | header                                                                    |
/// |--------|-------|---------------------------------------------------------------------------|
/// | 0      | 8     | magic "QELSHREC"                                                          |
/// | 8      | u32   | version of this format, 1                                                 |
/// | 12     | u32   | size of the region, 320032                                                |
/// | 16     | u64   | when the recording began, ms since 1970 UTC                               |
/// | 24     | u32   | CRC-32 of bytes 0 to 23                                                   |
///
/// | offset | width | frame                                                                     |
/// |--------|-------|---------------------------------------------------------------------------|
/// | 0      | u32   | bytes of content, 2 to 2 MiB                                              |
/// | 4      | u32   | CRC-32 of the four bytes before and of the content                        |
/// | 8      |       | content                                                                   |
///
/// | content: in this order                                                                             |
/// |----------------------------------------------------------------------------------------------------|
/// | varint: ms since the sample before, for the first one since the beginning                          |
/// | varint: how many bytes the image's source had, be it fewer or more than the region                 |
/// | up to the end, runs of changed words: varint words to skip, varint words (1 or more), the new words |
///
/// A word is 8 bytes at a multiple of 8 from the region's start; the region has 40004. Each run starts where the one
/// before ended. A frame says what differs from the sample before, the first one what differs from a wiped region
/// (0xFF in every byte). A frame without runs is a sample without changes. A unit of 16 points and 105 values takes
/// 4.2 KB for the first sample, 1.8 KB for one in which nearly all values are new, 12 bytes for one without changes.
///
/// The CRC-32 is that of ISO 3309 (polynomial 0x04C11DB7, reflected, initial and final value 0xFFFFFFFF). A file that
/// ends within a frame was cut off, by a crash for example: the frames before are complete.
#pragma once

#include "inspect/image/Image.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>

namespace qel::inspect {

/// A recording that cannot be written or read; one line for the user that names the file, and for wrong content the
/// offset of the header or frame that is wrong.
class RecordingError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

constexpr std::size_t RECORDING_HEADER_SIZE = 28;
constexpr std::size_t FRAME_HEAD_SIZE = 8;
constexpr std::size_t FRAME_MAX_CONTENT = std::size_t{2} * 1024 * 1024;

/// The file's header.
std::string recordingHeader(std::uint64_t startTime);

/// The start time in a header; throws std::invalid_argument with what is wrong about it.
/// @param header RECORDING_HEADER_SIZE bytes
std::uint64_t recordingStart(std::string_view header);

/// A whole frame.
/// @param elapsed ms since the sample before
/// @param before  the image of the sample before; an empty one for the first
std::string frameOf(std::uint64_t elapsed, Image const& before, Image const& after);

/// Size of the content that follows a frame's head, none when there is no such size.
/// @param head FRAME_HEAD_SIZE bytes
std::optional<std::size_t> contentSize(std::string_view head);

struct Frame {
    std::uint64_t elapsed; ///< ms since the sample before
    Image image;
};

/// Reads a frame. Throws std::invalid_argument with what is wrong about it.
/// @param content contentSize() bytes
/// @param before  the image of the sample before; an empty one for the first
Frame frameFrom(std::string_view head, std::string_view content, Image const& before);

} // namespace qel::inspect
