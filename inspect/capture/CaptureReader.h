// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// Reads the recording of a region's changes.
#pragma once

#include "inspect/capture/CaptureFormat.h"
#include "inspect/image/FileDescriptor.h"
#include "inspect/image/Image.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>

namespace qel::inspect {

/// The region at one moment of a recording.
struct RecordedSample {
    std::uint64_t time; ///< ms since the recording began
    Image image;        ///< equal to the recorded one in every byte and in size
};

/// Gives a recording's samples (see CaptureFormat.h) one after the other, from a file or a pipe.
///
/// Threads: not shared without care.
class CaptureReader {
public:
    /// Opens the file and reads its header. Throws RecordingError: "cannot read FILE: what is wrong".
    explicit CaptureReader(std::string path);

    /// When the recording began, ms since 1970 UTC.
    std::uint64_t startTime() const { return startTime_; }

    /// The next sample, nothing behind the last one. Throws RecordingError when the file ends within a sample or a
    /// sample is damaged, and again at every further call: "cannot read FILE: the sample at byte 5120 is cut off; 12
    /// samples before it are complete". Samples given before are good.
    std::optional<RecordedSample> next();

    /// How many samples were given.
    std::uint64_t samples() const { return samples_; }

    /// Where the next sample starts in the file, in bytes.
    std::uint64_t offset() const { return offset_; }

private:
    std::string take(std::size_t count) const;
    [[noreturn]] void fail(std::string const& problem) const;
    [[noreturn]] void failInSample(std::string const& problem);

    std::string path_;
    FileDescriptor file_;
    std::uint64_t startTime_ = 0;
    std::uint64_t offset_ = 0;
    std::uint64_t samples_ = 0;
    std::uint64_t time_ = 0;
    Image last_;
    std::optional<std::string> damage_;
};

} // namespace qel::inspect
