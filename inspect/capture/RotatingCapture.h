// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// A capture that does not outgrow its place.
#pragma once

#include "inspect/capture/CaptureWriter.h"
#include "inspect/capture/ICaptureSink.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace qel::inspect {

/// The size and number of the files of a capture. Reentrant.
struct CaptureBounds {
    std::uint64_t size = 0; ///< bytes of a file; 0 for any
    std::size_t files = 1;  ///< how many are kept, at least 1
};

/// Writes x.rec. Before a sample would make it larger than its bound, the file becomes x.1.rec, x.1.rec becomes x.2.rec,
/// and so on; the oldest file that is too many is removed. Each file is a whole capture by itself. A file holds one
/// sample at least, however large that is.
///
/// Threads: reentrant.
class RotatingCapture : public ICaptureSink {
public:
    /// Files that exist are refused, so that nothing is overwritten by mistake. The first file is made by the first
    /// sample.
    /// @throws CaptureError "cannot record to x.1.rec: File exists"
    RotatingCapture(std::string path, CaptureBounds bounds);

    void append(std::uint64_t time, Image const& image) override;
    void close() override;
    std::uint64_t samples() const override { return samples_; }
    std::uint64_t bytes() const override { return bytes_ + (writer_ ? writer_->size() : 0); }
    std::vector<std::string> files() const override;

private:
    void begin(std::uint64_t time);
    void finish();
    void rotate();
    std::string name(std::size_t age) const;

    std::string path_;
    CaptureBounds bounds_;
    std::optional<CaptureWriter> writer_;
    std::uint64_t start_ = 0; ///< of the file, ms since 1970 UTC
    std::size_t older_ = 0;   ///< how many files there are beside the newest
    std::uint64_t samples_ = 0;
    std::uint64_t bytes_ = 0; ///< of the files that are finished
};

/// The name of a file that belongs to a capture: "x.3.rec" for "x.rec" and "3", "x.3" for "x". Reentrant.
std::string captureName(std::string const& path, std::string const& part);

} // namespace qel::inspect
