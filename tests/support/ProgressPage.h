// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// What a process is doing, for others to see, also after it was killed.
#pragma once

#include <atomic>
#include <cstdint>
#include <string>

namespace qel::test {

/// A mark and a count in a file that several processes map. What it is marked with is for them to agree on; both are
/// 0 in an empty file.
///
/// Threads and processes: any.
class ProgressPage {
public:
    /// Maps an existing file and sizes it. Throws std::system_error.
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
