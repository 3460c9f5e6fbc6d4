// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// Feeds damaged regions to a reader.
///
/// An input is a list of patches to a region, see PatchedRegion.h. Its first byte chooses the region: 0 a small unit as
/// the writer lays it out, 1 a wiped one (numbers modulo 2). Regions whose links lead in a circle are only scanned: visits
/// take links for free of them.

#include "tests/fuzz/Input.h"
#include "tests/fuzz/PatchedRegion.h"
#include "tests/fuzz/Verdict.h"
#include "tests/hostile/GuardedMappings.h"
#include "tests/hostile/ReaderQueries.h"
#include "tests/hostile/RegionWalk.h"
#include "tests/reader/MappedReader.h"
#include "tests/support/RawRegion.h"

#include <cstddef>
#include <cstdint>
#include <cstring>

namespace qel::fuzz {

namespace {

/// One region and one reader of it for all inputs, up against an inaccessible page.
struct Mapped {
    test::GuardedMappings const guards{test::GuardedMappings::Place::BeforeRearGuard};
    test::RawRegion const raw{true};
    test::MappedReader reader;
};

void read(Input input) {
    static bool const isSampleMade =
        patchedRegion(Base::Wiped, {nullptr, 0}) != nullptr; // its object is gone then
    require(isSampleMade, "there is no sample");
    static Mapped mapped;
    auto const base = input.byte() % 2 == 0 ? Base::SampleUnit : Base::Wiped;
    std::memcpy(mapped.raw.bytes(), patchedRegion(base, input).get(), test::rawRegionSize);
    requireQuick([] { require(test::scanEnds(mapped.reader), "a scan goes on"); });
    test::RegionWalk const walk(mapped.raw);
    if (!walk.ends()) {
        return;
    }
    requireQuick([] {
        mapped.reader.syncPositions(true);
        mapped.reader.visit();
        mapped.reader.tree();
    });
    auto const difference = test::disagreement(mapped.reader, mapped.raw, walk);
    require(difference.empty(), "the reader tells otherwise than the bytes: " + difference);
}

} // namespace

} // namespace qel::fuzz

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
    qel::fuzz::read({data, size});
    return 0;
}
