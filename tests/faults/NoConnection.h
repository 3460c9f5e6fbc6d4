// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// D-Bus proxies that have lost their connection.
#pragma once

namespace qel::test {

/// While one lives, no proxy of this program tells a connection.
///
/// Threads: thread-bound to the thread that made it; one object at a time, made before other threads use proxies.
class NoConnection {
public:
    NoConnection();
    ~NoConnection();
    NoConnection(NoConnection const&) = delete;
    NoConnection& operator=(NoConnection const&) = delete;
};

} // namespace qel::test
