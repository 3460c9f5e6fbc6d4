// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tools/qelshm/app/MissingText.h"

#include <gtest/gtest.h>

#include <cerrno>

namespace qel::watch {

namespace {

using inspect::Condition;

std::string textOf(Condition condition) {
    inspect::RegionStatus status;
    status.condition = condition;
    status.size = 4096;
    status.source.opening = inspect::Opening::Unreadable;
    status.source.error = EACCES;
    return missingText(status);
}

} // namespace

TEST(MissingTextTest, SaysWhatIsMissing) {
    EXPECT_EQ("there is no shared-memory object \"QelSharedMemory\"", textOf(Condition::Absent));
    EXPECT_EQ("the shared-memory object \"QelSharedMemory\" cannot be opened: Permission denied",
              textOf(Condition::Unreadable));
    EXPECT_EQ("the shared-memory object \"QelSharedMemory\" has been replaced", textOf(Condition::Replaced));
    EXPECT_EQ("the shared-memory object \"QelSharedMemory\" has only 4096 of 320032 bytes",
              textOf(Condition::TooShort));
    EXPECT_EQ("the region is not active", textOf(Condition::Inactive));
}

TEST(MissingTextTest, SaysNothingWhenAllIsThere) {
    EXPECT_EQ("", textOf(Condition::Active));
    EXPECT_EQ("", textOf(Condition::Silent));
}

} // namespace qel::watch
