// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// Records a region's changes into a file.
#pragma once

#include "inspect/capture/CaptureFormat.h"
#include "inspect/image/FileDescriptor.h"
#include "inspect/image/Image.h"

#include <cstdint>
#include <string>
#include <string_view>

namespace qel::inspect {

/// Writes a recording (see CaptureFormat.h). Each sample goes to the file at once and by itself, so when the process
/// dies the file holds every sample but the one being written, and a reader finds the end of the complete ones. What
/// the system still holds in memory is lost when the machine loses power before close().
///
/// An image is recorded exactly as it is; one that was copied while it was being written is no better in the file.
///
/// Threads: not shared without care.
class CaptureWriter {
public:
    /// Creates the file; a path that exists is refused, so that no recording is overwritten by mistake, and so is the
    /// live object's.
    /// @param startTime when the recording begins, ms since 1970 UTC
    /// Throws RecordingError: "cannot record to FILE: what is wrong".
    CaptureWriter(std::string path, std::uint64_t startTime);

    /// Closes without waiting for the storage.
    ~CaptureWriter() = default;
    CaptureWriter(CaptureWriter const&) = delete;
    CaptureWriter& operator=(CaptureWriter const&) = delete;

    /// Appends a sample, be it equal to the one before or not; an equal one takes 12 or 13 bytes.
    /// @param time ms since the recording began, by a clock that never goes back
    /// Throws RecordingError when the file cannot take it: it then ends behind the sample before, and the next one can
    /// be tried; std::invalid_argument when the time lies before that of the sample before.
    void append(std::uint64_t time, Image const& image);

    /// Waits until everything is stored safely, and closes the file; nothing can be appended any more. Throws
    /// RecordingError.
    void close();

    std::uint64_t samples() const { return samples_; }

    /// Bytes in the file.
    std::uint64_t size() const { return size_; }

private:
    void write(std::string_view bytes);
    [[noreturn]] void fail(int error) const;

    std::string path_;
    FileDescriptor file_;
    std::uint64_t samples_ = 0;
    std::uint64_t size_ = 0;
    std::uint64_t time_ = 0;
    Image last_;
};

} // namespace qel::inspect
