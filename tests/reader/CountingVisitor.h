// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// A visitor that counts and does nothing else.
#pragma once

#include "reader/BaseQelShmVisitor.h"

#include <atomic>
#include <memory>

namespace qel::test {

/// Counts the points and values that it is told.
///
/// Threads: thread-safe.
class CountingVisitor : public shm::BaseQelShmVisitor {
public:
    /// @param calls must outlive the visitor
    explicit CountingVisitor(std::atomic<int>& calls) : calls_(calls) {}

    void onMPnt(shm::QelShmMPnt const& /*point*/, unsigned int /*depth*/,
                std::shared_ptr<shm::IQelVisitorResult>& /*result*/) override {
        ++calls_;
    }
    void onMVal(shm::QelShmMVal const& /*value*/, long long /*svid*/, unsigned int /*depth*/,
                std::shared_ptr<shm::IQelVisitorResult>& /*result*/) override {
        ++calls_;
    }

private:
    std::atomic<int>& calls_;
};

} // namespace qel::test
