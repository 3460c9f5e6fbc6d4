// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// The samples of a capture, in the order in which they are replayed.
#pragma once

#include "tools/replay/unit/Stamps.h"

#include "inspect/capture/CaptureReader.h"
#include "inspect/image/Image.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>

namespace qel::tools {

/// Which samples are replayed.
struct SampleSelection {
    std::string file;
    std::uint64_t samples = 0; ///< of the file that are played, 1 or more; all of them are whole regions
    bool isEndless = false;    ///< restart after the last of them
    std::optional<std::uint64_t> limit; ///< samples to play over all repetitions
    bool isCutShort = false;            ///< the file goes on behind the samples that are played
};

/// A sample as it is replayed. Reentrant.
struct ReplaySample {
    ReplayMoment moment;
    std::uint64_t shift = 0; ///< ms that were added to the recorded time, by repetition
    inspect::Image image;    ///< without links that lead back
    std::size_t cut = 0;     ///< number of links that were cut
};

/// Reads the samples, over and over if wanted. Each repetition continues where the last one ended, one time step of the
/// capture later.
///
/// Threads: reentrant.
class CaptureSamples {
public:
    /// Opens the file and reads the first sample.
    /// @throws inspect::CaptureError if the file cannot be read; next() throws it too
    explicit CaptureSamples(SampleSelection selection);

    /// When the next sample is due, in ms after the first one; nothing after the last.
    std::optional<std::uint64_t> due() const;

    /// Takes the next sample; there must be one.
    ReplaySample next();

    /// Whether the limit is the reason that there is no next sample.
    bool isStopped() const { return !next_ && isStopped_; }

private:
    void readNext();
    void startOver();
    std::uint64_t dueOf(inspect::CaptureSample const& sample) const;

    SampleSelection selection_;
    std::unique_ptr<inspect::CaptureReader> reader_;
    std::optional<inspect::CaptureSample> next_;
    std::uint64_t firstTime_ = 0; // ms since the capture began
    std::uint64_t lastTime_ = 0;  // of the sample taken last
    std::uint64_t lastStep_ = 0;  // from the sample before it, ms
    std::uint64_t shift_ = 0;
    std::uint64_t taken_ = 0;
    bool isStopped_ = false;
};

} // namespace qel::tools
