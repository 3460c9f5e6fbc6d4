// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "inspect/image/PointTree.h"

#include "format/ValueKeys.h"
#include "inspect/image/LiveRegion.h"

#include "tests/support/ForgedRegion.h"
#include "tests/writer/WriterFixture.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <numeric>
#include <random>
#include <set>
#include <sstream>
#include <tuple>
#include <vector>

namespace qel::inspect {

namespace {

namespace key = shm::key;
using testing::ElementsAre;
using testing::IsEmpty;

using Positions = std::vector<std::uint32_t>;

Positions positionsOf(PointTree const& tree) {
    Positions positions;
    for (auto const& node : tree.nodes()) {
        positions.push_back(node.pos);
    }
    return positions;
}

/// Index of a slot's node.
std::uint32_t nodeOf(PointTree const& tree, std::uint32_t pos) {
    auto const positions = positionsOf(tree);
    return static_cast<std::uint32_t>(std::find(positions.begin(), positions.end(), pos) - positions.begin());
}

Positions valuesOf(PointTree const& tree, std::uint32_t pos) {
    auto const values = tree.valuesOf(tree.nodes().at(nodeOf(tree, pos)));
    return {values.begin(), values.end()};
}

using LinkFacts = std::tuple<SlotKind, std::uint32_t, LinkField, std::uint32_t>;

std::vector<LinkFacts> skippedOf(PointTree const& tree) {
    std::vector<LinkFacts> facts;
    for (auto const& link : tree.skippedLinks()) {
        facts.emplace_back(link.fromKind, link.fromPos, link.field, link.toPos);
    }
    return facts;
}

/// The same text as the library's dump of the mapped region.
std::string treeText(Image const& image) {
    PointTree const tree(image);
    std::ostringstream out;
    out << std::hex << "0x" << static_cast<std::uint64_t>(image.root().guid) << '\n';
    for (auto const& node : tree.nodes()) {
        auto const& point = *image.point(node.pos);
        out << std::string(std::size_t{2} * node.depth, ' ') << "- 0x";
        out.width(16);
        out.fill('0');
        out << static_cast<std::uint64_t>(point.guid) << ", this = " << point.pos
            << ", parent = " << point.parent << ", prev = " << point.prev << ", next = " << point.next
            << " [";
        char const* separator = "";
        for (auto const pos : tree.valuesOf(node)) {
            out << separator << "0x";
            out.width(4);
            out << image.value(pos)->key;
            separator = ", ";
        }
        out << "]\n";
    }
    return out.str();
}

/// Points whose links a test sets one by one.
class PointTreeTest : public testing::Test {
protected:
    PointTree tree() const { return PointTree(LiveRegion().copy()); }

    void link(std::uint32_t pos, std::size_t field, std::uint32_t into) const {
        region.raw().set<std::uint32_t>(test::rawPoint(pos) + field, into);
    }
    void linkValue(std::uint32_t pos, std::uint32_t into) const {
        region.raw().set<std::uint32_t>(test::rawValue(pos) + test::field::valueNext, into);
    }
    void linkRoot(std::size_t offset, std::uint32_t into) const {
        region.raw().set<std::uint32_t>(offset, into);
    }

    test::ForgedRegion const region;
};

/// Checks what holds for every tree.
void expectSound(PointTree const& tree) {
    std::set<std::uint32_t> points;
    std::uint32_t values = 0;
    std::uint32_t index = 0;
    for (auto const& node : tree.nodes()) {
        EXPECT_LT(node.pos, 800U);
        EXPECT_TRUE(points.insert(node.pos).second) << "slot " << node.pos << " twice";
        EXPECT_EQ(values, node.firstValue);
        values += node.valueCount;
        EXPECT_GT(node.end, index);
        EXPECT_LE(node.end, tree.nodes().size());
        if (node.parent == NO_NODE) {
            EXPECT_EQ(1U, node.depth);
        } else {
            ASSERT_LT(node.parent, index);
            EXPECT_EQ(tree.nodes()[node.parent].depth + 1, node.depth);
            EXPECT_LE(node.end, tree.nodes()[node.parent].end);
        }
        ++index;
    }
    EXPECT_EQ(tree.values().size(), values);
    std::set<std::uint32_t> const distinct(tree.values().begin(), tree.values().end());
    EXPECT_EQ(tree.values().size(), distinct.size());
}

} // namespace

TEST_F(PointTreeTest, AWipedRegionHasNoPoints) {
    auto const empty = tree();
    EXPECT_THAT(empty.nodes(), IsEmpty());
    EXPECT_THAT(empty.values(), IsEmpty());
    EXPECT_THAT(empty.skippedLinks(), IsEmpty());
    EXPECT_THAT(empty.childrenOf(NO_NODE), IsEmpty());
}

TEST_F(PointTreeTest, ListsDevicesThenGroupsEachWithItsChildrenBehindIt) {
    region.devices({10, 20});
    region.groups({30});
    region.children(10, {11, 12});
    region.children(12, {13});
    region.children(20, {21});
    region.values(12, 5, {key::voltage, key::peakVoltage, 3});
    region.values(30, 100, {key::differentialCurrentAc});

    auto const walked = tree();
    EXPECT_THAT(positionsOf(walked), ElementsAre(10, 11, 12, 13, 20, 21, 30));
    expectSound(walked);
    EXPECT_THAT(walked.skippedLinks(), IsEmpty());
    EXPECT_THAT(valuesOf(walked, 12), ElementsAre(5, 6, 7));
    EXPECT_THAT(valuesOf(walked, 30), ElementsAre(100));
    EXPECT_THAT(valuesOf(walked, 10), IsEmpty());
    EXPECT_THAT(walked.values(), ElementsAre(5, 6, 7, 100));

    EXPECT_THAT(walked.childrenOf(NO_NODE), ElementsAre(0, 4, 6));
    EXPECT_THAT(walked.childrenOf(0), ElementsAre(1, 2));
    EXPECT_THAT(walked.childrenOf(2), ElementsAre(3));
    EXPECT_THAT(walked.childrenOf(6), IsEmpty());
    EXPECT_EQ(4U, walked.nodes()[0].end);
    EXPECT_EQ(3U, walked.nodes()[3].depth);
    EXPECT_EQ(2U, walked.nodes()[3].parent);
    EXPECT_EQ(NO_NODE, walked.nodes()[4].parent);
}

TEST_F(PointTreeTest, PositionsOutOfRangeEndLists) {
    region.devices({799});
    region.values(799, 8799, {key::voltage});
    link(799, test::field::next, 800);
    link(799, test::field::children, 0xFFFFFFFE);
    linkValue(8799, 8800);
    linkRoot(test::field::groups, 0x80000000);
    auto const walked = tree();
    EXPECT_THAT(positionsOf(walked), ElementsAre(799));
    EXPECT_THAT(walked.values(), ElementsAre(8799));
    EXPECT_THAT(walked.skippedLinks(), IsEmpty());
}

TEST_F(PointTreeTest, APointThatIsItsOwnSiblingIsNotFollowed) {
    region.devices({4});
    link(4, test::field::next, 4);
    EXPECT_THAT(positionsOf(tree()), ElementsAre(4));
    EXPECT_THAT(skippedOf(tree()), ElementsAre(LinkFacts{SlotKind::Point, 4, LinkField::Next, 4}));
}

TEST_F(PointTreeTest, ASiblingListThatLeadsBackIsNotFollowed) {
    region.devices({4, 5, 6});
    link(6, test::field::next, 5);
    EXPECT_THAT(positionsOf(tree()), ElementsAre(4, 5, 6));
    EXPECT_THAT(skippedOf(tree()), ElementsAre(LinkFacts{SlotKind::Point, 6, LinkField::Next, 5}));
}

TEST_F(PointTreeTest, APointThatIsItsOwnChildIsNotFollowed) {
    region.devices({4, 5});
    link(4, test::field::children, 4);
    EXPECT_THAT(positionsOf(tree()), ElementsAre(4, 5));
    EXPECT_THAT(skippedOf(tree()), ElementsAre(LinkFacts{SlotKind::Point, 4, LinkField::Children, 4}));
}

TEST_F(PointTreeTest, ChildrenThatLeadToAnAncestorAreNotFollowed) {
    region.devices({1});
    region.children(1, {2});
    region.children(2, {3});
    link(3, test::field::children, 1);
    EXPECT_THAT(positionsOf(tree()), ElementsAre(1, 2, 3));
    EXPECT_THAT(skippedOf(tree()), ElementsAre(LinkFacts{SlotKind::Point, 3, LinkField::Children, 1}));
}

TEST_F(PointTreeTest, AChildOfTwoParentsBelongsToTheFirst) {
    region.devices({1, 2});
    region.children(1, {3});
    link(2, test::field::children, 3);
    auto const walked = tree();
    EXPECT_THAT(positionsOf(walked), ElementsAre(1, 3, 2));
    EXPECT_EQ(nodeOf(walked, 1), walked.nodes().at(nodeOf(walked, 3)).parent);
    EXPECT_THAT(skippedOf(walked), ElementsAre(LinkFacts{SlotKind::Point, 2, LinkField::Children, 3}));
}

TEST_F(PointTreeTest, BothListsOfTheRootMayLeadToOnePoint) {
    region.devices({1});
    linkRoot(test::field::groups, 1);
    EXPECT_THAT(positionsOf(tree()), ElementsAre(1));
    EXPECT_THAT(skippedOf(tree()), ElementsAre(LinkFacts{SlotKind::Root, 0, LinkField::Groups, 1}));
}

TEST_F(PointTreeTest, AValueChainThatLeadsBackIsNotFollowed) {
    region.devices({1});
    region.values(1, 10, {key::voltage, key::peakVoltage, 3});
    linkValue(12, 11);
    EXPECT_THAT(tree().values(), ElementsAre(10, 11, 12));
    EXPECT_THAT(skippedOf(tree()), ElementsAre(LinkFacts{SlotKind::Value, 12, LinkField::Next, 11}));
    linkValue(10, 10);
    EXPECT_THAT(tree().values(), ElementsAre(10));
    EXPECT_THAT(skippedOf(tree()), ElementsAre(LinkFacts{SlotKind::Value, 10, LinkField::Next, 10}));
}

TEST_F(PointTreeTest, AValueChainOfTwoPointsBelongsToTheFirst) {
    region.devices({1, 2, 3});
    region.values(1, 10, {key::voltage, key::peakVoltage});
    link(2, test::field::mvs, 10);
    region.values(3, 20, {3});
    linkValue(20, 11);
    auto const walked = tree();
    EXPECT_THAT(valuesOf(walked, 1), ElementsAre(10, 11));
    EXPECT_THAT(valuesOf(walked, 2), IsEmpty());
    EXPECT_THAT(valuesOf(walked, 3), ElementsAre(20));
    EXPECT_THAT(skippedOf(walked), ElementsAre(LinkFacts{SlotKind::Point, 2, LinkField::Values, 10},
                                               LinkFacts{SlotKind::Value, 20, LinkField::Next, 11}));
    expectSound(walked);
}

TEST_F(PointTreeTest, NestsAsDeepAsThereArePoints) {
    region.devices({0});
    for (std::uint32_t pos = 0; pos < 799; ++pos) {
        region.children(pos, {pos + 1});
    }
    auto const walked = tree();
    ASSERT_EQ(800U, walked.nodes().size());
    EXPECT_EQ(800U, walked.nodes().back().depth);
    EXPECT_EQ(800U, walked.nodes().front().end);
    expectSound(walked);
}

TEST_F(PointTreeTest, TakesAllPointsAndValues) {
    Positions all(800);
    std::iota(all.begin(), all.end(), 0U);
    region.devices(all);
    region.values(0, 0, std::vector<std::uint16_t>(8800, 1));
    auto const walked = tree();
    EXPECT_EQ(800U, walked.nodes().size());
    EXPECT_EQ(8800U, walked.values().size());
    expectSound(walked);
}

TEST_F(PointTreeTest, AnyLinksGiveASoundTree) {
    auto random = test::randomNumbers(1);
    for (int round = 0; round < 200; ++round) {
        // Sometimes few slots, so that links meet often; some lead out of range.
        auto const points = std::uniform_int_distribution<std::uint32_t>(1, 810)(random);
        std::uniform_int_distribution<std::uint32_t> point(0, points);
        std::uniform_int_distribution<std::uint32_t> value(0, points * 11);
        for (std::uint32_t pos = 0; pos < 800; ++pos) {
            link(pos, test::field::next, point(random));
            link(pos, test::field::children, point(random));
            link(pos, test::field::mvs, value(random));
        }
        for (std::uint32_t pos = 0; pos < 8800; ++pos) {
            linkValue(pos, value(random));
        }
        linkRoot(test::field::devices, point(random));
        linkRoot(test::field::groups, point(random));
        expectSound(tree());
    }
}

TEST(PointTreeWriterTest, EqualsTheLibrarysWalkOfRandomStructures) {
    auto random = test::randomNumbers(7);
    std::uniform_int_distribution<int> level(1, 4);
    shm::QelSharedMemoryWriter writer;
    for (int round = 0; round < 40; ++round) {
        test::Definitions definitions{{test::pointId(1, 0), test::withKeys({key::voltage})}};
        auto const add = [&](long long svid) {
            std::set<unsigned short> keys;
            for (int count = level(random); count > 0; --count) {
                keys.insert(static_cast<unsigned short>(level(random) * level(random)));
            }
            definitions.emplace(svid, test::withKeys(keys));
        };
        for (int count = 0; count < 60; ++count) {
            int const inlet = level(random);
            int const phase = level(random);
            int const circuit = level(random);
            add(test::pointId(1, 0, inlet));
            add(test::pointId(1, 0, inlet, phase));
            add(test::pointId(1, 0, inlet, phase, circuit));
            add(test::pointId(1, 0, inlet, phase, circuit, level(random)));
            add(test::pointId(1, 1, inlet, phase));
            add(test::pointId(1, 4, inlet, phase));
            add(test::pointId(1, 2, -1, -1, -1, level(random) * 10));
        }
        writer.addStructure(definitions);
        writer.removeStructure(definitions);
        writer.setActive();
        auto const image = LiveRegion().copy();
        ASSERT_EQ(writer.tree(), treeText(image));
        PointTree const tree(image);
        EXPECT_EQ(definitions.size(), tree.nodes().size());
        EXPECT_THAT(tree.skippedLinks(), IsEmpty());
        expectSound(tree);
    }
}

TEST(PointTreeNamesTest, NamesFieldsAsTheLayoutDoes) {
    EXPECT_STREQ("devices", fieldName(LinkField::Devices));
    EXPECT_STREQ("groups", fieldName(LinkField::Groups));
    EXPECT_STREQ("children", fieldName(LinkField::Children));
    EXPECT_STREQ("next", fieldName(LinkField::Next));
    EXPECT_STREQ("mvs", fieldName(LinkField::Values));
}

} // namespace qel::inspect
