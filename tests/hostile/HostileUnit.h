// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// A region whose content a test turns against its readers.
#pragma once

#include "tests/hostile/GuardedMappings.h"
#include "tests/hostile/ReaderQueries.h"
#include "tests/hostile/RegionWalk.h"
#include "tests/inspect/SampleUnit.h"
#include "tests/reader/MappedReader.h"
#include "tests/support/RandomNumbers.h"
#include "tests/support/RawRegion.h"
#include "tests/writer/WriterFixture.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <memory>
#include <string>

namespace qel::test {

/// Slots that are in use in a sample unit, the freed ones included.
constexpr std::uint32_t samplePoints = 21;
constexpr std::uint32_t sampleValues = 28;

/// Names a test's instance by where its mappings lie.
inline std::string placeName(testing::TestParamInfo<GuardedMappings::Place> const& info) {
    return info.param == GuardedMappings::Place::BehindFrontGuard ? "BehindFrontGuard" : "BeforeRearGuard";
}

/// A sample unit in an object of its own, and a reader of it, between guards.
class HostileUnit : public testing::TestWithParam<GuardedMappings::Place> {
protected:
    HostileUnit() { restore(); }

    void restore() const { std::memcpy(raw.bytes(), sample.get(), rawRegionSize); }

    /// Puts a number into a field, asks the reader everything unless a walk would not end, and takes it out again.
    template <typename Number>
    void ask(std::size_t offset, Number number) {
        auto const former = raw.get<Number>(offset);
        raw.set<Number>(offset, number);
        askAsItIs("byte " + std::to_string(offset) + " holds " + std::to_string(number));
        raw.set<Number>(offset, former);
    }

    void askAsItIs(std::string const& what) {
        EXPECT_TRUE(scanEnds(reader)) << what;
        RegionWalk const walk(raw);
        if (!walk.ends()) {
            ++endless;
            return;
        }
        ++asked;
        EXPECT_EQ("", disagreement(reader, raw, walk)) << what;
    }

    GuardedMappings const guards{GetParam()};
    std::unique_ptr<shm::record::Region> const sample = sampleUnit();
    RawRegion const raw{true};
    MappedReader reader;
    int asked = 0;
    int endless = 0;
};

} // namespace qel::test
