// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

// A writer of static duration in a program that forks: it stays the parent's.

#include "writer/QelSharedMemoryWriter.h"

#include "format/ValueKeys.h"
#include "tests/support/Eventually.h"
#include "tests/support/ForkedChild.h"
#include "tests/support/LedFiles.h"
#include "tests/support/Sanitizers.h"
#include "tests/writer/WriterFixture.h"
#include "writer/WriterLock.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <memory>

namespace qel::test {

namespace {

namespace key = shm::key;

constexpr long long device = pointId(1, 0);

TEST(QelSharedMemoryWriterForkTest, OfStaticDuration_IsLeftAloneByTheExitOfAForkedChild) {
    QEL_SKIP_FORK_UNDER_ADDRESS_SANITIZER();
    static auto sut = std::make_unique<shm::QelSharedMemoryWriter>(); // destroyed at the child's exit
    ASSERT_TRUE(sut->addStructure({{device, withKeys({key::voltage})}}));
    sut->setActive();

    EXPECT_EQ(inForkedChild([]() -> int { std::exit(3); }), 3);

    EXPECT_TRUE(rawRegionExists());
    EXPECT_EQ(sut->root()->version, 32);
    EXPECT_TRUE(sut->updateMV(device | key::voltage, measured(230.5)));
    EXPECT_TRUE(shm::WriterLock().isOfAnotherWriter());
    ASSERT_TRUE(sut->updateMV(device | key::voltage, measured(0.0, 2, eStatus_HighAlarm)));
    sut->propagateStates();
    EXPECT_TRUE(eventually([] { return ledContents() == "1/0/0"; })) << "the parent's thread goes on";

    sut.reset();
    EXPECT_FALSE(rawRegionExists());
}

} // namespace

} // namespace qel::test
