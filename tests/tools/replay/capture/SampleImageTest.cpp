// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tools/replay/capture/SampleImage.h"

#include "format/ValueKeys.h"
#include "inspect/image/LiveRegion.h"
#include "inspect/image/PointTree.h"

#include "tests/inspect/capture/CaptureFixture.h"
#include "tests/writer/WriterFixture.h"

#include <gtest/gtest.h>

#include <functional>
#include <limits>
#include <memory>
#include <utility>

namespace qel::tools {

namespace {

namespace key = shm::key;

constexpr long long unit = test::pointId(1, 0);
constexpr long long inlet = test::pointId(1, 0, 1);
constexpr long long otherInlet = test::pointId(1, 0, 2);

inspect::Image unitImage() {
    shm::QelSharedMemoryWriter writer;
    writer.addStructure({{unit, test::withKeys({key::voltage})},
                         {inlet, test::withKeys({key::voltage, key::activePower})},
                         {otherInlet, test::withKeys({key::voltage})}});
    writer.setActive();
    writer.updateMV(inlet | key::activePower, test::measured(2500.0, 1000, eStatus_HighAlarm));
    return inspect::LiveRegion().copy();
}

/// The unit with something changed in it.
inspect::Image changed(std::function<void(shm::record::Region&)> const& change) {
    auto region = std::make_unique<shm::record::Region>(unitImage().region());
    change(*region);
    return {std::move(region), shm::REGION_SIZE};
}

void expectTree(inspect::Image const& image) {
    auto const mended = withoutCircles(image);
    EXPECT_NE(0U, mended.cut);
    EXPECT_TRUE(inspect::PointTree(mended.image).skippedLinks().empty());
    EXPECT_EQ(inspect::PointTree(image).nodes().size(), inspect::PointTree(mended.image).nodes().size());
}

} // namespace

TEST(SampleImageTest, SoundImage_StaysAsItIs) {
    auto const image = unitImage();
    auto const mended = withoutCircles(image);
    EXPECT_EQ(0U, mended.cut);
    test::expectSame(image, mended.image);
}

TEST(SampleImageTest, CircleOfEachKind_IsCutWhereItLeadsBack) {
    inspect::PointTree const tree(unitImage());
    ASSERT_EQ(3U, tree.nodes().size());
    auto const unitPos = tree.nodes()[0].pos;
    auto const inletPos = tree.nodes()[1].pos;
    auto const lastPos = tree.nodes()[2].pos;
    auto const valuePos = *tree.valuesOf(tree.nodes()[1]).begin();

    expectTree(changed([&](auto& region) { region.points[lastPos].next = inletPos; }));
    expectTree(changed([&](auto& region) { region.points[lastPos].children = unitPos; }));
    expectTree(changed([&](auto& region) { region.points[lastPos].mvs = valuePos; }));
    expectTree(changed([&](auto& region) { region.values[valuePos].next = valuePos; }));
    expectTree(changed([&](auto& region) { region.root.groups = unitPos; }));
}

TEST(SampleImageTest, Restamped_ReplacesTimesAndNothingElse) {
    constexpr auto never = std::numeric_limits<std::uint64_t>::max();
    auto const image = changed([](auto& region) {
        region.points[0].at = 0;
        region.points[1].at = never;
        region.points[2].at = 5000;
    });
    auto const sut = restamped(image, [](std::uint64_t time) { return time + 7; });

    auto region = std::make_unique<shm::record::Region>(sut.region());
    EXPECT_EQ(0U, region->points[0].at);
    EXPECT_EQ(never, region->points[1].at);
    EXPECT_EQ(5007U, region->points[2].at);
    region->points[2].at = 5000;
    inspect::PointTree const tree(image);
    std::size_t stamped = 0;
    for (auto const pos : tree.values()) {
        if (image.region().values[pos].at == 1000) {
            EXPECT_EQ(1007U, region->values[pos].at);
            region->values[pos].at = 1000;
            ++stamped;
        }
    }
    EXPECT_EQ(1U, stamped);
    test::expectSame(image, inspect::Image(std::move(region), shm::REGION_SIZE));
}

} // namespace qel::tools
