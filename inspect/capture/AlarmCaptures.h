// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// Captures of alarms.
#pragma once

#include "inspect/capture/AlarmEdges.h"
#include "inspect/capture/CaptureRing.h"
#include "inspect/capture/CaptureWriter.h"
#include "inspect/capture/ICaptureSink.h"
#include "inspect/capture/RotatingCapture.h"

#include <chrono>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace qel::inspect {

/// Writes only what happens before and after alarms, into a file of its own for each. An alarm that begins while a file
/// is open makes that file longer. A file holds its alarm: if the bound is too small for everything before it, the oldest
/// samples are left out. A file that reaches its bound ends; what is left goes into no file, unless it is an alarm, which
/// gets the next file.
///
/// Threads: reentrant.
class AlarmCaptures : public ICaptureSink {
public:
    /// The name of the file for an alarm at a time, in ms since 1970 UTC.
    using Name = std::function<std::string(std::uint64_t time)>;

    /// @param before samples up to this time before an alarm are written, as far as the memory of CaptureRing holds them
    /// @param after  and those up to this time after it began
    /// @param bounds the oldest file of this object that is too many is removed; CaptureBounds::files 0 keeps all
    /// @param alarms which alarms count
    AlarmCaptures(Name name, std::chrono::milliseconds before, std::chrono::milliseconds after,
                  CaptureBounds bounds, AlarmEdges alarms = AlarmEdges());

    /// Makes the file of an alarm at this time and removes it, so that a problem shows before there is an alarm.
    /// @throws CaptureError as append()
    void tryFile(std::uint64_t time) const;

    void append(std::uint64_t time, Image const& image) override;
    void close() override;
    std::uint64_t samples() const override { return samples_; }
    std::uint64_t bytes() const override { return bytes_ + (writer_ ? writer_->size() : 0); }
    std::vector<std::string> files() const override { return files_; }

private:
    void begin(std::uint64_t time);
    void write(std::uint64_t time, Image const& image);

    Name name_;
    std::uint64_t before_; ///< ms
    std::uint64_t after_;  ///< ms
    CaptureBounds bounds_;
    CaptureRing ring_; ///< while no file is open
    AlarmEdges alarms_;
    std::optional<CaptureWriter> writer_;
    std::uint64_t start_ = 0; ///< of the file, ms since 1970 UTC
    std::uint64_t end_ = 0;   ///< when the file shall end, ms since 1970 UTC
    std::vector<std::string> files_;
    std::uint64_t samples_ = 0;
    std::uint64_t bytes_ = 0; ///< of the files that are finished
};

} // namespace qel::inspect
