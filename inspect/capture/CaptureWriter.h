// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// Writes captures.
#pragma once

#include "inspect/capture/CaptureFormat.h"
#include "inspect/image/FileDescriptor.h"
#include "inspect/image/Image.h"

#include <cstdint>
#include <string>
#include <string_view>

namespace qel::inspect {

/// Writes a capture (see CaptureFormat.h). Each sample is written at once and by itself. If the process dies, the file
/// holds every sample but the one being written, and a reader finds where the complete ones end. If the machine loses
/// power before close(), samples that the system still holds in memory are lost.
///
/// Threads: reentrant.
class CaptureWriter {
public:
    /// Creates the file. A path that exists is refused, so that nothing is overwritten by mistake, and so is the live
    /// object.
    /// @param startTime start of the capture, ms since 1970 UTC
    /// @throws CaptureError "cannot record to FILE: File exists"
    CaptureWriter(std::string path, std::uint64_t startTime);

    /// Closes the file without waiting for the storage.
    ~CaptureWriter() = default;
    CaptureWriter(CaptureWriter const&) = delete;
    CaptureWriter& operator=(CaptureWriter const&) = delete;

    /// Appends a sample. One that equals the previous one takes 12 or 13 bytes.
    /// @param time ms since the start of the capture, by a clock that never goes back
    /// @throws CaptureError if the sample cannot be written; the file then ends behind the previous one, and the call
    ///         may be repeated
    /// @throws std::invalid_argument if the time is before that of the previous sample
    void append(std::uint64_t time, Image const& image);

    /// Appends a sample as append() does, unless the file holds one already and would become too large.
    /// @param most bytes of the file
    /// @return whether the sample was appended
    bool appendWithin(std::uint64_t most, std::uint64_t time, Image const& image);

    /// Waits until everything is stored safely, and closes the file. Nothing can be appended any more.
    /// @throws CaptureError
    void close();

    /// How many samples were written.
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
