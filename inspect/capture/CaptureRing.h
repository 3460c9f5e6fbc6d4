// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// The last minutes of a region, in memory.
#pragma once

#include "inspect/image/Image.h"

#include <cstddef>
#include <cstdint>
#include <deque>
#include <functional>
#include <optional>
#include <string>

namespace qel::inspect {

/// Keeps the newest samples: the oldest as an image, the others as what they changed, like a capture. Besides two images
/// of 320 KB it holds mostBytes at most.
///
/// Threads: reentrant.
class CaptureRing {
public:
    /// Bound of the changes that are kept. Of a unit with 105 values this is about ten hours of seconds.
    static constexpr std::size_t mostBytes = std::size_t{64} * 1024 * 1024;

    /// @param most bytes of changes; more are forgotten, the oldest first
    explicit CaptureRing(std::size_t most = mostBytes) : most_(most) {}

    /// Takes the next sample.
    /// @param time ms by a clock that never goes back
    void add(std::uint64_t time, Image const& image);

    /// Forgets the samples before a time, but never the newest.
    void forgetBefore(std::uint64_t time);

    /// Forgets the oldest samples until a capture of the others is not larger than this, but never the newest.
    /// @param most bytes of the file
    void forgetBeyond(std::uint64_t most);

    /// Hands the samples over, the oldest first, and forgets them all.
    void drain(std::function<void(std::uint64_t time, Image const& image)> const& take);

    std::size_t samples() const { return oldest_ ? changes_.size() + 1 : 0; }

    /// Bytes of the changes.
    std::size_t bytes() const { return bytes_; }

private:
    struct Sample {
        std::uint64_t time;
        Image image;
    };
    struct Change {
        std::uint64_t time;
        std::string frame;
    };

    void forgetOldest();

    std::size_t most_;
    std::size_t bytes_ = 0;
    std::optional<Sample> oldest_;
    std::deque<Change> changes_; ///< of the later samples
    std::optional<Sample> newest_;
};

} // namespace qel::inspect
