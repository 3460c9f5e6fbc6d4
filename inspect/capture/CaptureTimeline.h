// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// Captures by time.
#pragma once

#include "inspect/capture/CaptureReader.h"
#include "inspect/image/Image.h"
#include "inspect/image/InputFile.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>

namespace qel::inspect {

/// A moment of a capture, as people name it. Reentrant.
struct CaptureMoment {
    enum class From : std::uint8_t {
        Clock, ///< ms since 1970 UTC
        Start, ///< ms after the first sample
        End,   ///< ms before the last sample
    };

    From from = From::End;
    std::uint64_t ms = 0;
};

/// The first and the last time of a capture and what lies between. It reads the capture once when it is made, in time
/// that grows with the file and in memory that does not. A capture that was cut off or damaged ends with its last
/// complete sample. The file stays open, so that it can be renamed or replaced while it is read.
///
/// Threads: reentrant.
class CaptureTimeline {
public:
    /// @throws CaptureError if the file cannot be read or holds no complete sample
    explicit CaptureTimeline(std::string path);

    std::string const& path() const { return path_; }

    /// Reads the same file from its start, whatever has that path now.
    CaptureReader reader() const { return {path_, file_}; }

    /// Time of the first sample, ms since 1970 UTC.
    std::uint64_t first() const { return first_; }

    /// Time of the last complete sample, ms since 1970 UTC.
    std::uint64_t last() const { return last_; }

    /// How many complete samples there are, at least one.
    std::uint64_t samples() const { return samples_; }

    /// The usual time between two samples in ms: the mean of those that are alike. 0 for a single sample.
    std::uint64_t interval() const;

    /// The longest usual time between two samples in ms: four intervals, at least a second. A longer one is a gap.
    std::uint64_t longestPause() const;

    /// What is wrong with the file, one line for the user; "" if it is whole.
    std::string const& damage() const { return damage_; }

    /// The moment in ms since 1970 UTC.
    /// @return none if it is not between first and last
    std::optional<std::uint64_t> timeOf(CaptureMoment const& moment) const;

    /// The same, whether there are samples or not: before 1970 is 0, and beyond 64 bits the greatest number.
    std::uint64_t unboundedTimeOf(CaptureMoment const& moment) const;

    /// The last sample up to a time.
    /// @param time ms since 1970 UTC, from first() to last()
    /// @return with its time in ms since 1970 UTC
    /// @throws CaptureError if the file cannot be read any more
    CaptureSample at(std::uint64_t time) const;

private:
    /// Times between two samples whose numbers have as many bits.
    struct Intervals {
        std::uint64_t count = 0;
        double sum = 0.0;
    };

    void note(std::uint64_t elapsed);

    std::string path_;
    std::shared_ptr<InputFile const> file_;
    std::uint64_t first_ = 0;
    std::uint64_t last_ = 0;
    std::uint64_t samples_ = 0;
    Image lastImage_;
    std::string damage_;
    std::array<Intervals, 65> intervals_{};
};

/// Takes a sample, and the time of the next one in ms since 1970 UTC.
using SampleVisit = std::function<void(CaptureReader const& reader, std::optional<std::uint64_t> next)>;

/// Goes through the complete samples of a part of a capture. The first one is the last sample up to its start.
/// Reentrant.
/// @param from  ms since 1970 UTC
/// @param until ms since 1970 UTC
/// @param visit called behind each sample with the reader, and the time of the next sample; none for the last one
/// @throws CaptureError if the file cannot be read any more
void forEachSample(CaptureTimeline const& timeline, std::uint64_t from, std::uint64_t until,
                   SampleVisit const& visit);

/// The same up to the first sample that a function accepts. Reentrant.
/// @return whether it accepted one
/// @throws CaptureError if the file cannot be read any more
bool anySample(
    CaptureTimeline const& timeline, std::uint64_t from, std::uint64_t until,
    std::function<bool(CaptureReader const& reader, std::optional<std::uint64_t> next)> const& isWanted);

} // namespace qel::inspect
