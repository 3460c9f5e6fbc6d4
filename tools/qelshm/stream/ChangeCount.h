// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// How many changes are still to be written.
#pragma once

#include <cstdint>
#include <optional>

namespace qel::stream {

/// Counts down to the end of a stream.
///
/// Threads: reentrant.
class ChangeCount {
public:
    /// @param most none for no end
    explicit ChangeCount(std::optional<std::uint64_t> most) : left_(most) {}

    bool isReached() const { return left_ == std::uint64_t{0}; }

    /// Counts a change, if it may be written.
    /// @return whether it may be written
    bool take() {
        if (isReached()) {
            return false;
        }
        if (left_) {
            --*left_;
        }
        return true;
    }

private:
    std::optional<std::uint64_t> left_;
};

} // namespace qel::stream
