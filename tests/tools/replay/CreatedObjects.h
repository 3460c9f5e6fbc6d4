// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// Notes which shared-memory objects come into being.
#pragma once

#include <string>
#include <vector>

namespace qel::test {

/// Watches /dev/shm for as long as the object lives, so that an object that came and went is noted too.
///
/// Threads: reentrant.
class CreatedObjects {
public:
    CreatedObjects();
    ~CreatedObjects();
    CreatedObjects(CreatedObjects const&) = delete;
    CreatedObjects& operator=(CreatedObjects const&) = delete;

    /// Names of the objects created since the last call.
    std::vector<std::string> names() const;

private:
    int watch_;
};

} // namespace qel::test
