// SPDX-FileCopyrightText: the libQelSharedMemory authors
// SPDX-License-Identifier: Apache-2.0

#include "tools/qelshm/verbs/PointFacts.h"

#include "format/ValueKeys.h"
#include "tests/support/ForgedRegion.h"
#include "tests/support/RawRegion.h"
#include "tests/tools/qelshm/SampleImages.h"

#include "inspect/image/LiveRegion.h"
#include "inspect/naming/PointFinder.h"

#include <gtest/gtest.h>

namespace qel::tools {

namespace {

using inspect::PointTree;

struct Sample {
    explicit Sample(std::string const& name)
        : image(test::sampleImage(name)),
          tree(image),
          finder(image, tree) {}

    inspect::PointNode const& node(long long svid) const { return tree.nodes().at(*finder.node(svid)); }
    PointFacts point(long long svid) const { return pointFacts(image, tree, node(svid)); }
    std::vector<ValueFacts> values(long long svid) const { return valuesOf(image, tree, node(svid)); }

    inspect::Image image;
    PointTree tree;
    inspect::PointFinder finder;
};

} // namespace

TEST(PointFactsTest, Point_IsTakenFromItsSlotAndTheTree) {
    Sample const sample("healthy");
    auto const point = sample.point(test::sample::circuit);
    EXPECT_EQ(test::sample::circuit, point.svid);
    EXPECT_EQ("unit1/inlet1/circuit1", point.path);
    EXPECT_EQ("unit1/inlet1", point.parentPath);
    EXPECT_EQ("circuit", point.kind);
    EXPECT_EQ(21U, point.typeCode);
    EXPECT_EQ("16A;C", point.type);
    EXPECT_EQ(3U, point.depth);
    EXPECT_EQ(eStatus_On, point.state);
    EXPECT_EQ("", sample.point(test::sample::unit).parentPath);
}

TEST(PointFactsTest, Value_HasNameNumberAndUnit) {
    Sample const sample("healthy");
    auto const values = sample.values(test::sample::sensor);
    ASSERT_EQ(2U, values.size());
    EXPECT_EQ(test::sample::sensor | shm::key::temperature, values[0].svid);
    EXPECT_EQ("Temperature", values[0].name);
    EXPECT_EQ("21.5 \u00B0C", values[0].text);
    EXPECT_EQ(21.5, values[0].number);
    EXPECT_EQ("\u00B0C", values[0].unit);
    EXPECT_EQ(test::sampleTime, values[0].at);
    EXPECT_EQ("%", values[1].unit);
}

TEST(PointFactsTest, ValueThatIsStillExpected_HasNoNumber) {
    Sample const sample("healthy");
    auto const values = sample.values(test::sample::socket3);
    ASSERT_EQ(3U, values.size());
    EXPECT_EQ(std::nullopt, values[0].number);
    EXPECT_EQ("n/a", values[0].text);
    EXPECT_EQ(eStatus_ExpectedValue, values[0].state);
    EXPECT_EQ(0U, values[0].at);
}

TEST(PointFactsTest, ValueWithoutAKnownState_HasNoNumber) {
    test::ForgedRegion const region;
    region.point(0, test::sample::unit);
    region.values(0, 0, {shm::key::voltage});
    region.devices({0});
    region.raw().set<std::int32_t>(test::rawValue(0) + test::field::valueState, 99);
    auto const image = inspect::LiveRegion().copy();
    PointTree const tree(image);
    EXPECT_EQ(std::nullopt, valueFacts(image, tree.nodes().at(0), 0).number);
}

TEST(PointFactsTest, NumberThatIsNotFinite_IsNone) {
    Sample const sample("odd-content");
    auto const values = sample.values(test::sample::socket1);
    ASSERT_EQ(3U, values.size());
    EXPECT_EQ(std::nullopt, values[0].number);
    EXPECT_EQ("nan V", values[0].text);
    EXPECT_EQ(std::nullopt, values[1].number);
    EXPECT_EQ("-inf W", values[1].text);
    EXPECT_EQ(1e300, values[2].number);
    EXPECT_EQ("", values[2].unit);
    EXPECT_EQ("KEY_IDX_0x3", values[2].name);
}

} // namespace qel::tools
