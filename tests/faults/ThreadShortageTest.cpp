// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

// The system makes no further thread.

#include "reader/QelSharedMemoryReader.h"
#include "tests/faults/FaultLines.h"
#include "tests/faults/RefusedCalls.h"
#include "tests/reader/BusFailures.h"
#include "tests/support/Eventually.h"
#include "tests/support/FakeHardwareManager.h"
#include "tests/support/MainLoopThread.h"
#include "tests/support/RawRegion.h"
#include "writer/QelSharedMemoryWriter.h"

#include <boost/thread/exceptions.hpp>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cerrno>

namespace {

using qel::test::LogCapture;
using qel::test::LogEntry;
using qel::test::readerInfo;
using qel::test::Refused;
using qel::test::withRefused;
using testing::ElementsAre;

LogEntry accessInfo(std::string const& text) {
    return {"qel.shm.access", log4cpp::Priority::INFO, text};
}

class ThreadShortage : public testing::TestWithParam<int> {};

TEST_P(ThreadShortage, Writer_Throws_LeavesNoRegion_AndTheNextOneSucceeds) {
    LogCapture log("qel", log4cpp::Priority::INFO);
    withRefused(Refused::NewThreads, GetParam(),
                [] { EXPECT_THROW(shm::QelSharedMemoryWriter(), boost::thread_resource_error); });
    EXPECT_THAT(log.take(), ElementsAre(accessInfo("QelSharedMemoryAccess: start"),
                                        LogEntry{"qel.shm.access.writer", log4cpp::Priority::INFO,
                                                 "QelSharedMemoryWriter: start"},
                                        accessInfo("~QelSharedMemoryAccess: done")));
    EXPECT_FALSE(qel::test::rawRegionExists());

    EXPECT_TRUE(shm::QelSharedMemoryWriter().root());
}

TEST_P(ThreadShortage, Reader_Throws_LeavesNoSubscription_AndTheNextOneSucceeds) {
    auto const connection = qel::test::sharedConnection(); // GLib has its own thread before threads run short
    qel::test::MainLoopThread const loop;
    qel::test::FakeHardwareManager service;
    LogCapture log("qel", log4cpp::Priority::INFO);
    withRefused(Refused::NewThreads, GetParam(),
                [] { EXPECT_THROW(shm::QelSharedMemoryReader(1, false), boost::thread_resource_error); });
    EXPECT_THAT(log.take(), ElementsAre(accessInfo("QelSharedMemoryAccess: start"),
                                        readerInfo("QelSharedMemoryReader: start"),
                                        accessInfo("~QelSharedMemoryAccess: done")));

    shm::QelSharedMemoryReader const next(0, false);
    service.emitStructureChanged();
    EXPECT_TRUE(qel::test::eventually([&] { return next.modifications() != 0; }));
    EXPECT_EQ(1U, next.modifications());
}

INSTANTIATE_TEST_SUITE_P(Error, ThreadShortage, testing::Values(EAGAIN, ENOMEM, EPERM),
                         [](auto const& instance) {
                             return instance.param == EAGAIN   ? "EAGAIN"
                                    : instance.param == ENOMEM ? "ENOMEM"
                                                               : "EPERM";
                         });

} // namespace
