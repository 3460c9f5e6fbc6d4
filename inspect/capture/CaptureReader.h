// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// Reads captures.
#pragma once

#include "inspect/capture/CaptureFormat.h"
#include "inspect/capture/FrameRegion.h"
#include "inspect/image/Image.h"
#include "inspect/image/InputFile.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace qel::inspect {

/// The region at one moment of a capture.
struct CaptureSample {
    std::uint64_t time = 0; ///< ms since the start of the capture
    Image image;            ///< equal to the captured one in size and in every byte
};

/// Reads the samples of a capture (see CaptureFormat.h) in turn, from a file or a pipe.
///
/// Threads: reentrant.
class CaptureReader {
public:
    /// Opens the file and reads its header.
    /// @throws CaptureError "cannot read FILE: No such file or directory"
    explicit CaptureReader(std::string const& path);

    /// Reads a file that is open already. Several readers can share a regular file; each begins at its start.
    /// @param path what the file is called in errors
    /// @param file none if it cannot be opened, with errno
    /// @throws CaptureError as above
    CaptureReader(std::string path, std::shared_ptr<InputFile const> file);

    /// The start of the capture, ms since 1970 UTC.
    std::uint64_t startTime() const { return startTime_; }

    /// Reads the next sample.
    /// @return none behind the last sample
    /// @throws CaptureError if the sample is cut off or damaged, now and at each further call: "cannot read FILE: the
    ///         sample at byte 5120 is cut off; 12 samples before it are complete"
    std::optional<CaptureSample> next();

    /// Reads the next sample without a copy of its image: see region().
    /// @return false behind the last sample
    /// @throws CaptureError as next()
    bool advance();

    /// The time of the sample that advance() reads next.
    /// @return ms since 1970 UTC; none behind the last sample
    /// @throws CaptureError as next()
    std::optional<std::uint64_t> nextMoment();

    /// Ms since the start of the capture, of the sample that was read last; 0 before the first.
    std::uint64_t time() const { return time_; }

    /// The same in ms since 1970 UTC; the greatest number if it has more than 64 bits.
    std::uint64_t moment() const { return momentOf(time_); }

    /// The region of the sample that was read last.
    FrameRegion const& region() const { return region_; }

    /// How many samples were read.
    std::uint64_t samples() const { return samples_; }

    /// Where the next sample starts in the file, in bytes.
    std::uint64_t offset() const { return offset_; }

private:
    /// A frame that was read and checked.
    struct Loaded {
        std::string content; ///< the frame refers to it
        CheckedFrame frame{};
        std::uint64_t bytes = 0;
    };

    bool load();
    std::uint64_t momentOf(std::uint64_t time) const;
    std::string take(std::uint64_t offset, std::size_t count) const;
    [[noreturn]] void fail(std::string const& problem) const;
    [[noreturn]] void failInSample(std::string const& problem);

    std::string path_;
    std::shared_ptr<InputFile const> file_;
    bool isRegular_ = false;
    std::uint64_t startTime_ = 0;
    std::uint64_t offset_ = 0;
    std::uint64_t samples_ = 0;
    std::uint64_t time_ = 0;
    FrameRegion region_;
    std::unique_ptr<Loaded> loaded_; ///< the next sample; null until it is needed
    std::optional<std::string> damage_;
};

/// Whether a regular file begins as a capture does, whatever its name. False if it cannot be read. Reentrant.
bool isCapture(std::string const& path);

/// Whether these are the first bytes of a capture. Reentrant.
bool beginsAsCapture(std::string_view bytes);

} // namespace qel::inspect
