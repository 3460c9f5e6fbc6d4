// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// Shows other processes what a process is doing, also after it was killed.
#pragma once

#include <atomic>
#include <cstdint>
#include <string>

namespace qel::test {

/// A mark and a count in a file that several processes map; both are 0 in an empty file. The processes agree on what a
/// mark means.
///
/// Threads: thread-safe, across processes too.
class ProgressPage {
public:
    /// Maps an existing file and sizes it.
    /// @throws std::system_error if that fails
    explicit ProgressPage(std::string const& path);
    ~ProgressPage();
    ProgressPage(ProgressPage const&) = delete;
    ProgressPage& operator=(ProgressPage const&) = delete;

    void mark(std::uint32_t what) { page_->mark = what; }
    std::uint32_t marked() const { return page_->mark; }

    void count() { ++page_->count; }
    std::uint64_t counted() const { return page_->count; }

private:
    struct Page {
        std::atomic<std::uint32_t> mark;
        std::atomic<std::uint64_t> count;
    };

    Page* page_ = nullptr;
};

} // namespace qel::test
