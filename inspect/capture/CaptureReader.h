// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// Reads captures.
#pragma once

#include "inspect/capture/CaptureFormat.h"
#include "inspect/image/Image.h"
#include "inspect/image/InputFile.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>

namespace qel::inspect {

/// The region at one moment of a capture.
struct CaptureSample {
    std::uint64_t time; ///< ms since the start of the capture
    Image image;        ///< equal to the captured one in size and in every byte
};

/// Reads the samples of a capture (see CaptureFormat.h) in turn, from a file or a pipe.
///
/// Threads: reentrant.
class CaptureReader {
public:
    /// Opens the file and reads its header.
    /// @throws CaptureError "cannot read FILE: No such file or directory"
    explicit CaptureReader(std::string path);

    /// The start of the capture, ms since 1970 UTC.
    std::uint64_t startTime() const { return startTime_; }

    /// Reads the next sample.
    /// @return none behind the last sample
    /// @throws CaptureError if the sample is cut off or damaged, now and at each further call: "cannot read FILE: the
    ///         sample at byte 5120 is cut off; 12 samples before it are complete"
    std::optional<CaptureSample> next();

    /// How many samples were read.
    std::uint64_t samples() const { return samples_; }

    /// Where the next sample starts in the file, in bytes.
    std::uint64_t offset() const { return offset_; }

private:
    std::string take(std::size_t count) const;
    [[noreturn]] void fail(std::string const& problem) const;
    [[noreturn]] void failInSample(std::string const& problem);

    std::string path_;
    InputFile file_;
    std::uint64_t startTime_ = 0;
    std::uint64_t offset_ = 0;
    std::uint64_t samples_ = 0;
    std::uint64_t time_ = 0;
    Image last_;
    std::optional<std::string> damage_;
};

} // namespace qel::inspect
