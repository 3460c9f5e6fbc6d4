// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// Where samples of a region go.
#pragma once

#include "inspect/image/Image.h"

#include <cstdint>
#include <string>
#include <vector>

namespace qel::inspect {

/// Takes samples and keeps them, or some of them, in captures.
///
/// Threads: reentrant.
class ICaptureSink {
public:
    ICaptureSink() = default;
    ICaptureSink(ICaptureSink const&) = delete;
    ICaptureSink& operator=(ICaptureSink const&) = delete;
    virtual ~ICaptureSink() = default;

    /// Takes a sample.
    /// @param time ms since 1970 UTC, by a clock that never goes back
    /// @throws CaptureError if it cannot be written; complete samples before it stay readable
    virtual void append(std::uint64_t time, Image const& image) = 0;

    /// Waits until everything is stored safely. Nothing can be appended any more.
    /// @throws CaptureError
    virtual void close() = 0;

    /// How many samples were written, to any file.
    virtual std::uint64_t samples() const = 0;

    /// How many bytes were written, to any file.
    virtual std::uint64_t bytes() const = 0;

    /// The captures that are there, the oldest first.
    virtual std::vector<std::string> files() const = 0;
};

} // namespace qel::inspect
