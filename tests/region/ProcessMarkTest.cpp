// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "region/ProcessMark.h"

#include "tests/support/ForkedChild.h"

#include <gtest/gtest.h>

namespace {

using qel::test::inForkedChild;
using shm::processMark;

constexpr std::uint64_t countOf(std::uint64_t mark) {
    return mark >> 32U;
}

TEST(ProcessMarkTest, OneProcess_KeepsItsMark) {
    auto const mark = processMark();
    EXPECT_NE(mark, 0U);
    EXPECT_EQ(processMark(), mark);
    EXPECT_EQ(inForkedChild([] { return 0; }), 0);
    EXPECT_EQ(processMark(), mark) << "after a fork";
}

TEST(ProcessMarkTest, ChildrenAndTheirChildren_HaveMarksOfTheirOwn) {
    auto const mark = processMark();
    EXPECT_EQ(inForkedChild([&] {
                  auto const child = processMark();
                  if (child == mark || processMark() != child) {
                      return 1;
                  }
                  return inForkedChild([&] {
                             auto const grandchild = processMark();
                             return grandchild == mark || grandchild == child ? 1 : 0;
                         }) == 0
                             ? 0
                             : 2;
              }),
              0);
}

// The system gives the number of an ended process to another one.
TEST(ProcessMarkTest, ChildWithTheNumberOfAnEndedProcess_DiffersByTheForks) {
    auto const mark = processMark();
    EXPECT_EQ(inForkedChild([&] { return countOf(processMark()) == countOf(mark) + 1 ? 0 : 1; }), 0);
}

} // namespace
