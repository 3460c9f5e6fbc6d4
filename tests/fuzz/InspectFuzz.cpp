// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

/// @file
/// Feeds damaged regions to everything that looks at one.
///
/// An input is a list of patches to a region, see PatchedRegion.h. Its first byte chooses the region: 0 a small unit as
/// the writer lays it out, 1 a wiped one, 2 one that consists of the rest of the input itself (numbers modulo 3).

#include "inspect/check/RegionCheck.h"
#include "inspect/image/Image.h"
#include "inspect/image/PointTree.h"
#include "inspect/image/RegionStatus.h"
#include "inspect/naming/PointFinder.h"
#include "inspect/naming/PointPath.h"
#include "inspect/naming/Svid.h"
#include "inspect/why/FoldedStates.h"
#include "region/SvidParts.h"

#include "tests/fuzz/Input.h"
#include "tests/fuzz/PatchedRegion.h"
#include "tests/fuzz/Verdict.h"

#include <chrono>
#include <cstddef>
#include <cstdint>

namespace qel::fuzz {

namespace {

inspect::Image imageOf(Input input) {
    switch (input.byte() % 3) {
    case 0:
        return {patchedRegion(Base::SampleUnit, input), shm::REGION_SIZE};
    case 1:
        return {patchedRegion(Base::Wiped, input), shm::REGION_SIZE};
    default:
        return {input.rest(), input.restSize()};
    }
}

void find(inspect::Image const& image, inspect::PointTree const& tree) {
    inspect::PointFinder const finder(image, tree);
    for (auto const& node : tree.nodes()) {
        auto const svid = image.region().points[node.pos].guid;
        auto const path = inspect::pointPath(svid);
        require(inspect::parsePath(path) == shm::pointSvid(svid), "a path does not lead back to its point");
        require(!inspect::pointLabel(svid).empty(), "a point has no label");
        finder.node(svid);
        for (auto const pos : tree.valuesOf(node)) {
            finder.value(finder.node(svid).value_or(0), image.region().values[pos].key);
        }
    }
    for (char const* const text : {"unit1/inlet1/circuit1/socket9", "0x0100ffffffff0000", "group7", ""}) {
        try {
            auto const node = finder.point(text);
            finder.value(node, "no such value");
        } catch (inspect::NotFoundError const&) {
            continue; // what is not there is an answer
        }
    }
}

void check(inspect::Image const& image, inspect::PointTree const& tree) {
    auto const findings = inspect::confirmedFindings(image, [&] { return image; });
    std::size_t length = 0;
    for (auto const& finding : findings) {
        require(finding.offset <= shm::REGION_SIZE, "a finding lies outside the region");
        length += placeText(finding).size() + finding.found.text().size() + finding.expected.text().size();
    }
    require(findings.empty() || length != 0, "findings without text");
    require(hasDamage(findings) || tree.skippedLinks().empty(), "a shared or circular list was missed");
    require(hasDamage(findings) || image.size() == shm::REGION_SIZE, "a wrong size was missed");
}

void look(Input const& input) {
    auto const image = imageOf(input);
    inspect::PointTree const tree(image);
    inspect::regionStatus({}, image, 1700000000000, std::chrono::seconds(10));
    inspect::FoldedStates const states(image, tree);
    require(states.nodes().size() == tree.nodes().size(), "points without a folded state");
    find(image, tree);
    check(image, tree);
}

} // namespace

} // namespace qel::fuzz

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
    qel::fuzz::requireQuick([&] { qel::fuzz::look({data, size}); });
    return 0;
}
