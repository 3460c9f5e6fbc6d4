// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// Threads that the file system's permissions hold for, although the tests run as root.
#pragma once

#include <cstdint>

namespace qel::test {

/// While one lives, permissions hold for the calling thread as for any owner: root's power to override them is off.
///
/// Threads: thread-bound to the thread that made it.
class NoOverride {
public:
    /// Throws std::system_error when the power cannot be given up.
    NoOverride();
    ~NoOverride();
    NoOverride(NoOverride const&) = delete;
    NoOverride& operator=(NoOverride const&) = delete;

private:
    std::uint32_t former_ = 0;
};

/// While one lives, the calling thread, and threads that it starts, meet files as the user "nobody".
///
/// Threads: thread-bound to the thread that made it.
class AsNobody {
public:
    AsNobody();
    ~AsNobody();
    AsNobody(AsNobody const&) = delete;
    AsNobody& operator=(AsNobody const&) = delete;

    /// False in a user namespace that knows root alone.
    bool succeeded() const { return succeeded_; }

private:
    unsigned int former_ = 0;
    bool succeeded_ = false;
};

} // namespace qel::test
