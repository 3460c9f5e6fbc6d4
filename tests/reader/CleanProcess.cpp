// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "reader/ModificationCounter.h"
#include "tests/reader/BusFailures.h"
#include "tests/support/Eventually.h"

#include <gio/gio.h>
#include <gtest/gtest.h>

namespace qel::test {

namespace {

/// Lets the tests of one process begin alike, whatever the one before has left: no structure change that waits to be
/// seen, nothing to dispatch, no connection that was closed and is still in use.
class CleanProcess : public testing::EmptyTestEventListener {
    void OnTestStart(testing::TestInfo const& /*test*/) override {
        shm::modificationCounter.settle(shm::modificationCounter.snapshot());
    }
    void OnTestEnd(testing::TestInfo const& /*test*/) override {
        EXPECT_TRUE(eventually([] {
            while (g_main_context_iteration(nullptr, FALSE) != FALSE) {
            }
            return !isClosedConnectionInUse();
        })) << "the connection that the test has closed is not released";
    }
};

[[maybe_unused]] auto const* const cleanProcess = [] {
    auto* const listener = new CleanProcess;
    testing::UnitTest::GetInstance()->listeners().Append(listener); // which owns it
    return listener;
}();

} // namespace

} // namespace qel::test
