// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// What the tests of this folder work with.
#pragma once

#include "tests/cuts/CutReader.h"
#include "tests/cuts/CutWalk.h"
#include "tests/cuts/WriterBench.h"
#include "tests/hostile/GuardedMappings.h"

#include <gtest/gtest.h>

namespace qel::test {

/// Writer, reader and walk, with the region flush against inaccessible pages.
class CutBench : public testing::Test {
protected:
    explicit CutBench(GuardedMappings::Place place = GuardedMappings::Place::BeforeRearGuard)
        : guarded(place) {}

    GuardedMappings guarded;
    WriterBench bench;
    CutReader reader;
    CutWalk sut{bench, reader};
};

} // namespace qel::test
