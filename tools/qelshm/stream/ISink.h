// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// Where changes go.
#pragma once

#include "tools/qelshm/stream/ChangeFinder.h"

namespace qel::stream {

/// Takes what each snapshot brings.
///
/// Threads: thread-bound to the main thread.
class ISink {
public:
    ISink() = default;
    ISink(ISink const&) = delete;
    ISink& operator=(ISink const&) = delete;
    virtual ~ISink() = default;

    virtual void take(Report const& report) = 0;

    /// Whether it has taken all it was to take, or cannot take more.
    virtual bool isDone() const { return false; }

    /// Works on what it has taken, without waiting.
    /// @return whether something is left to work on
    virtual bool work() { return false; }

    /// Tells what was not worked on; the stream ends.
    virtual void end() {}
};

} // namespace qel::stream
