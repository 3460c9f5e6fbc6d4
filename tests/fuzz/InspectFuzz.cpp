/// @file
/// Feeds damaged regions to everything that looks at one.
///
/// An input is a list of patches to a region. Its first byte chooses the region: 0 a small unit as the writer lays it
/// out, 1 a wiped one, 2 one that consists of the rest of the input itself (numbers modulo 3). Each patch is the kind
/// of record (0 root, 1 point, 2 value, 3 any offset; modulo 4), the slot (one byte), the offset in the record (one
/// byte; of kind 3: four bytes in the region, lowest first, instead of slot and offset), the count of bytes (modulo
/// 16) and the bytes. Whatever is beyond a record or the region is taken modulo its size.

#include "inspect/FoldedStates.h"
#include "inspect/Image.h"
#include "inspect/PointFinder.h"
#include "inspect/PointPath.h"
#include "inspect/PointTree.h"
#include "inspect/RegionCheck.h"
#include "inspect/RegionStatus.h"
#include "inspect/Svid.h"

#include "tests/inspect/SampleUnit.h"

#include <chrono>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <iostream>
#include <memory>
#include <string>

namespace qel::fuzz {

namespace {

using shm::record::Region;

/// Ends the process, so that the fuzzer keeps the input.
void require(bool condition, char const* what) {
    if (!condition) {
        std::cerr << "InspectFuzz: " << what << '\n';
        std::abort();
    }
}

class Input {
public:
    Input(std::uint8_t const* data, std::size_t size) : data_(data), size_(size) {}

    bool isEmpty() const { return size_ == 0; }
    std::uint8_t const* rest() const { return data_; }
    std::size_t restSize() const { return size_; }

    /// 0 when there is none left.
    std::uint8_t byte() {
        if (size_ == 0) {
            return 0;
        }
        --size_;
        return *data_++;
    }

    std::uint32_t word() {
        std::uint32_t word = 0;
        for (unsigned int shift = 0; shift < 32; shift += 8) {
            word |= static_cast<std::uint32_t>(byte()) << shift;
        }
        return word;
    }

private:
    std::uint8_t const* data_;
    std::size_t size_;
};

std::size_t patchOffset(Input& input) {
    switch (input.byte() % 4) {
    case 0:
        input.byte();
        return offsetof(Region, root) + input.byte() % sizeof(Region::root);
    case 1: {
        auto const slot = input.byte();
        return slot * sizeof(shm::record::QelShmMP) + input.byte() % sizeof(shm::record::QelShmMP);
    }
    case 2: {
        auto const slot = input.byte();
        return offsetof(Region, values) + slot * sizeof(shm::record::QelShmMVal) +
               input.byte() % sizeof(shm::record::QelShmMVal);
    }
    default:
        return input.word() % sizeof(Region);
    }
}

void patch(Input& input, Region& region) {
    auto* const bytes = reinterpret_cast<std::uint8_t*>(&region);
    while (!input.isEmpty()) {
        auto const offset = patchOffset(input);
        for (std::size_t i = 0, count = input.byte() % 16; i < count; ++i) {
            bytes[(offset + i) % sizeof region] = input.byte();
        }
    }
}

Region const& goodRegion() {
    static auto const region = test::sampleUnit();
    return *region;
}

inspect::Image imageOf(Input input) {
    auto region = std::make_unique<Region>();
    switch (input.byte() % 3) {
    case 0:
        *region = goodRegion();
        break;
    case 1:
        std::memset(static_cast<void*>(region.get()), shm::WIPE_BYTE, sizeof(Region));
        break;
    default:
        return {input.rest(), input.restSize()};
    }
    patch(input, *region);
    return {std::move(region), sizeof(Region)};
}

void find(inspect::Image const& image, inspect::PointTree const& tree) {
    inspect::PointFinder const finder(image, tree);
    for (auto const& node : tree.nodes()) {
        auto const svid = image.region().points[node.pos].guid;
        auto const path = inspect::pointPath(svid);
        require(inspect::parsePath(path) == inspect::pointOf(svid), "a path does not lead back to its point");
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
        require(finding.offset <= sizeof(Region), "a finding lies outside the region");
        length += placeText(finding).size() + finding.found.text().size() + finding.expected.text().size();
    }
    require(findings.empty() || length != 0, "findings without text");
    require(hasDamage(findings) || tree.cuts().empty(), "a shared or circular list was missed");
    require(hasDamage(findings) || image.size() == sizeof(Region), "a wrong size was missed");
}

} // namespace

} // namespace qel::fuzz

extern "C" int LLVMFuzzerTestOneInput(std::uint8_t const* data, std::size_t size) {
    auto const image = qel::fuzz::imageOf({data, size});
    qel::inspect::PointTree const tree(image);
    qel::inspect::regionStatus({}, image, 1700000000000, std::chrono::seconds(10));
    qel::inspect::FoldedStates const states(image, tree);
    qel::fuzz::require(states.nodes().size() == tree.nodes().size(), "points without a folded state");
    qel::fuzz::find(image, tree);
    qel::fuzz::check(image, tree);
    return 0;
}
